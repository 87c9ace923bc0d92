// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vtq {

/// A new empty directory; the destructor removes it and everything in it.
class TemporaryDirectory final {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "pciinfo-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = pattern;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::string& GetPath() const noexcept { return path_; }

  /// Returns the path of a file in the directory.
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  /// Returns the names of the entries, in no particular order.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  /// Returns the content of a file, "" if there is none.
  std::string Read(const std::string& name) const {
    std::ifstream stream(*this / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  /// Writes a file and returns its path.
  std::string Write(const std::string& name, std::string_view content) const {
    const std::string file = *this / name;
    std::ofstream(file, std::ios::binary) << content;
    return file;
  }

  /// Writes an executable shell script and returns its path.
  std::string WriteScript(const std::string& name, const std::string& body) const {
    const std::string file = Write(name, "#!/bin/sh\n" + body + "\n");
    std::filesystem::permissions(file, std::filesystem::perms{0755});
    return file;
  }

 private:
  std::string path_;
};

}  // namespace vtq
