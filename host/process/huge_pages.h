// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace pciinfo {

/// Asks for huge pages for the first 64 MiB of the memory that this process allocates from now on.
/// Does nothing if the kernel has none or if the memory of this process is limited to less than
/// 1 GiB.
void UseHugePages() noexcept;

}  // namespace pciinfo
