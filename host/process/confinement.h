// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pciinfo {

/// What a process is about to do, and so may still do when it is confined.
struct Needs {
  /// Reads this machine: of a privileged user's capabilities those for reading stay. Otherwise no
  /// capability stays, and the process becomes an ordinary user's.
  bool liveMachine = false;
  /// Files that are opened later. If an ordinary user cannot read them, the right to read every
  /// file stays until GiveUpReading.
  std::vector<std::string> files{};
  /// Directories that files are made in.
  std::vector<std::string> writable{};
  /// One of these directories belongs to the user who started the program.
  bool keepsUser = false;
};

/// What the kernel did of what it was asked for. What it does not have is no error.
struct Confined {
  bool hasNoCapabilities = false;
  bool isOrdinaryUser = false;
  bool filtersCalls = false;  ///< see FilterSystemCalls
  int fileRules = 0;          ///< see WriteOnlyBelow
};

/// Takes from this process and the programs that it starts, for good, what `needs` does not name:
/// capabilities, the user root, gaining privileges by starting a program, system calls that reach
/// beyond files, writing files, and core files, which would hold what only the privileged may read.
Confined Confine(const Needs& needs) noexcept;

/// Takes the right to read every file too, if Confine left it because of files.
void GiveUpReading() noexcept;

/// Takes from the process and its children what a privileged user's tools could reach the real
/// hardware with, past all files. Does nothing where there is no such privilege.
void GiveUpHardwareAccess() noexcept;

/// Bounds the address space of this process, and of each of its children, to `bytes`.
void LimitMemory(std::uint64_t bytes) noexcept;

/// Whether there is memory to carry on with at all.
bool HasRoom() noexcept;

}  // namespace pciinfo
