// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace vtq {

/// Returns the content of a file, for services that report failures themselves. Throws
/// TVTQException, which names the file and the reason.
std::string ReadFile(const std::string& path);

}  // namespace vtq
