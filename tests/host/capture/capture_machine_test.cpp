// SPDX-License-Identifier: Apache-2.0
#include "host/capture/capture_machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::Key;
using testing::StartsWith;

/// Stores the parts that it receives.
class Keeper : public CaptureReceiver {
 public:
  void Begin(const std::string& what) override { steps.push_back(what); }
  void Add(CapturePart part) override {
    EXPECT_TRUE(parts.emplace(part.path, part).second) << part.path << " was read twice";
  }
  void NoteUnread(const std::string& path, const std::string& reason) override {
    unread[path] = reason;
  }

  std::vector<std::string> steps;
  std::map<std::string, CapturePart> parts;
  std::map<std::string, std::string> unread;
};

std::string ContentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class CaptureThisMachine : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    keeper_ = std::make_unique<Keeper>();
    CaptureMachine(*keeper_);
  }
  static void TearDownTestSuite() { keeper_.reset(); }

  static std::unique_ptr<Keeper> keeper_;
};

std::unique_ptr<Keeper> CaptureThisMachine::keeper_;

TEST_F(CaptureThisMachine, TheBusDirectoriesAreComplete) {
  for (const auto& entry : fs::recursive_directory_iterator("/proc/bus/pci")) {
    if (entry.is_directory()) continue;
    const std::string path = entry.path().relative_path();
    ASSERT_THAT(keeper_->parts, Contains(Key(path)));
    EXPECT_EQ(keeper_->parts[path].content, ContentOf(entry.path()));
  }
}

TEST_F(CaptureThisMachine, EveryFunctionHasItsAttributes) {
  for (const auto& entry : fs::directory_iterator("/sys/bus/pci/devices")) {
    for (const char* name : {"config", "resource", "vendor", "device", "class", "irq"}) {
      const fs::path file = entry.path() / name;
      ASSERT_THAT(keeper_->parts, Contains(Key(file.relative_path())));
      EXPECT_EQ(keeper_->parts[file.relative_path()].content, ContentOf(file));
    }
  }
}

TEST_F(CaptureThisMachine, ADriverIsALinkToItsName) {
  for (const auto& entry : fs::directory_iterator("/sys/bus/pci/devices")) {
    const fs::path link = entry.path() / "driver";
    if (!fs::is_symlink(link)) {
      EXPECT_THAT(keeper_->parts, testing::Not(Contains(Key(link.relative_path()))));
      continue;
    }
    EXPECT_EQ(keeper_->parts[link.relative_path()].target,
              "../../../../bus/pci/drivers/" + fs::read_symlink(link).filename().string());
  }
}

TEST_F(CaptureThisMachine, CommandsComeLastWithTheirOutputs) {
  for (const char* command : {"lspci", "lspci -xxxx", "lspci -vvv"}) {
    EXPECT_THAT(keeper_->parts, Contains(Key(std::string("commands/") + command)));
  }
  EXPECT_EQ(keeper_->steps.back(), "lspci -vvv");
}

TEST_F(CaptureThisMachine, NothingElseIsThere) {
  for (const auto& [path, part] : keeper_->parts) {
    EXPECT_THAT(
        path, testing::AnyOf(StartsWith("proc/bus/pci/"), "proc/pci", "etc/machine-id",
                             StartsWith("sys/bus/pci/devices/"), StartsWith("sys/bus/pci/slots/"),
                             StartsWith("sys/firmware/dmi/tables/"), StartsWith("commands/lspci")));
  }
}

TEST_F(CaptureThisMachine, MissingPartsAreNotErrors) {
  for (const auto& [path, reason] : keeper_->unread) {
    EXPECT_TRUE(fs::exists("/" + path)) << path << ": " << reason;
  }
}

}  // namespace
}  // namespace pciinfo
