// SPDX-License-Identifier: Apache-2.0
#include "host/views/classes_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/console/text.h"

namespace pciinfo {
namespace {

std::vector<std::string> KeysOf(const vtq::ClassSchema& schema) {
  std::vector<std::string> keys;
  for (const vtq::PropertySchema& property : schema.properties) {
    if (property.isKey) keys.push_back(property.name);
  }
  return keys;
}

std::string PluginText(const vtq::Plugin& plugin) {
  return fmt::format(
      "Plug-in:           {}\n"
      "Name:              {}\n"
      "Version:           {}\n"
      "Interface version: {}\n\n",
      Printable(plugin.GetFile()), Printable(plugin.GetName()), Printable(plugin.GetVersion()),
      Printable(plugin.GetInterfaceVersion()));
}

std::string ClassText(const vtq::ClassSchema& schema) {
  return fmt::format("{}{}\n  {}\n  Keys: {}\n", schema.name,
                     schema.superclass.empty() ? "" : " : " + schema.superclass, schema.description,
                     fmt::join(KeysOf(schema), ", "));
}

using Names = std::vector<std::string>;

void WriteDeclared(Output& output, const PluginSet& plugins, const Names& classes) {
  for (const vtq::ClassSchema& schema : plugins.declared.classes) {
    if (std::find(classes.begin(), classes.end(), schema.name) != classes.end()) {
      output.Write(ClassText(schema));
    }
  }
}

const char* Heading(const PluginSet& plugins, const PluginFile& file) {
  if (file.classes.empty()) return "Classes: none of its own\n";
  return plugins.declared.onRequest.contains(file.classes.front())
             ? "Classes (\"instances\" prints them by name, or all with --all):\n"
             : "Classes:\n";
}

/// Returns the classes that no class file beside a plug-in declares.
Names ClassesOfAll(const PluginSet& plugins) {
  Names all;
  for (const vtq::ClassSchema& schema : plugins.declared.classes) all.push_back(schema.name);
  for (const PluginFile& plugin : plugins.plugins) {
    for (const std::string& name : plugin.classes) std::erase(all, name);
  }
  return all;
}

}  // namespace

void WriteClasses(Output& output, const vtq::PluginManager& manager, const PluginSet& plugins) {
  for (const PluginFile& file : plugins.plugins) {
    for (const auto& plugin : manager.GetPlugins()) {
      if (plugin->GetFile() == file.file) output.Write(PluginText(*plugin));
    }
    output.Write(Heading(plugins, file));
    WriteDeclared(output, plugins, file.classes);
    if (&file != &plugins.plugins.back()) output.Write("\n");
  }
  const Names shared = ClassesOfAll(plugins);
  if (!shared.empty()) output.Write("\nClasses that every plug-in is asked for (--class-file):\n");
  WriteDeclared(output, plugins, shared);
}

}  // namespace pciinfo
