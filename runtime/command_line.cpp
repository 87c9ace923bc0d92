// SPDX-License-Identifier: Apache-2.0
#include "runtime/command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace vtq {

namespace {

bool IsProgram(const std::string& file) {
  struct stat status {};
  return ::stat(file.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         ::access(file.c_str(), X_OK) == 0;
}

}  // namespace

std::vector<std::string> SplitCommand(const std::string& command) {
  constexpr const char* kBlanks = " \t";
  std::vector<std::string> words;
  std::size_t start = command.find_first_not_of(kBlanks);
  while (start != std::string::npos) {
    const std::size_t end = command.find_first_of(kBlanks, start);
    words.push_back(command.substr(start, end - start));
    start = command.find_first_not_of(kBlanks, end);
  }
  return words;
}

std::string FindProgram(const std::string& name) {
  if (name.starts_with('/')) return name;
  if (name.find_first_of(std::string("/\0", 2)) != std::string::npos) return {};
  std::string_view directories = kProgramSearchPath;
  while (!directories.empty()) {
    const std::size_t end = std::min(directories.find(':'), directories.size());
    std::string file = std::string(directories.substr(0, end)).append("/").append(name);
    if (IsProgram(file)) return file;
    directories.remove_prefix(std::min(end + 1, directories.size()));
  }
  return {};
}

}  // namespace vtq
