// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace pciinfo {

/// Takes from this process and its children, for good, what reading the inventory needs no right
/// to: of a privileged user's capabilities those stay that reach unreadable files, whole
/// configuration spaces and firmware tables; nobody gains privileges by starting a program; and no
/// core file is written, which would hold what only the privileged may read. What the process never
/// had is not missed.
void GiveUpPrivileges() noexcept;

/// Takes from the process and its children what a privileged user's tools could reach the real
/// hardware with, past all files. Does nothing where there is no such privilege.
void GiveUpHardwareAccess() noexcept;

/// Bounds the address space of this process, and of each of its children, to `bytes`.
void LimitMemory(std::uint64_t bytes) noexcept;

/// Whether there is memory to carry on with at all.
bool HasRoom() noexcept;

}  // namespace pciinfo
