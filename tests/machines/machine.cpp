// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/machine.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "tests/fakes/machine_tree.h"
#include "tests/machines/process.h"
#include "tests/recipes/machine_recipe.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kRecipe = "machine.json";
constexpr const char* kArchive = ".tar.gz";

std::vector<Machine> SortedByName(std::vector<Machine> machines) {
  std::sort(machines.begin(), machines.end(),
            [](const Machine& left, const Machine& right) { return left.name < right.name; });
  return machines;
}

std::vector<Machine> MachinesWithRecipe(bool endless) {
  std::vector<Machine> machines;
  for (const fs::directory_entry& entry : fs::directory_iterator(OWN_MACHINES)) {
    const fs::path recipe = entry.path() / kRecipe;
    if (!fs::exists(recipe) || ReadRecipe(recipe).value("endless", false) != endless) continue;
    machines.push_back({entry.path().filename(), entry.path()});
  }
  return SortedByName(std::move(machines));
}

std::vector<Machine> Captures() {
  std::vector<Machine> machines;
  const fs::path directory = PCIINFO_MACHINES;
  if (directory.empty()) return machines;
  for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
    std::string name = entry.path().filename();
    const bool archive = name.ends_with(kArchive);
    if (!archive && !entry.is_directory()) continue;
    if (archive) name.resize(name.size() - std::string_view(kArchive).size());
    machines.push_back({name, entry.path()});
  }
  return SortedByName(std::move(machines));
}

void Unpack(const fs::path& archive, const fs::path& directory) {
  const RunResult tar = RunToEnd({"tar", "--no-same-owner", "-xf", archive, "-C", directory});
  if (tar.status != 0) throw std::runtime_error(archive.string() + ": " + tar.err);
}

// Moves the content of the capture's directory `from` to the machine's directory `to`, replacing
// its content.
void MoveContent(const fs::path& from, const std::string& to) {
  if (!fs::exists(from)) return;
  for (const fs::directory_entry& entry : fs::directory_iterator(from)) {
    const fs::path place = MachineTree::Real(to) / entry.path().filename();
    fs::remove_all(place);
    fs::rename(entry.path(), place);
  }
}

void BecomeCapture(const fs::path& source) {
  const fs::path directory = MachineTree::Real("/capture");
  fs::remove_all(directory);
  fs::create_directories(directory);
  if (fs::is_directory(source)) {
    fs::copy(source, directory, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
  } else {
    Unpack(source, directory);
  }
  MoveContent(directory / "proc", "/proc");
  MoveContent(directory / "sys", "/sys");
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Machine& machine) {
  return stream << machine.name;
}

// GoogleTest asks for the machines once for each test, in each process; so they are read once.
const std::vector<Machine>& OwnMachines() {
  static const std::vector<Machine> machines = MachinesWithRecipe(false);
  return machines;
}

const std::vector<Machine>& EndlessMachines() {
  static const std::vector<Machine> machines = MachinesWithRecipe(true);
  return machines;
}

const std::vector<Machine>& AllMachines() {
  static const std::vector<Machine> machines = [] {
    std::vector<Machine> all = OwnMachines();
    const std::vector<Machine> captures = Captures();
    all.insert(all.end(), captures.begin(), captures.end());
    return all;
  }();
  return machines;
}

std::string TestNameOf(const testing::TestParamInfo<Machine>& info) {
  std::string name = info.param.name;
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

void Become(const Machine& machine) {
  MachineTree::Clear();
  const fs::path recipe = machine.source / kRecipe;
  if (fs::exists(recipe)) {
    BuildMachine(ReadRecipe(recipe), MachineTree::Real("/"));
  } else {
    BecomeCapture(machine.source);
  }
}
