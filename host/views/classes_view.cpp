#include "host/views/classes_view.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

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

}  // namespace

void WriteClasses(Output& output, const vtq::PluginManager& manager,
                  const vtq::Namespace& repository) {
  for (const auto& plugin : manager.GetPlugins()) output.Write(PluginText(*plugin));
  output.Write("Classes:\n");
  for (const auto& cimClass : repository.GetClasses()) {
    output.Write(ClassText(cimClass->GetSchema()));
  }
}

}  // namespace pciinfo
