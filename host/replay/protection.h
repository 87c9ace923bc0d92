// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace pciinfo {

/// Says in a few lines how captures are kept from this machine when this user reads them here: what
/// the kernel does of what it is asked for. It is tried in a process that ends.
std::string DescribeProtection();

}  // namespace pciinfo
