// SPDX-License-Identifier: Apache-2.0

// How the program and its libraries were compiled and linked, read from the files themselves.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <string>

#include "tests/fakes/run_process.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class Hardening : public testing::TestWithParam<const char*> {
 protected:
  /// What readelf prints of the file.
  static std::string Read(const std::string& option) {
    const RunResult result = RunProcess({"readelf", "--wide", option, GetParam()});
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
  }

  static std::size_t Count(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + piece.size())) {
      ++count;
    }
    return count;
  }
};

TEST_P(Hardening, IsLoadedAtARandomAddress) { EXPECT_THAT(Read("-h"), HasSubstr("DYN (")); }

TEST_P(Hardening, HasNoExecutableStack) {
  EXPECT_TRUE(std::regex_search(Read("-l"), std::regex("GNU_STACK .* RW  ")));
}

TEST_P(Hardening, HasNothingThatCanBeWrittenAndExecuted) {
  EXPECT_FALSE(std::regex_search(Read("-l"), std::regex("LOAD .* RWE ")));
}

TEST_P(Hardening, IsBoundAtTheStartAndReadOnlyThen) {
  EXPECT_THAT(Read("-l"), HasSubstr("GNU_RELRO"));
  EXPECT_THAT(Read("-d"), HasSubstr("BIND_NOW"));
}

TEST_P(Hardening, ChecksItsStack) {
  EXPECT_THAT(Read("--dyn-syms"), HasSubstr("__stack_chk_fail"));
}

#ifdef __x86_64__
// The C library's own first instructions are not marked as such in every release, so that the mark
// of the whole file may be missing.
TEST_P(Hardening, MarksWhereCallsMayLead) {
  std::ifstream file(GetParam(), std::ios::binary);
  const std::string code(std::istreambuf_iterator<char>(file), {});
  constexpr std::size_t kOfTheCLibrary = 20;
  EXPECT_GT(Count(code, "\xF3\x0F\x1E\xFA"), kOfTheCLibrary);
}
#endif

#ifdef HAS_CHECKED_FUNCTIONS
// This function has a version that checks its arguments, which optimised code calls in its place.
TEST_P(Hardening, CallsCheckedFunctions) {
  const std::string symbols = Read("--dyn-syms");
  EXPECT_THAT(symbols, Not(HasSubstr(" snprintf@")));
  // The one library that writes no texts of numbers.
  const bool writesNumbers = std::string(GetParam()).find("libvtqcore") == std::string::npos;
  EXPECT_EQ(symbols.find(" __snprintf_chk@") != std::string::npos, writesNumbers);
}
#endif

INSTANTIATE_TEST_SUITE_P(BuiltFiles, Hardening, testing::Values(HARDENED_FILES),
                         [](const auto& file) {
                           const std::string path = file.param;
                           return std::regex_replace(path.substr(path.rfind('/') + 1),
                                                     std::regex("[^A-Za-z0-9]"), "_");
                         });

}  // namespace
