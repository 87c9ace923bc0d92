// SPDX-License-Identifier: Apache-2.0
#include "host/process/library_location.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/auxv.h>

#include <filesystem>
#include <stdexcept>

namespace pciinfo {
namespace {

std::filesystem::path InstalledFolder(const std::filesystem::path& programFolder) {
  return (programFolder / PCIINFO_PLUGIN_FOLDER).lexically_normal();
}

}  // namespace

std::vector<std::string> LibraryPlaces(const std::string& programFolder, const std::string& file) {
  const std::filesystem::path folder = programFolder;
  return {folder / file, folder.parent_path() / "lib" / file, InstalledFolder(folder) / file};
}

std::vector<std::string> PluginDirectories(const std::string& programFolder) {
  const std::filesystem::path folder = programFolder;
  const std::string besideProgram = folder.parent_path() / "lib/pciinfo/plugins";
  const std::string installed = InstalledFolder(folder) / "plugins";
  if (installed == besideProgram) return {besideProgram};
  return {besideProgram, installed};
}

std::string FirstExisting(const std::vector<std::string>& places, const std::string& advice) {
  for (const std::string& place : places) {
    std::error_code ignored;
    if (std::filesystem::exists(place, ignored)) return place;
  }
  throw std::runtime_error(fmt::format("none of {} exists; {}", fmt::join(places, ", "), advice));
}

std::string ProgramFolder() {
  std::error_code isMissing;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", isMissing);
  if (!isMissing) return program.parent_path();
  // Without /proc the kernel tells the name by which the program was started, as a number.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* const name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return std::filesystem::canonical(name == nullptr ? "" : name).parent_path();
}

}  // namespace pciinfo
