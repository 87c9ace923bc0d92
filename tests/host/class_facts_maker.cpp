// SPDX-License-Identifier: Apache-2.0
#include "tests/host/class_facts_maker.h"

using namespace pciinfo;

namespace {

constexpr PciAddress kDevice{3, 0, 0};
constexpr PciAddress kBridge{0, 1, 0};
constexpr VendorAndDevice kIds{0x8086, 0x1533};

void AddFunction(ClassFacts& facts, const PciAddress& address, const std::string& kind) {
  facts.published.push_back(Published(address, kind));
  facts.list->push_back({address, kIds, {0xFEB00000}, {0x1000}});
  facts.functions[{0, address}] = {kIds, {}};
  facts.configurations[address] = {kIds, false};
}

std::vector<AffectedObject> ObjectsOf(const std::string& code, const ClassFacts& facts) {
  for (const ClassCheck& check : ClassChecks()) {
    if (check.code == code) return check.find(facts);
  }
  return {{"no such check", "", ""}};
}

}  // namespace

ClassFacts MakeSoundFacts() {
  ClassFacts facts;
  facts.hasPciBus = true;
  facts.hasSysfs = true;
  facts.list.emplace();
  AddFunction(facts, kDevice, "device");
  AddFunction(facts, kBridge, "bridge");
  facts.slotRecords.haveAddresses = true;
  facts.slotRecords.records = {{17, 4, 0, kDevice, 0, {}}};
  Slot slot = PublishedSlot(1);
  slot.functions = {facts.published.front().function};
  facts.slots.slots = {slot};
  return facts;
}

PublishedFunction Published(const PciAddress& address, const std::string& kind) {
  PciFunction function;
  function.path = "path of " + FormatAddress(address);
  function.kind = kind;
  function.address = address;
  function.vendorId = kIds.vendor;
  function.deviceId = kIds.device;
  function.description = "Something";
  return {function, std::nullopt};
}

Slot PublishedSlot(unsigned tag) {
  Slot slot;
  slot.tag = "Tag " + std::to_string(tag);
  slot.path = "path of " + slot.tag;
  slot.designation = "SLOT" + std::to_string(tag);
  slot.id = tag;
  return slot;
}

std::vector<std::string> Doubtful(const std::string& code, const ClassFacts& facts) {
  std::vector<std::string> objects;
  for (const AffectedObject& object : ObjectsOf(code, facts)) objects.push_back(object.object);
  return objects;
}

std::vector<std::string> Details(const std::string& code, const ClassFacts& facts) {
  std::vector<std::string> details;
  for (const AffectedObject& object : ObjectsOf(code, facts)) {
    details.push_back(object.object + ": " + object.detail);
  }
  return details;
}
