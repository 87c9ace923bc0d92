// SPDX-License-Identifier: Apache-2.0
#include "host/collect/plugin_files.h"

#include <dirent.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "host/base/errors.h"
#include "host/console/text.h"
#include "host/process/library_location.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPluginSuffix = ".pi.so";

/// Returns the name of the class file that belongs to a plug-in.
std::string ClassFileOf(const std::string& plugin) {
  std::string_view stem = plugin;
  if (stem.ends_with(kPluginSuffix)) stem.remove_suffix(kPluginSuffix.size());
  return std::string(stem) + ".classes.json";
}

// Without std::filesystem::directory_iterator, which ends the program where memory does not
// suffice.
std::vector<std::string> PluginsIn(const std::string& directory) {
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(directory.c_str()), &closedir);
  if (!entries) throw std::system_error(errno, std::generic_category(), "cannot read " + directory);
  std::vector<std::string> plugins;
  while (const dirent* const entry = readdir(entries.get())) {
    const std::string_view name = entry->d_name;
    if (name.ends_with(kPluginSuffix)) plugins.push_back(directory + "/" + entry->d_name);
  }
  if (plugins.empty()) {
    throw std::runtime_error(fmt::format(
        "no plug-in (*.pi.so) is in {}: install the plug-ins, or name one with --only-plugin",
        directory));
  }
  std::sort(plugins.begin(), plugins.end());
  return plugins;
}

std::vector<std::string> FoundPlugins(const std::vector<std::string>& directories) {
  return PluginsIn(
      FirstExisting(directories, "install the plug-ins, or name one with --only-plugin"));
}

/// Collects plug-ins and the classes that they bring.
class Finder final {
 public:
  void AddFound(const std::string& file) {
    found_.insert(fs::weakly_canonical(file));
    Add(file);
  }

  void AddNamed(const std::string& name) {
    const std::string file = name.empty() ? "" : fs::absolute(name).string();
    if (!fs::exists(file)) {
      throw std::runtime_error(
          fmt::format("cannot open the plug-in \"{}\": there is no such file", Printable(name)));
    }
    const std::string resolved = fs::weakly_canonical(file);
    if (found_.count(resolved) != 0) {
      throw UsageError(Printable(name) + " is loaded without being named: leave out its --plugin");
    }
    if (!named_.insert(resolved).second) {
      throw UsageError(Printable(name) + " is named twice: name each plug-in once");
    }
    Add(file);
    // Who names a plug-in asks for its classes.
    for (const std::string& served : set_.plugins.back().classes) {
      set_.declared.onRequest.erase(served);
    }
  }

  void AddClassFile(const std::string& file) { ReadClassFile(file, set_.declared); }

  PluginSet Take() {
    if (set_.declared.classes.empty()) {
      throw std::runtime_error(fmt::format(
          "no class is declared: put {} beside the plug-in, or name a file with --class-file",
          Printable(fs::path(ClassFileOf(set_.plugins.front().file)).filename().string())));
    }
    return std::move(set_);
  }

 private:
  void Add(const std::string& file) {
    PluginFile plugin{file, {}};
    const std::string classFile = ClassFileOf(file);
    if (fs::exists(classFile)) plugin.classes = ReadClassFile(classFile, set_.declared);
    set_.plugins.push_back(std::move(plugin));
  }

  // Paths without symbolic links.
  std::set<std::string> found_;
  std::set<std::string> named_;
  PluginSet set_;
};

}  // namespace

PluginSet FindPlugins(const PluginOptions& options, const std::vector<std::string>& directories) {
  Finder finder;
  if (options.only.empty()) {
    for (const std::string& file : FoundPlugins(directories)) finder.AddFound(file);
  }
  for (const auto* names : {&options.only, &options.added}) {
    for (const std::string& name : *names) finder.AddNamed(name);
  }
  for (const std::string& file : options.classFiles) finder.AddClassFile(file);
  return finder.Take();
}

PluginSet FindPlugins(const PluginOptions& options) {
  return FindPlugins(options, PluginDirectories(ProgramDirectory()));
}

}  // namespace pciinfo
