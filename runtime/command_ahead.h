#pragma once

#include <memory>
#include <string>

#include "framework/export.h"
#include "runtime/command_run.h"

namespace vtq {

/// Starts a command that a plug-in is about to run, so that it runs beside what the plug-in does
/// until then: the next TOSSpecific::SpawnProcess of the same text in this process takes it over,
/// and its time counts from there. Every other call runs its own program as ever. A command that
/// cannot be started, or that is recorded (see command_replay.h), is left to SpawnProcess. One
/// command at a time: the one before is ended when nobody took it over. Not thread-safe.
VTQ_EXPORT void StartCommandAhead(const std::string& command) noexcept;

/// For SpawnProcess: the run of a command that was started ahead; null when there is none.
std::unique_ptr<CommandRun> TakeCommandAhead(const std::string& command) noexcept;

}  // namespace vtq
