// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// The directories of the project from which the files of a directory may include, including its
// own.
const std::map<std::string, std::vector<std::string>> kMayInclude{
    {"framework", {"framework"}},
    {"plugin", {"framework", "plugin"}},
    {"pci", {"framework", "plugin", "pci"}},
    {"slots", {"framework", "plugin", "slots"}},
    {"board", {"framework", "plugin", "board"}},
    {"topology", {"framework", "topology"}},
    {"runtime", {"framework", "runtime"}},
    {"host", {"framework", "runtime", "host"}},
};

// Files that connect the parts may include more.
const std::map<std::string, std::vector<std::string>> kMeetingPlaces{
    {"plugin/entry.cpp", {"pci", "slots", "board"}},
    {"slots/device_in_slot.cpp", {"pci"}},
};

// The rooms of the host, and the rooms from which each may include, including itself. A room comes
// after all rooms that it includes from, so there are no cycles.
const std::map<std::string, std::vector<std::string>> kRoomMayInclude{
    {"base", {"base"}},
    {"console", {"base", "console"}},
    {"formats", {"base", "console", "formats"}},
    {"process", {"base", "console", "process"}},
    {"model", {"base", "console", "formats", "model"}},
    {"machine", {"base", "console", "formats", "model", "machine"}},
    {"schema", {"base", "console", "formats", "model", "schema"}},
    {"check", {"base", "console", "formats", "model", "machine", "check"}},
    {"record", {"base", "console", "formats", "model", "machine", "check", "record"}},
    {"interchange",
     {"base", "console", "formats", "model", "machine", "check", "record", "interchange"}},
    {"instance_diff", {"base", "console", "formats", "model", "instance_diff"}},
    {"collect", {"base", "console", "schema", "process", "collect"}},
    {"capture", {"base", "console", "process", "schema", "capture"}},
    {"replay", {"base", "console", "process", "capture", "replay"}},
    {"views",
     {"base", "console", "formats", "model", "machine", "check", "record", "schema", "collect",
      "views"}},
    {"diff",
     {"base", "console", "formats", "model", "machine", "record", "views", "instance_diff",
      "diff"}},
    {"metrics", {"base", "console", "model", "machine", "check", "metrics"}},
    {"report", {"base", "console", "model", "machine", "check", "record", "views", "report"}},
    {"fleet", {"base", "console", "formats", "model", "store", "fleet"}},
    {"store", {"base", "process", "model", "machine", "record", "store"}},
    {"extras", {"base", "process", "formats", "capture", "replay", "extras"}},
    {"cli", {"base",   "console", "formats",     "process",       "model", "machine", "schema",
             "check",  "record",  "interchange", "instance_diff", "diff",  "collect", "capture",
             "replay", "views",   "metrics",     "report",        "store", "fleet",   "cli"}},
};

struct Include {
  std::string file;
  std::string target;
  bool isOwn;  // in quotes
};

std::vector<Include> IncludesOf(const std::string& directory) {
  std::vector<Include> includes;
  const std::regex pattern(R"(^\s*#\s*include\s*([<"])([^>"]*)[>"].*)");
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(SOURCE_DIR) / directory)) {
    if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") continue;
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      std::smatch match;
      if (!std::regex_match(line, match, pattern)) continue;
      includes.push_back({fs::relative(entry.path(), SOURCE_DIR), match[2], match[1] == "\""});
    }
  }
  EXPECT_FALSE(includes.empty()) << directory;
  return includes;
}

bool Contains(const std::vector<std::string>& list, const std::string& item) {
  return std::find(list.begin(), list.end(), item) != list.end();
}

}  // namespace

TEST(WallsTest, DirectoriesIncludeOnlyWhatStandsBelowThem) {
  for (const auto& [directory, allowed] : kMayInclude) {
    for (const Include& include : IncludesOf(directory)) {
      if (!include.isOwn) continue;
      const std::string target = include.target.substr(0, include.target.find('/'));
      const auto meeting = kMeetingPlaces.find(include.file);
      const bool meets = meeting != kMeetingPlaces.end() && Contains(meeting->second, target);
      EXPECT_TRUE(Contains(allowed, target) || meets)
          << include.file << " includes " << include.target;
    }
  }
}

TEST(WallsTest, RoomsOfTheHostIncludeOnlyWhatStandsBelowThem) {
  for (const Include& include : IncludesOf("host")) {
    if (include.target.rfind("host/", 0) != 0 || include.file == "host/main.cpp") continue;
    const auto roomOf = [](const std::string& path) {
      const std::string inside = path.substr(path.find('/') + 1);
      return inside.substr(0, inside.find('/'));
    };
    const auto allowed = kRoomMayInclude.find(roomOf(include.file));
    ASSERT_NE(allowed, kRoomMayInclude.end()) << include.file << " is in no room of the list";
    EXPECT_TRUE(Contains(allowed->second, roomOf(include.target)))
        << include.file << " includes " << include.target;
  }
}

TEST(WallsTest, TheRoomsOfTheHostFormNoCircle) {
  std::vector<std::string> built;
  while (built.size() < kRoomMayInclude.size()) {
    const std::size_t before = built.size();
    for (const auto& entry : kRoomMayInclude) {
      const std::string& room = entry.first;
      const bool stands = std::all_of(
          entry.second.begin(), entry.second.end(),
          [&](const std::string& other) { return other == room || Contains(built, other); });
      if (stands && !Contains(built, room)) built.push_back(room);
    }
    ASSERT_GT(built.size(), before) << "these rooms include from each other";
  }
}

TEST(WallsTest, EveryRoomOfTheHostSaysWhatItIsFor) {
  for (const auto& [room, allowed] : kRoomMayInclude) {
    EXPECT_TRUE(fs::exists(fs::path(SOURCE_DIR) / "host" / room / "README.md")) << room;
  }
}

TEST(WallsTest, TheContractNeedsTheStandardLibraryOnly) {
  for (const Include& include : IncludesOf("framework")) {
    if (include.isOwn) continue;
    EXPECT_EQ(include.target.find_first_of("./"), std::string::npos)
        << include.file << " includes <" << include.target << ">";
  }
}
