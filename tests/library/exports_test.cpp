// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/fakes/run_process.h"

namespace {

/// The lines that a program prints.
std::vector<std::string> LinesFrom(const std::vector<std::string>& words) {
  const RunResult result = RunProcess(words);
  EXPECT_EQ(result.status, 0) << words.front() << ": " << result.err;
  return LinesOf(result.out);
}

// A demangled symbol with short names of library types, so that overloads can be told apart at a
// glance. The full names depend on the standard library, and blanks in them on the demangler.
std::string ReadableName(std::string symbol) {
  const std::vector<std::pair<std::regex, std::string>> rules{
      {std::regex(" >"), ">"},
      {std::regex(R"(\[abi:cxx11\])"), ""},
      {std::regex(R"(std::__cxx11::basic_string<char, std::char_traits<char>, )"
                  R"(std::allocator<char>>)"),
       "std::string"},
      {std::regex(R"(std::map<std::string, NQZMVTQ20::TCIMValue, std::less<std::string>, )"
                  R"(std::allocator<std::pair<std::string const, NQZMVTQ20::TCIMValue>>>)"),
       "TPropertyMap"},
      {std::regex(R"(std::vector<(.+?), std::allocator<\1>>)"), "std::vector<$1>"},
      {std::regex(R"(__gnu_cxx::__normal_iterator<(\w+)\*, std::vector<\1>>)"),
       "std::vector<$1>::iterator"},
  };
  for (const auto& [pattern, text] : rules) symbol = std::regex_replace(symbol, pattern, text);
  return symbol;
}

std::set<std::string> ExportedSymbols() {
  std::set<std::string> symbols;
  for (const std::string& line : LinesFrom({"nm", "-DC", "--defined-only", PLUGIN_FILE})) {
    constexpr std::size_t kAddressAndKind = 19;
    symbols.insert(ReadableName(line.substr(kAddressAndKind)));
  }
  return symbols;
}

std::set<std::string> ExpectedSymbols() {
  std::ifstream list(SOURCE_DIR "/tests/library/exported_symbols.txt");
  std::set<std::string> symbols;
  for (std::string line; std::getline(list, line);) {
    if (!line.empty() && line[0] != '#') symbols.insert(line);
  }
  return symbols;
}

std::vector<std::string> Difference(const std::set<std::string>& left,
                                    const std::set<std::string>& right) {
  std::vector<std::string> difference;
  std::set_difference(left.begin(), left.end(), right.begin(), right.end(),
                      std::back_inserter(difference));
  return difference;
}

using Names = std::vector<std::string>;

}  // namespace

TEST(ExportsTest, ShowsItsClassesTablesAndLoadersAndNothingElse) {
  const std::set<std::string> exported = ExportedSymbols();
  const std::set<std::string> expected = ExpectedSymbols();
  EXPECT_EQ(Difference(exported, expected), Names()) << "exported, but not in the list";
  EXPECT_EQ(Difference(expected, exported), Names()) << "in the list, but not exported";
}

TEST(ExportsTest, NeedsTheFrameworkAndTheLanguageRuntimeOnly) {
  std::set<std::string> needed;
  for (const std::string& line : LinesFrom({"readelf", "-d", PLUGIN_FILE})) {
    if (line.find("(NEEDED)") == std::string::npos) continue;
    const std::string file = line.substr(line.find('[') + 1);
    needed.insert(file.substr(0, file.find(".so")));
  }
  for (const char* sanitizer : {"libasan", "libubsan"}) needed.erase(sanitizer);
  EXPECT_EQ(
      Difference(needed, {"libc", "libgcc_s", "libm", "libstdc++", "libvtqbase", "libvtqcore"}),
      Names());
  EXPECT_EQ(needed.count("libvtqcore"), 1U);
}

class VirtualTableTest : public testing::Test {
 protected:
  VirtualTableTest() : library_(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(library_, nullptr) << dlerror();
  }
  ~VirtualTableTest() override { dlclose(library_); }

  void* Address(const std::string& symbol) {
    void* address = dlsym(library_, symbol.c_str());
    EXPECT_NE(address, nullptr) << symbol;
    return address;
  }

  // Compares entries of a class's virtual table with the expected functions. `first` counts words;
  // 2 is the first virtual function of the first table, after offset and type information.
  void ExpectEntries(const std::string& table, std::size_t first, const Names& functions) {
    auto** entries = static_cast<void**>(Address(table));
    ASSERT_NE(entries, nullptr);
    for (std::size_t i = 0; i < functions.size(); ++i) {
      EXPECT_EQ(entries[first + i], Address(functions[i])) << table << " entry " << i;
    }
  }

 private:
  void* library_;
};

constexpr const char* kByName =
    "15GetCIMInstancesENSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE";

TEST_F(VirtualTableTest, CollectorsListClassDestructorsAndInstances) {
  for (const std::string name : {"11TPciDevInfo", "9TSlotInfo", "7TSysBrd"}) {
    ExpectEntries("_ZTV" + name, 2,
                  {"_ZN4TPci11GetCIMClassEv", "_ZN" + name + "D1Ev", "_ZN" + name + "D0Ev",
                   "_ZN4TPci15GetCIMInstancesEv", "_ZN" + name + kByName});
  }
}

TEST_F(VirtualTableTest, CallbacksListTheFirstInterfaceThenGetData) {
  const std::string c = "_ZN9NQZMVTQ2017TPciInfoCallbacks";
  const std::string getData =
      "7GetDataESt10shared_ptrINS_13ICIMNamespaceEERSt6vectorIS1_INS_9ICIMClassEESaIS6_EE";
  ExpectEntries("_ZTVN9NQZMVTQ2017TPciInfoCallbacksE", 2,
                {c + "D1Ev", c + "D0Ev", c + "7GetTypeEv", c + "7GetNameB5cxx11Ev",
                 c + "10GetVersionB5cxx11Ev", c + "19GetInterfaceVersionB5cxx11Ev",
                 c + "16PrepareForUnloadEv", c + "4InitEv", c + "6DeInitEv", c + getData});
  // The table of the second interface follows, with entries that adjust the object pointer.
  const std::string thunk = "_ZThn8_N9NQZMVTQ2017TPciInfoCallbacks";
  ExpectEntries("_ZTVN9NQZMVTQ2017TPciInfoCallbacksE", 2 + 10 + 2,
                {thunk + "D1Ev", thunk + "D0Ev", thunk + getData});
}
