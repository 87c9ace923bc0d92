#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vtq {

/// A new empty directory; the destructor removes it and everything in it.
class TemporaryDirectory final {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "runtime-test-XXXXXX").string();
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

  /// Writes a file and returns its path.
  std::string Write(const std::string& name, std::string_view content) const {
    const std::string file = path_ + "/" + name;
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
