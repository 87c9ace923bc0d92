// SPDX-License-Identifier: Apache-2.0

// A main for targets without libFuzzer: runs the target on the files on the command line and on the
// files in directories there, or without arguments on standard input. For other fuzzers, debuggers
// and the tests.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz.h"

namespace {

namespace fs = std::filesystem;

std::string ReadAll(std::istream& stream) {
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// Throws fs::filesystem_error, which names the missing file.
std::vector<fs::path> FilesOf(const fs::path& named) {
  if (!fs::is_directory(fs::status(fs::canonical(named)))) return {named};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(named)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Prints the name first, so that the last line of the output names the input that ended the
// process.
void Replay(const fs::path& path) {
  std::cerr << path.string() << std::endl;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + path.string());
  fuzz::CheckInput(ReadAll(file));
}

}  // namespace

int main(int count, char** arguments) {
  try {
    if (count == 1) fuzz::CheckInput(ReadAll(std::cin));
    std::size_t inputs = 0;
    for (int i = 1; i < count; ++i) {
      for (const fs::path& file : FilesOf(arguments[i])) {
        Replay(file);
        ++inputs;
      }
    }
    if (count > 1 && inputs == 0) throw std::runtime_error("no input files found");
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << arguments[0] << ": " << failure.what() << '\n';
    return 1;
  }
}
