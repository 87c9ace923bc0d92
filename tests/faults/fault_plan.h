#pragma once

#include <string>

/// What can be made to fail.
enum class Call {
  // System calls, in this process and in those that it forks.
  kOpen,
  kRead,
  kShortRead,  ///< succeeds with one byte
  kClose,      ///< closes, and says that it failed
  kPipe,
  kStart,  ///< fork and posix_spawn: no process comes to be
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

/// Call number `number`, from 1, fails; if `lasting`, so do all that come after it.
struct Fault {
  Call call;
  unsigned number;
  bool lasting = false;
};

/// For messages: "open 3", "allocation 17 and all after it".
std::string TextOf(const Fault& fault);

/// Calls are counted from now on, in this process and in all that it forks from now on, together,
/// and fail as `fault` says.
void Arm(const Fault& fault) noexcept;
/// Nothing fails any more.
void Disarm() noexcept;

/// Whether the fault that was armed last has come.
bool HasStruck() noexcept;
/// The file that the struck call was about, where it was an open or a read; else empty.
std::string PlaceOfStrike();

/// For whatever stands in the place of a call: counts the call and says whether it has to fail.
/// Allocates nothing. `place`, if not null, becomes the place of the strike.
bool MustFail(Call call, const char* place = nullptr) noexcept;
/// The same for a call on an open file.
bool MustFail(Call call, int descriptor) noexcept;

/// Nothing is counted and nothing fails while it lives: for what the tests do themselves.
class WithoutFaults {
 public:
  WithoutFaults() noexcept;
  WithoutFaults(const WithoutFaults&) = delete;
  WithoutFaults& operator=(const WithoutFaults&) = delete;
  ~WithoutFaults();
};
