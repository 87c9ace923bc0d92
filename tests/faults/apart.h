// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

/// How a part of a test ended that ran in a child process.
struct EndApart {
  std::string failure;  ///< its message, or how it died; empty on success
  long left = 0;        ///< what it returned
};

/// Runs `body` in a forked process, so that its changes do not last, and waits for it. `body`
/// writes a failure to its argument. The process also fails if a signal ends it, if it takes more
/// than a second of CPU time or a minute, or if it leaves processes or open files behind.
EndApart RunApart(const std::function<long(std::string& failure)>& body);

/// The failure that RunApart returns for a process that did not end.
inline constexpr const char* kEndless = "it never ends";
