// SPDX-License-Identifier: Apache-2.0
#include "runtime/logger.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "tests/runtime/failure_of.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::ILogger;
using NQZMVTQ20::TOSSpecific;

using Records = std::vector<std::pair<int, std::string>>;

LogSink RecordInto(Records& records) {
  return [&records](ILogger::EVTQLogSeverity severity, const std::string& text) {
    records.emplace_back(severity, text);
  };
}

TEST(LoggerTest, HandsSeverityAndTextUnchangedToEverySink) {
  Records first;
  Records second;
  Logger logger;
  logger.AddSink(RecordInto(first));
  logger.AddSink(RecordInto(second));
  logger.Write(ILogger::kVerbose, "a\tb\n%s");
  logger.Write(ILogger::kError, "");
  EXPECT_EQ(first, (Records{{4, "a\tb\n%s"}, {0, ""}}));
  EXPECT_EQ(second, first);
}

TEST(LoggerTest, ASinkGetsRecordsUpToItsHighestSeverity) {
  Records all;
  Records few;
  Logger logger;
  EXPECT_FALSE(logger.Takes(ILogger::kError));
  logger.AddSink(RecordInto(few), ILogger::kStatus);
  EXPECT_TRUE(logger.Takes(ILogger::kStatus));
  EXPECT_FALSE(logger.Takes(ILogger::kDebug));
  logger.Write(ILogger::kDebug, "nobody's");
  logger.AddSink(RecordInto(all));
  EXPECT_TRUE(logger.Takes(ILogger::kVerbose));
  logger.Write(ILogger::kDebug, "a");
  logger.Write(ILogger::kStatus, "b");
  EXPECT_EQ(few, (Records{{2, "b"}}));
  EXPECT_EQ(all, (Records{{3, "a"}, {2, "b"}}));
}

TEST(LoggerTest, ASinkThatThrowsDisturbsNobody) {
  Records records;
  Logger logger;
  logger.AddSink([](ILogger::EVTQLogSeverity, const std::string&) { throw 1; });
  logger.AddSink(RecordInto(records));
  EXPECT_EQ(logger.GetFailure(), nullptr);
  logger.Write(ILogger::kStatus, "x");
  EXPECT_EQ(records, (Records{{2, "x"}}));
  EXPECT_NE(logger.GetFailure(), nullptr);
}

TEST(LoggerTest, AFileHoldsOneRecordALineAndHasItAtOnce) {
  const TemporaryDirectory directory;
  const std::string path = directory.GetPath() + "/log";
  const LogSink sink = MakeFileSink(path);
  EXPECT_EQ(TOSSpecific::CaptureFile(path), "");
  sink(ILogger::kDebug, "one\ttwo ");
  EXPECT_EQ(TOSSpecific::CaptureFile(path), "3 one\ttwo \n");
  sink(ILogger::kError, "two\nlines");
  EXPECT_EQ(TOSSpecific::CaptureFile(path), "3 one\ttwo \n0 two lines\n");
}

TEST(LoggerTest, AFileIsEmptiedFirst) {
  const TemporaryDirectory directory;
  const std::string path = directory.Write("log", "old");
  MakeFileSink(path)(ILogger::kWarning, "new");
  EXPECT_EQ(TOSSpecific::CaptureFile(path), "1 new\n");
}

TEST(LoggerTest, TwoSinksOnOneFileDoNotOverwriteEachOther) {
  const TemporaryDirectory directory;
  const std::string path = directory.GetPath() + "/log";
  const LogSink first = MakeFileSink(path);
  const LogSink second = MakeFileSink(path);
  first(ILogger::kStatus, "a");
  second(ILogger::kStatus, "b");
  first(ILogger::kStatus, "c");
  EXPECT_EQ(TOSSpecific::CaptureFile(path), "2 a\n2 b\n2 c\n");
}

TEST(LoggerTest, AFileThatCannotBeOpenedIsReported) {
  const TemporaryDirectory directory;
  const std::string path = directory.GetPath() + "/missing/log";
  const Failure failure = FailureOf([&path] { MakeFileSink(path); });
  EXPECT_EQ(failure.text, "cannot open the log file " + path + ": No such file or directory");
}

TEST(LoggerTest, ANewFileIsReadableByItsOwnerOnly) {
  const TemporaryDirectory directory;
  MakeFileSink(directory / "log");
  EXPECT_EQ(std::filesystem::status(directory / "log").permissions(), std::filesystem::perms{0600});
}

TEST(LoggerTest, AFileThatCannotBeWrittenIsReported) {
  const LogSink sink = MakeFileSink("/dev/full");
  EXPECT_EQ(FailureOf([&sink] { sink(ILogger::kStatus, "x"); }).text,
            "cannot write the log file /dev/full: No space left on device");
}

TEST(LoggerTest, APipeThatNobodyReadsIsNotWaitedFor) {
  const TemporaryDirectory directory;
  ASSERT_EQ(::mkfifo((directory / "log").c_str(), 0600), 0);
  EXPECT_THROW(MakeFileSink(directory / "log"), NQZMVTQ20::TVTQException);
}

TEST(LoggerTest, ALinkIsNotFollowed) {
  const TemporaryDirectory directory;
  const std::string target = directory.Write("target", "precious");
  const std::string path = directory.GetPath() + "/log";
  std::filesystem::create_symlink(target, path);
  const Failure failure = FailureOf([&path] { MakeFileSink(path); });
  EXPECT_EQ(failure.text, "cannot open the log file " + path +
                              ": it is a symbolic link; name the file that it points to");
  EXPECT_EQ(TOSSpecific::CaptureFile(target), "precious");
}

}  // namespace
}  // namespace vtq
