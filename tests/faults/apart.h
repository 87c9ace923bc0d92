#pragma once

#include <functional>
#include <string>

/// How a piece of a test ended that ran in a process of its own.
struct EndApart {
  std::string failure;  ///< what it said, or how it died; empty when all was well
  long left = 0;        ///< what it returned
};

/// Runs `body` in a forked process, so that nothing it does to itself lasts, and waits for it.
/// What `body` writes to its argument is the failure. A process that is ended by a signal has
/// failed, and so has one that takes more than a second of processor time, or a minute, or that
/// leaves processes or open files behind.
EndApart RunApart(const std::function<long(std::string& failure)>& body);

/// What RunApart says of a process that never came to an end.
inline constexpr const char* kEndless = "it never ends";
