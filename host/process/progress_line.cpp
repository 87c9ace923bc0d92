// SPDX-License-Identifier: Apache-2.0
#include "host/process/progress_line.h"

#include <unistd.h>

#include "host/console/output.h"
#include "host/console/text.h"

namespace pciinfo {
namespace {

constexpr std::chrono::seconds kPatience{1};
constexpr std::size_t kLineWidth = 79;

}  // namespace

ProgressLine::ProgressLine(bool wanted) : isWanted_(wanted && isatty(STDERR_FILENO) != 0) {}

void ProgressLine::Tell(const std::string& what) {
  if (!isWanted_) return;
  text_ = Cut(WithSubject("pciinfo: " + Printable(what)), kLineWidth);
  if (isShown_) return Show();
  if (!due_) due_ = Clock::now() + kPatience;
}

// The cursor goes back to the front, so that a message of another process covers the line.
void ProgressLine::Show() {
  WriteErrorText((isShown_ ? "\r\x1B[K" : "") + text_ + "\r");
  isShown_ = true;
  due_.reset();
}

void ProgressLine::Erase() {
  if (isShown_) WriteErrorText("\r\x1B[K\r");
  isShown_ = false;
  due_.reset();
}

void ProgressLine::End() {
  Erase();
  isWanted_ = false;
}

}  // namespace pciinfo
