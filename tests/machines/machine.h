#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

/// A machine that is not the one that runs the tests.
struct Machine {
  std::string name;
  /// A folder with a machine.json, or a capture of a real machine: a folder or a tar archive laid
  /// out like the machine's root.
  std::filesystem::path source;
};

/// For GoogleTest's messages.
std::ostream& operator<<(std::ostream& stream, const Machine& machine);

/// The machines of the project's own making whose collection ends; in order of their names.
std::vector<Machine> OwnMachines();

/// Those whose collection does not end.
std::vector<Machine> EndlessMachines();

/// OwnMachines, then the captures in the folder that the build names, if it names one. Throws when
/// the folder cannot be read.
std::vector<Machine> AllMachines();

/// A machine's name as part of a test's name.
std::string TestNameOf(const testing::TestParamInfo<Machine>& info);

/// Makes this machine's trees the process's /proc and /sys. Throws std::runtime_error or
/// std::invalid_argument when that cannot be done.
void Become(const Machine& machine);

/// A test that runs on a machine.
class MachineTest : public testing::TestWithParam<Machine> {
 protected:
  void SetUp() override { Become(GetParam()); }
};
