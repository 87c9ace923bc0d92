#include "runtime/command_line.h"

#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

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
  std::istringstream directories(kProgramSearchPath);
  directories.exceptions(std::ios::badbit);  // no memory is not the end of the path
  std::string directory;
  while (std::getline(directories, directory, ':')) {
    std::string file = directory.append("/").append(name);
    if (IsProgram(file)) return file;
  }
  return {};
}

}  // namespace vtq
