#pragma once

#include <memory>
#include <string>

#include "framework/export.h"
#include "runtime/command_run.h"

namespace vtq {

// A command that is started before a plug-in runs it, so that it runs beside what is done until
// then. The process that started it may fork: the next call in the other process takes it over,
// while this one waits, passes on how the program ends, and calls EndCommandAhead when the other
// one is gone.

/// Starts a command that a plug-in is about to run. The next TOSSpecific::SpawnProcess of the same
/// text takes it over, and its time counts from there; every other call runs its own program as
/// ever. A command that cannot be started, or that is recorded (see command_replay.h), is left to
/// SpawnProcess; one that is under way already goes on. One command at a time: another one is ended
/// when nobody took it over. Not thread-safe.
VTQ_EXPORT void StartCommandAhead(const std::string& command) noexcept;

/// Ends the command, if this process started it and it runs still, and forgets it.
VTQ_EXPORT void EndCommandAhead() noexcept;

/// A descriptor that is readable when PassOnCommandAheadEnd is to be called; -1 when there is
/// nothing to pass on.
VTQ_EXPORT int GetCommandAheadLife() noexcept;
VTQ_EXPORT void PassOnCommandAheadEnd() noexcept;

/// For SpawnProcess: the run of a command that was started ahead; null when there is none.
std::unique_ptr<CommandRun> TakeCommandAhead(const std::string& command) noexcept;

}  // namespace vtq
