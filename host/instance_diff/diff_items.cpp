// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/diff_items.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <tuple>

#include "host/console/text.h"
#include "host/formats/value_text.h"
#include "host/model/pair_by_keys.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;

std::string Hex(const std::optional<unsigned>& number) {
  return number ? fmt::format("{:04x}", *number) : "";
}

/// Reads a property that only some classes declare; nothing if undeclared or unset.
std::optional<unsigned> OptionalNumber(const vtq::Class& cimClass, const vtq::Instance& instance,
                                       const std::string& property) {
  const auto& properties = cimClass.GetSchema().properties;
  const bool isDeclared = std::any_of(properties.begin(), properties.end(),
                                      [&](const auto& row) { return row.name == property; });
  return isDeclared ? NumberOf(instance, property) : std::nullopt;
}

std::string Designation(const vtq::Instance& slot) {
  return TrimEnd(Printable(TextOf(slot, "SlotDesignation")));
}

DiffItem SlotItem(const std::shared_ptr<vtq::Class>& cimClass,
                  const std::shared_ptr<vtq::Instance>& instance) {
  DiffItem item{cimClass, instance, "", {}, {}, {}, false, {}, {}};
  const std::string tag = TextOf(*instance, "Tag");
  const std::string name = Designation(*instance);
  const std::string id = Hex(NumberOf(*instance, "Number"));
  const auto ifNamed = [&](const std::string& key) { return name.empty() ? "" : key; };
  item.label = name.empty() ? Printable(tag) : fmt::format("{} ({})", name, Printable(tag));
  item.keys = {fmt::format("{}|{}|{}", name, id, tag), ifNamed(name + '|' + id),
               ifNamed(name + '|' + tag), ifNamed(name), id.empty() ? "" : id + '|' + tag};
  return item;
}

TCIMReference ReferenceOf(const vtq::Instance& association, const char* property) {
  return association.GetProperty(property, {}).value.GetReference();
}

/// The instances that an association joins to functions.
using Placements = std::multimap<std::string, std::string>;

/// Returns the paths of slots or boards that an association joins to functions, by function path.
Placements PlacementsOf(const vtq::Namespace& repository, const char* association) {
  Placements placements;
  for (const auto& instance : repository.Find(association)->GetInstances()) {
    placements.emplace(ReferenceOf(*instance, "Dependent").ToString(),
                       ReferenceOf(*instance, "Antecedent").ToString());
  }
  return placements;
}

std::string CardOf(const DiffItem& item) {
  const auto sub = [&](const char* name) {
    return Hex(OptionalNumber(*item.cimClass, *item.instance, name));
  };
  return fmt::format("{}|{}|{}|{}", Hex(item.function.vendorId), Hex(item.function.deviceId),
                     sub("SubsystemVendorID"), sub("SubsystemID"));
}

std::string DeviceAndFunction(const PciFunction& function) {
  if (!function.address) return function.location;
  return fmt::format("{:x}.{:x}", function.address->device, function.address->function);
}

/// The slot comes first, because it identifies a card even if buses are renumbered. The address
/// alone comes last: it finds the card that was replaced by another one.
std::vector<std::string> FunctionKeys(const DiffItem& item,
                                      const std::map<std::string, std::string>& slotNames) {
  std::string place;
  for (const std::string& slot : item.slots) {
    const auto name = slotNames.find(slot);
    place += (name == slotNames.end() ? slot : name->second) + '|';
  }
  const std::string card = CardOf(item);
  const std::string address = AddressText(item.function);
  const std::string within = DeviceAndFunction(item.function);
  const auto inSlot = [&](const std::string& key) {
    return place.empty() ? "" : fmt::format("{}#{}{}", card, place, key);
  };
  return {inSlot(address),     inSlot(within), inSlot(""), card + '@' + address,
          card + '@' + within, card,           address};
}

void SortItems(DiffItems& items) {
  std::stable_sort(items.begin(), items.end(), [](const DiffItem& left, const DiffItem& right) {
    const auto& a = left.function.address;
    const auto& b = right.function.address;
    return a && b ? *a < *b : a.has_value() && !b;
  });
}

std::vector<PairingKeys> KeysOf(const DiffItems& items) {
  std::vector<PairingKeys> keys;
  keys.reserve(items.size());
  for (const DiffItem& item : items) keys.push_back(item.keys);
  return keys;
}

}  // namespace

std::vector<DiffPair> PairItems(const DiffItems& before, const DiffItems& after) {
  const auto partners = PairByKeys(KeysOf(before), KeysOf(after));
  std::vector<bool> isPaired(before.size(), false);
  for (const auto& partner : partners) {
    if (partner) isPaired[*partner] = true;
  }
  std::vector<DiffPair> pairs;
  for (std::size_t i = 0; i < before.size(); ++i) {
    if (!isPaired[i]) pairs.push_back({&before[i], nullptr});
  }
  for (std::size_t i = 0; i < after.size(); ++i) {
    pairs.push_back({partners[i] ? &before[*partners[i]] : nullptr, &after[i]});
  }
  return pairs;
}

DiffItems SlotItems(const vtq::Namespace& repository) {
  const auto cimClass = repository.Find("QZMSG_SystemSlot");
  const Placements placements = PlacementsOf(repository, "QZMSG_DeviceInSlot");
  std::multimap<std::string, std::string> functions;
  for (const auto& [function, slot] : placements) functions.emplace(slot, function);
  DiffItems items;
  for (const auto& instance : cimClass->GetInstances()) {
    items.push_back(SlotItem(cimClass, instance));
    const auto [first, last] = functions.equal_range(instance->GetPath());
    for (auto function = first; function != last; ++function) {
      items.back().functions.push_back(function->second);
    }
  }
  return items;
}

DiffItems FunctionItems(const vtq::Namespace& repository, const std::set<std::string>& classes,
                        const std::map<std::string, std::string>& slotNames) {
  const Placements inSlots = PlacementsOf(repository, "QZMSG_DeviceInSlot");
  const Placements onBoard = PlacementsOf(repository, "QZMSG_OnBoardDevice");
  const std::map<PciAddress, LinkStatus> links = ReadLinks(repository);
  DiffItems items;
  for (const std::string& name : classes) {
    const auto cimClass = repository.Find(name);
    for (const auto& instance : cimClass->GetInstances()) {
      DiffItem item{cimClass, instance, "", {}, ReadFunction(*cimClass, *instance),
                    {},       false,    {}, {}};
      const auto [first, last] = inSlots.equal_range(instance->GetPath());
      for (auto slot = first; slot != last; ++slot) item.slots.insert(slot->second);
      item.isOnBoard = onBoard.count(instance->GetPath()) != 0;
      item.label = fmt::format("{}  {}  {}", AddressText(item.function), IdText(item.function),
                               Printable(item.function.description));
      if (item.function.address && links.count(*item.function.address) != 0) {
        item.link = links.at(*item.function.address);
      }
      item.keys = FunctionKeys(item, slotNames);
      items.push_back(std::move(item));
    }
  }
  SortItems(items);
  return items;
}

DiffItems ItemsOf(const vtq::Namespace& repository, const std::string& className,
                  const std::string& key) {
  const auto cimClass = repository.Find(className);
  DiffItems items;
  for (const auto& instance : cimClass->GetInstances()) {
    const std::string name = key.empty() ? instance->GetPath() : TextOf(*instance, key);
    items.push_back({cimClass, instance, Printable(name), {name}, {}, {}, false, {}, {}});
  }
  return items;
}

DiffItems DanglingItems(const vtq::Namespace& repository, const std::string& className,
                        const std::set<std::string>& functionClasses) {
  const auto cimClass = repository.Find(className);
  DiffItems items;
  for (const auto& instance : cimClass->GetInstances()) {
    const TCIMReference function = ReferenceOf(*instance, "Dependent");
    const auto functionClass = repository.Find(function.GetClassName());
    if (functionClasses.count(function.GetClassName()) == 0) continue;
    if (functionClass->Find(function.ToString()) != nullptr) continue;
    const std::string& path = instance->GetPath();
    items.push_back({cimClass, instance, Printable(path), {path}, {}, {}, false, {}, {}});
  }
  return items;
}

}  // namespace pciinfo
