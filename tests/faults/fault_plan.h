// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

/// What can be made to fail.
enum class Call {
  // System calls, in this process and in those that it forks.
  kOpen,
  kRead,
  kShortRead,  ///< succeeds with one byte
  kClose,      ///< closes and returns an error
  kPipe,
  kStart,  ///< fork and execve: no process is created, or no program started in it
  kDie,    ///< the program that is started prints a part of a line and is killed
  kQuit,   ///< the program that is started prints nothing and exits with status 1
  kAllocate,
  // Operations of the framework.
  kName,
  kNamespace,
  kLookUpClass,
  kCreate,
  kSet,
  kCommit,
  kEnumerate,
  kGet,
  kReference,
  kSchema,
  kSmBiosLoad,
  kSmBiosVersion,
  kSmBiosFirst,
  kSmBiosNext,
  kSmBiosClose,
  kCommand,
};

/// "open", "framework create", ...
const char* NameOf(Call call);

/// Call number `number`, from 1, fails; if `lasting`, so do all later calls.
struct Fault {
  Call call;
  unsigned number;
  bool lasting = false;
};

/// Returns which call fails after call `number` did: the next one. With sanitizers, where a fault
/// takes ten times as long, only each tenth call after the first ten.
unsigned NextToFail(unsigned number) noexcept;

/// For messages: "open 3", "allocation 17 and all after it".
std::string TextOf(const Fault& fault);

/// Starts to count calls, in this process and in all that it forks later, together; they fail as
/// `fault` says.
void Arm(const Fault& fault) noexcept;
/// Calls do not fail any more.
void Disarm() noexcept;

/// Whether the fault that was armed last has occurred.
bool HasStruck() noexcept;
/// The file of the failed call, if it was an open or a read; else empty.
std::string PlaceOfStrike();

/// For functions that replace a call: counts the call and returns whether it must fail. Allocates
/// nothing. `place`, if not null, becomes the place of the fault.
bool MustFail(Call call, const char* place = nullptr) noexcept;
/// The same for a call on an open file.
bool MustFail(Call call, int descriptor) noexcept;

/// During its lifetime nothing is counted and nothing fails: for calls of the tests themselves.
class WithoutFaults {
 public:
  WithoutFaults() noexcept;
  WithoutFaults(const WithoutFaults&) = delete;
  WithoutFaults& operator=(const WithoutFaults&) = delete;
  ~WithoutFaults();
};
