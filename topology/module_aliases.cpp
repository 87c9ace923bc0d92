// SPDX-License-Identifier: Apache-2.0
#include "topology/module_aliases.h"

#include <algorithm>
#include <charconv>

namespace topology {
namespace {

constexpr std::string_view kAliasPrefix = "alias ";
constexpr std::string_view kBusPrefix = "pci:";

struct AliasPart {
  std::string_view name;
  std::size_t digits;
};

// The names of the parts are hexadecimal digits too, so only the width tells where a number ends.
constexpr std::array<AliasPart, 7> kAliasParts{
    {{"v", 8}, {"d", 8}, {"sv", 8}, {"sd", 8}, {"bc", 2}, {"sc", 2}, {"i", 2}}};

/// Takes a part with its number, or "*" for any, from the front of `text`.
bool TakeAliasPart(std::string_view& text, const AliasPart& part,
                   std::optional<std::uint32_t>& number) {
  if (!text.starts_with(part.name)) return false;
  text.remove_prefix(part.name.size());
  if (text.starts_with('*')) {
    text.remove_prefix(1);
    return true;
  }
  if (text.size() < part.digits) return false;
  const char* const end = text.data() + part.digits;
  std::uint32_t value = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, value, 16);
  if (error != std::errc() || stop != end) return false;
  number = value;
  text.remove_prefix(part.digits);
  return true;
}

std::uint64_t KeyOf(const std::optional<std::uint32_t>& vendor,
                    const std::optional<std::uint32_t>& device) {
  constexpr std::uint32_t kAny = 0xFFFFFFFF;
  return std::uint64_t{vendor.value_or(kAny)} << 32 | device.value_or(kAny);
}

}  // namespace

bool PciAlias::Matches(const PciAlias& function) const {
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] && numbers[i] != function.numbers[i]) return false;
  }
  return true;
}

std::optional<PciAlias> ParsePciAlias(std::string_view text) {
  if (!text.starts_with(kBusPrefix)) return std::nullopt;
  text.remove_prefix(kBusPrefix.size());
  PciAlias alias;
  for (std::size_t i = 0; i < kAliasParts.size(); ++i) {
    if (!TakeAliasPart(text, kAliasParts[i], alias.numbers[i])) return std::nullopt;
  }
  // The kernel's build ends every alias with a star, also one that ends with a number.
  if (!text.empty() && text != "*") return std::nullopt;
  return alias;
}

PciAlias AliasOf(const ConfigFacts& config) {
  return {{config.vendor, config.device, config.subsystemVendor.value_or(0),
           config.subsystemDevice.value_or(0), config.BaseClass(), config.classCode >> 8 & 0xFF,
           config.classCode & 0xFF}};
}

ModuleAliases::ModuleAliases(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    Add(text.substr(at, end - at));
    at = end + 1;
  }
}

void ModuleAliases::Add(std::string_view line) {
  if (!line.starts_with(kAliasPrefix)) return;
  line.remove_prefix(kAliasPrefix.size());
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos) return;
  const auto alias = ParsePciAlias(line.substr(0, blank));
  if (!alias) return;
  // An alias with a device and no vendor is compared with every function.
  const auto& vendor = alias->numbers[0];
  const auto device = vendor ? alias->numbers[1] : std::nullopt;
  entries_[KeyOf(vendor, device)].push_back({*alias, std::string(line.substr(blank + 1))});
}

std::vector<std::string> ModuleAliases::FindModules(const PciAlias& function) const {
  const auto& vendor = function.numbers[0];
  const auto& device = function.numbers[1];
  std::vector<std::string> modules;
  for (const std::uint64_t key :
       {KeyOf(vendor, device), KeyOf(vendor, std::nullopt), KeyOf(std::nullopt, std::nullopt)}) {
    const auto found = entries_.find(key);
    if (found == entries_.end()) continue;
    for (const Entry& entry : found->second) {
      if (entry.alias.Matches(function)) modules.push_back(entry.module);
    }
  }
  std::sort(modules.begin(), modules.end());
  modules.erase(std::unique(modules.begin(), modules.end()), modules.end());
  return modules;
}

}  // namespace topology
