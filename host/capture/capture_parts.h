// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/capture/capture_machine.h"

namespace pciinfo {

/// The path of a file of this machine in a capture.
std::string InCapture(const std::filesystem::path& path);

/// Returns the sorted entries of a directory; none if it does not exist. Notes one that cannot be
/// read.
std::vector<std::filesystem::path> Listing(CaptureReceiver& receiver,
                                           const std::filesystem::path& directory);

/// Adds a file; does nothing if it does not exist. Notes one that cannot be read.
void AddFile(CaptureReceiver& receiver, const std::filesystem::path& path);

}  // namespace pciinfo
