// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

#include "tests/runtime/temporary_directory.h"

/// During its lifetime, the current directory is empty, and an own "hwinfo" is the first in PATH.
class FakeHwinfo {
 public:
  FakeHwinfo() : oldDirectory_(std::filesystem::current_path()), oldPath_(getenv("PATH")) {
    std::filesystem::current_path(current_.GetPath());
    WriteScript("echo \"$@\" >>'" + (programs_ / "arguments") + "'\ncat '" +
                (programs_ / "output") + "'");
    setenv("PATH", (programs_.GetPath() + ":" + oldPath_).c_str(), 1);
  }
  FakeHwinfo(const FakeHwinfo&) = delete;
  FakeHwinfo& operator=(const FakeHwinfo&) = delete;
  ~FakeHwinfo() {
    setenv("PATH", oldPath_.c_str(), 1);
    std::filesystem::current_path(oldDirectory_);
  }

  /// Sets the output of the program.
  void Print(const std::string& text) { programs_.Write("output", text); }
  /// Sets the shell commands that the program runs.
  void WriteScript(const std::string& commands) { programs_.WriteScript("hwinfo", commands); }
  /// Makes PATH contain only this object's directory.
  void HideAllOtherPrograms() { setenv("PATH", programs_.GetPath().c_str(), 1); }
  void Remove() { std::filesystem::remove(programs_ / "hwinfo"); }
  void RemoveCurrentDirectory() { std::filesystem::remove(current_.GetPath()); }

  /// The arguments of all runs, one line each.
  std::string Runs() const { return programs_.Read("arguments"); }
  std::string ProbeFile() const { return current_ / "infopci.txt"; }
  std::string Probes() const { return current_.Read("infopci.txt"); }
  std::filesystem::path Programs() const { return programs_.GetPath(); }

 private:
  vtq::TemporaryDirectory current_;
  vtq::TemporaryDirectory programs_;
  std::filesystem::path oldDirectory_;
  std::string oldPath_;
};
