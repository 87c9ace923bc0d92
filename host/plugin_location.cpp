#include "host/plugin_location.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <stdexcept>

namespace pciinfo {

namespace {
constexpr const char* kPluginFile = "libpciinfo.pi.so";
}

std::vector<std::string> PluginPlaces(const std::string& programFolder) {
  const std::filesystem::path folder = programFolder;
  const std::filesystem::path installed = (folder / PCIINFO_PLUGIN_FOLDER).lexically_normal();
  return {folder / kPluginFile, folder.parent_path() / "lib" / kPluginFile,
          installed / kPluginFile};
}

std::string FirstExisting(const std::vector<std::string>& places) {
  for (const std::string& place : places) {
    std::error_code ignored;
    if (std::filesystem::exists(place, ignored)) return place;
  }
  throw std::runtime_error(fmt::format(
      "there is no plug-in: none of {} exists; name one with --plugin", fmt::join(places, ", ")));
}

std::string ProgramFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace pciinfo
