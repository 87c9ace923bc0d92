#pragma once

#include <stdlib.h>

#include <string>

#include "tests/pci/temporary_directory.h"

/// During its lifetime, the current directory is empty, and an own "hwinfo" is the first in PATH.
class FakeHwinfo {
 public:
  FakeHwinfo() : oldDirectory_(std::filesystem::current_path()), oldPath_(getenv("PATH")) {
    std::filesystem::current_path(current_.Path());
    WriteScript("echo \"$@\" >>'" + Arguments().string() + "'\ncat '" + Output().string() + "'\n");
    setenv("PATH", (programs_.Path().string() + ":" + oldPath_).c_str(), 1);
  }
  FakeHwinfo(const FakeHwinfo&) = delete;
  FakeHwinfo& operator=(const FakeHwinfo&) = delete;
  ~FakeHwinfo() {
    setenv("PATH", oldPath_.c_str(), 1);
    std::filesystem::current_path(oldDirectory_);
  }

  /// Sets the output of the program.
  void Print(const std::string& text) { std::ofstream(Output()) << text; }
  /// Sets the shell commands that the program runs.
  void WriteScript(const std::string& commands) {
    std::ofstream(programs_ / "hwinfo") << "#!/bin/sh\n" << commands;
    std::filesystem::permissions(programs_ / "hwinfo", std::filesystem::perms::owner_all);
  }
  /// Makes PATH contain only this object's directory.
  void HideAllOtherPrograms() { setenv("PATH", programs_.Path().c_str(), 1); }
  void Remove() { std::filesystem::remove(programs_ / "hwinfo"); }
  void RemoveCurrentDirectory() { std::filesystem::remove(current_.Path()); }

  /// The arguments of all runs, one line each.
  std::string Runs() const { return ReadFile(Arguments()); }
  std::filesystem::path ProbeFile() const { return current_ / "infopci.txt"; }
  const std::filesystem::path& Programs() const { return programs_.Path(); }

 private:
  std::filesystem::path Output() const { return programs_ / "output"; }
  std::filesystem::path Arguments() const { return programs_ / "arguments"; }

  TemporaryDirectory current_;
  TemporaryDirectory programs_;
  std::filesystem::path oldDirectory_;
  std::string oldPath_;
};
