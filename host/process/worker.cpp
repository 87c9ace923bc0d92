// SPDX-License-Identifier: Apache-2.0
#include "host/process/worker.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "host/process/end_process.h"

namespace pciinfo {

void Worker::Send(Report::Kind kind, const Step& step) {
  if (!link_.reports.IsOpen()) return;
  Report report;
  report.kind = kind;
  report.isNeeded = step.isNeeded;
  report.isLast = step.isLast;
  report.step = step_;
  report.sent = std::chrono::steady_clock::now();
  step.what.copy(report.text, Report::kMostText - 1);
  // Without its supervisor a worker must not go on; a plug-in may have closed the socket.
  if (send(link_.reports.Get(), &report, sizeof report, MSG_NOSIGNAL) != sizeof report) {
    _exit(kFailed);
  }
}

std::optional<std::string> Worker::Begin(const Step& step) {
  ++step_;
  const auto failure = link_.failed.find(step_);
  if (failure != link_.failed.end()) return failure->second;
  Send(Report::Kind::kStep, step);
  return std::nullopt;
}

void Worker::EndStep() {
  if (!link_.reports.IsOpen() || HasRoom()) return;
  Send(Report::Kind::kNoMemory);
  _exit(kFailed);
}

void Worker::Tell(const std::string& what) {
  if (link_.hasProgressLine) Send(Report::Kind::kProgress, {what});
}

void Worker::Confine(const Needs& needs) const {
  if (link_.confine) link_.confine(needs);
}

void Worker::GiveUpReading() const {
  if (link_.confine) pciinfo::GiveUpReading();
}

void Worker::BeginOutput() {
  Send(Report::Kind::kOutput);
  if (link_.hasProgressLine) {
    char answer = 0;
    [[maybe_unused]] const ssize_t ignored = recv(link_.reports.Get(), &answer, 1, 0);
  }
  if (link_.lateMessages.IsOpen()) dup2(link_.lateMessages.Get(), STDERR_FILENO);
}

void Worker::End(ExitStatus status) {
  Send(Report::Kind::kOver);
  EndProcess(status);
}

}  // namespace pciinfo
