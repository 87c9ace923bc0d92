#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

/// A new directory; the destructor removes it.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string path = std::filesystem::temp_directory_path() / "pci-test-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("cannot make " + path);
    path_ = path;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() { std::filesystem::remove_all(path_); }

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ostringstream content;
  content << std::ifstream(path).rdbuf();
  return content.str();
}
