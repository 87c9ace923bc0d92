// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

/// A machine to test, other than the one that runs the tests.
struct Machine {
  std::string name;
  /// A directory with a machine.json, or a capture of a real machine: a directory or a tar archive
  /// with the layout of a root directory.
  std::filesystem::path source;
};

/// For GoogleTest's messages.
std::ostream& operator<<(std::ostream& stream, const Machine& machine);

/// The machines of this project whose collection ends, sorted by name.
const std::vector<Machine>& OwnMachines();

/// The machines of this project whose collection does not end.
const std::vector<Machine>& EndlessMachines();

/// OwnMachines, then the captures in the directory PCIINFO_MACHINES, if the build sets it. Throws
/// when the directory cannot be read.
const std::vector<Machine>& AllMachines();

/// Returns a machine's name in a form that a test's name may contain.
std::string TestNameOf(const testing::TestParamInfo<Machine>& info);

/// Shows the files of this machine in the process's /proc and /sys. Throws std::runtime_error or
/// std::invalid_argument on failure.
void Become(const Machine& machine);

/// A test that runs on a machine.
class MachineTest : public testing::TestWithParam<Machine> {
 protected:
  void SetUp() override { Become(GetParam()); }
};
