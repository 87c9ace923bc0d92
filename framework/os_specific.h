// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

/// Services of the operating system.
class VTQ_EXPORT TOSSpecific {
 public:
  /// Runs a program and returns its standard output. `command` is the program's name and its
  /// arguments, separated by spaces; there is no shell, hence no quoting, no expansion and no
  /// redirection. The program is searched only in /usr/sbin, /usr/bin, /sbin and /bin. It runs with
  /// LC_ALL=C, in its own process group, with an empty standard input. The group is killed if the
  /// program is still running after `seconds`; when the program ends, the rest of its group is
  /// killed.
  ///
  /// Output of a program with a non-zero exit status is returned too, because listing tools exit so
  /// when they cannot read a single function. Throws TVTQException, which names the command and the
  /// reason, when the program cannot be started, dies by a signal, runs out of time, or exits with
  /// a non-zero status and no output.
  static std::string SpawnProcess(const std::string& command, int seconds);

  /// Returns the content of a file, byte for byte. Throws TVTQException, which names the file and
  /// the reason, when it cannot be read.
  static std::string CaptureFile(const std::string& path);

  /// Whether a file of that name exists (links followed).
  static bool FileExists(const std::string& path) noexcept;

  /// Returns the BIOS version (SMBIOS type 0, 7.1); empty if the firmware's tables contain none, or
  /// if there are no tables that this user can use. Throws TVTQException when reading them fails.
  static std::string GetBiosID();
};

/// Returns the directory of the library or program that contains `address`, with a trailing slash;
/// empty if no loaded file contains it.
VTQ_EXPORT std::string GetModulePathLin(const void* address);

}  // namespace NQZMVTQ20
