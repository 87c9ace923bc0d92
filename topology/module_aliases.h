// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "topology/config_facts.h"

namespace topology {

/// The numbers of a PCI alias, "pci:v00008086d00001533sv*sd*bc*sc*i*": vendor, device, subsystem
/// vendor, subsystem device, base class, subclass, programming interface. A driver's alias leaves
/// out those that do not matter to it.
struct PciAlias {
  std::array<std::optional<std::uint32_t>, 7> numbers;

  /// Whether every number that this alias gives is the same in the other.
  bool Matches(const PciAlias& function) const;
};

/// Reads such an alias. Nothing for texts of another form.
std::optional<PciAlias> ParsePciAlias(std::string_view text);

/// The alias that the kernel makes for a function.
PciAlias AliasOf(const ConfigFacts& config);

/// The modules of a kernel that drive PCI functions.
class ModuleAliases {
 public:
  ModuleAliases() = default;
  /// `text` is the content of a kernel's modules.alias, with lines such as "alias pci:... igb".
  explicit ModuleAliases(std::string_view text);

  /// The names of the modules that could drive a function with this alias, sorted, each once.
  std::vector<std::string> FindModules(const PciAlias& function) const;

 private:
  struct Entry {
    PciAlias alias;
    std::string module;
  };

  void Add(std::string_view line);

  // By vendor and device. Aliases that give no device stand under their vendor only, those without
  // a vendor under none: so the few that are compared do not grow with the number of modules.
  std::unordered_map<std::uint64_t, std::vector<Entry>> entries_;
};

}  // namespace topology
