// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <functional>

namespace pciinfo {

/// How the rights of this process compare with those of whoever started it.
enum class CallerRights {
  kSame,
  /// A tool such as sudo started the program with other rights, in an environment of its making.
  kFewer,
  /// The program file itself gives rights (set-user-ID, file capabilities): the environment is that
  /// of somebody with fewer rights.
  kFewerAndOwnEnvironment,
};

/// What is known of the process.
struct ProcessRights {
  bool isSecureExecution = false;  ///< AT_SECURE of getauxval(3)
  uid_t realUser = 0;
  uid_t effectiveUser = 0;
  bool hasCapabilities = false;
};

/// The value of an environment variable; null for one that is not set.
using Variable = std::function<const char*(const char* name)>;

CallerRights RightsOfCaller(const ProcessRights& rights, const Variable& variable);
/// The same for this process.
CallerRights RightsOfCaller();

}  // namespace pciinfo
