// SPDX-License-Identifier: Apache-2.0
#include "host/process/library_location.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sys/auxv.h>

#include <filesystem>
#include <stdexcept>

#include "host/process/plugin_directory.h"

namespace pciinfo {
namespace {

std::filesystem::path InstalledDirectory(const std::filesystem::path& programDirectory) {
  return (programDirectory / kPluginDirectory).lexically_normal();
}

}  // namespace

std::vector<std::string> LibraryPlaces(const std::string& programDirectory,
                                       const std::string& file) {
  const std::filesystem::path directory = programDirectory;
  return {directory / file, directory.parent_path() / "lib" / file,
          InstalledDirectory(directory) / file};
}

std::vector<std::string> PluginDirectories(const std::string& programDirectory) {
  const std::filesystem::path directory = programDirectory;
  const std::string besideProgram = directory.parent_path() / "lib/pciinfo/plugins";
  const std::string installed = InstalledDirectory(directory) / "plugins";
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

std::string ProgramDirectory() {
  std::error_code isMissing;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", isMissing);
  if (!isMissing) return program.parent_path();
  // Without /proc the kernel tells the name by which the program was started, as a number.
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  const auto* const name = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
  return std::filesystem::canonical(name == nullptr ? "" : name).parent_path();
}

}  // namespace pciinfo
