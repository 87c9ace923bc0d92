// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>

/// Unpacks each archive in the directory `captures` and passes those that have /sys/bus/pci/devices
/// to `compare`, as a directory that lasts until it returns. Returns the sum of what `compare`
/// returns. An archive that cannot be unpacked fails the test.
std::size_t CompareCaptures(const std::string& captures,
                            const std::function<std::size_t(const std::string& root)>& compare);
