// SPDX-License-Identifier: Apache-2.0

#include "host/process/worker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "tests/fakes/run_process.h"

namespace pciinfo {
namespace {

using testing::Optional;
using Kind = Report::Kind;

class WorkerTest : public testing::Test {
 protected:
  WorkerTest() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) != 0) throw std::runtime_error("no sockets");
    supervisor_ = vtq::FileDescriptor(ends[0]);
    link_.reports = vtq::FileDescriptor(ends[1]);
  }

  Worker& Start() {
    worker_ = std::make_unique<Worker>(std::move(link_));
    return *worker_;
  }

  /// The next report; nothing where there is none.
  std::optional<Report> Next() const {
    Report report;
    const ssize_t size = recv(supervisor_.Get(), &report, sizeof report, MSG_DONTWAIT);
    if (size != sizeof report) return std::nullopt;
    return report;
  }

  /// The kind of the next report; nothing where there is none.
  std::optional<Kind> NextKind() const {
    const std::optional<Report> report = Next();
    if (!report) return std::nullopt;
    return report->kind;
  }

  WorkerLink link_;
  vtq::FileDescriptor supervisor_;
  std::unique_ptr<Worker> worker_;
};

TEST_F(WorkerTest, TellsEachStepWithItsNumber) {
  Worker& worker = Start();
  EXPECT_EQ(worker.Begin({"loading", true, false}), std::nullopt);
  const Report first = Next().value();
  EXPECT_EQ(first.kind, Kind::kStep);
  EXPECT_EQ(first.step, 1);
  EXPECT_TRUE(first.isNeeded);
  EXPECT_FALSE(first.isLast);
  EXPECT_STREQ(first.text, "loading");
  worker.EndStep();
  worker.Begin({"collecting", false, true});
  const Report second = Next().value();
  EXPECT_EQ(second.step, 2);
  EXPECT_FALSE(second.isNeeded);
  EXPECT_TRUE(second.isLast);
}

TEST_F(WorkerTest, LeavesOutTheStepThatFailedInAnotherWorker) {
  link_.failed = {{2, "died"}};
  Worker& worker = Start();
  EXPECT_EQ(worker.Begin({"one"}), std::nullopt);
  EXPECT_THAT(worker.Begin({"two"}), Optional(std::string("died")));
  EXPECT_EQ(worker.Begin({"three"}), std::nullopt);
  EXPECT_STREQ(Next().value().text, "one");
  EXPECT_STREQ(Next().value().text, "three");
  EXPECT_EQ(Next(), std::nullopt);
}

TEST_F(WorkerTest, CutsALongText) {
  link_.hasProgressLine = true;
  Start().Tell(std::string(1000, 'x'));
  const Report report = Next().value();
  EXPECT_EQ(report.kind, Kind::kProgress);
  EXPECT_EQ(std::string(report.text), std::string(Report::kMostText - 1, 'x'));
}

TEST_F(WorkerTest, WithAProgressLineWaitsForTheAnswerBeforeItPrints) {
  link_.hasProgressLine = true;
  Worker& worker = Start();
  send(supervisor_.Get(), "", 1, 0);
  worker.BeginOutput();
  EXPECT_THAT(NextKind(), Optional(Kind::kOutput));
  char left = 0;
  EXPECT_LT(recv(supervisor_.Get(), &left, 1, MSG_DONTWAIT), 0);
}

TEST_F(WorkerTest, WithoutAProgressLineTellsNoProgress) {
  Worker& worker = Start();
  worker.Tell("anything");
  worker.BeginEnding();
  EXPECT_THAT(NextKind(), Optional(Kind::kEnding));
}

TEST_F(WorkerTest, WithoutAProgressLineDoesNotWait) {
  Start().BeginOutput();
  EXPECT_THAT(NextKind(), Optional(Kind::kOutput));
}

TEST_F(WorkerTest, KeepsMessagesForLaterOnceOutputBegins) {
  const int messages = memfd_create("messages", 0);
  link_.lateMessages = vtq::FileDescriptor(dup(messages));
  Worker& worker = Start();
  const RunResult result = RunInChild([&] {
    [[maybe_unused]] ssize_t ignored = write(STDERR_FILENO, "now ", 4);
    worker.BeginOutput();
    ignored = write(STDERR_FILENO, "later", 5);
    return 0;
  });
  EXPECT_EQ(result.err, "now ");
  char text[16]{};
  EXPECT_EQ(pread(messages, text, sizeof text, 0), 5);
  EXPECT_STREQ(text, "later");
  close(messages);
}

TEST_F(WorkerTest, SaysThatItIsOverAndEndsWithTheStatus) {
  Worker& worker = Start();
  EXPECT_EQ(RunInChild([&]() -> int { worker.End(kPipeClosed); }).status, kPipeClosed);
  EXPECT_THAT(NextKind(), Optional(Kind::kOver));
}

TEST_F(WorkerTest, EndsWhenItsSupervisorHasGone) {
  Worker& worker = Start();
  supervisor_.Close();
  EXPECT_EQ(RunInChild([&] {
              worker.BeginEnding();
              return 0;
            }).status,
            kFailed);
}

TEST_F(WorkerTest, ConfinesItselfAsItIsTold) {
  bool isConfined = false;
  link_.confine = [&isConfined](const Needs&) { isConfined = true; };
  Start().Confine({});
  EXPECT_TRUE(isConfined);
}

TEST_F(WorkerTest, WithoutASupervisorNothingIsToldOrLeftOut) {
  Worker alone;
  EXPECT_EQ(alone.Begin({"step"}), std::nullopt);
  alone.EndStep();
  alone.BeginOutput();
  alone.Confine({});
  EXPECT_EQ(Next(), std::nullopt);
}

}  // namespace
}  // namespace pciinfo
