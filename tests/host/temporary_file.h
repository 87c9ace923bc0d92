#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// A file name in the folder for temporary files; the file is removed at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& name) : path_(testing::TempDir() + name) {}
  ~TemporaryFile() { std::filesystem::remove(path_); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& Path() const { return path_; }
  std::string Text() const {
    std::ifstream stream(path_);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::string path_;
};
