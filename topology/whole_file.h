// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

namespace topology {

/// The content of a file that helps to describe functions. Nothing where it cannot be read: the
/// framework's log then says why, and what it would have told is unknown.
std::optional<std::string> ReadWhole(const std::string& path);

}  // namespace topology
