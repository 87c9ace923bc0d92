#pragma once

#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

/// Services of the operating system.
class VTQ_EXPORT TOSSpecific {
 public:
  /// Runs a program and returns its standard output. `command` is the program's name and its
  /// arguments, separated by blanks; there is no shell, hence no quoting, no expansion and no
  /// redirection. The program is looked for in /usr/sbin, /usr/bin, /sbin and /bin only, and runs
  /// with LC_ALL=C, in its own process group, with an empty standard input. Its group is killed
  /// when it is still running after `seconds`, and whatever is left of the group when it ends.
  ///
  /// Output that comes with a non-zero exit is returned: a listing tool reports single unreadable
  /// functions so. Throws TVTQException, naming the command and the reason, when it cannot be
  /// started, dies by a signal, runs out of time, or exits non-zero without any output.
  static std::string SpawnProcess(const std::string& command, int seconds);

  /// The whole content of a file, byte for byte. Throws TVTQException, naming the file and the
  /// reason, when it cannot be read.
  static std::string CaptureFile(const std::string& path);

  /// Whether a file of that name exists (links followed).
  static bool FileExists(const std::string& path) noexcept;

  /// The BIOS version text (SMBIOS type 0, 7.1); empty where the firmware's tables hold none, and
  /// where there are no tables that this user could use. Throws TVTQException when reading them
  /// fails.
  static std::string GetBiosID();
};

/// The directory of the library or program that holds `address`, with a slash at its end; empty
/// when no loaded file holds it.
VTQ_EXPORT std::string GetModulePathLin(const void* address);

}  // namespace NQZMVTQ20
