// SPDX-License-Identifier: Apache-2.0
#include "host/instance_diff/diff_functions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "host/console/text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

std::string IdsText(const DiffItem& item) {
  const auto number = [&](const char* name) -> std::string {
    const TCIMValue value = ValueOf(item, name);
    return value.IsNull() ? "" : fmt::format("{:04x}", static_cast<unsigned>(value));
  };
  const std::string ids = IdText(item.function);
  const std::string vendor = number("SubsystemVendorID");
  const std::string device = number("SubsystemID");
  return vendor.empty() && device.empty() ? ids : fmt::format("{} ({}:{})", ids, vendor, device);
}

void CompareCard(const DiffPair& pair, ChangeList& changes) {
  const std::string before = IdsText(*pair.before);
  const std::string after = IdsText(*pair.after);
  if (before == after) return;
  changes.AddValue(pair, "function", kCardProperty, TCIMValue(before), TCIMValue(after),
                   fmt::format("replaced by another card: {} -> {}", before, after));
}

std::vector<std::string> SlotLabels(const DiffItem& function, const SlotNames& slots) {
  std::vector<std::string> texts;
  for (const std::string& slot : function.slots) {
    const auto label = slots.labels.find(slot);
    texts.push_back("slot " + (label == slots.labels.end() ? Printable(slot) : label->second));
  }
  return texts;
}

/// The slots or board that hold a function, in words; empty if unknown.
std::string PlaceText(const DiffItem& function, const SlotNames& slots) {
  std::vector<std::string> texts = SlotLabels(function, slots);
  if (function.isOnBoard) texts.emplace_back("the board");
  return fmt::format("{}", fmt::join(texts, " and "));
}

std::string WhereText(const DiffItem& function, const SlotNames& slots) {
  const std::string place = function.slots.empty() ? "" : PlaceText(function, slots);
  return place.empty() ? "" : " (" + place + ")";
}

std::set<std::string> Places(const DiffItem& function, const SlotNames& slots,
                             const ComparedClasses& classes) {
  std::set<std::string> places;
  if (classes.Has("QZMSG_OnBoardDevice") && function.isOnBoard) places.insert("board");
  if (!classes.Has("QZMSG_DeviceInSlot")) return places;
  for (const std::string& slot : function.slots) {
    const auto name = slots.names.find(slot);
    places.insert(name == slots.names.end() ? slot : name->second);
  }
  return places;
}

void ComparePlace(const DiffPair& pair, const ComparedClasses& classes, const SlotNames& oldSlots,
                  const SlotNames& newSlots, ChangeList& changes) {
  if (Places(*pair.before, oldSlots, classes) == Places(*pair.after, newSlots, classes)) return;
  const std::string before = PlaceText(*pair.before, oldSlots);
  const std::string after = PlaceText(*pair.after, newSlots);
  const auto shown = [](const std::string& place) {
    return place.empty() ? "an unknown place" : place;
  };
  changes.AddValue(pair, "function", kSlotProperty, TextsValue(SlotLabels(*pair.before, oldSlots)),
                   TextsValue(SlotLabels(*pair.after, newSlots)),
                   fmt::format("card moved from {} to {}", shown(before), shown(after)));
}

/// What happened to the width, in words. A link without lanes is down.
std::string WidthChange(const LinkStatus& before, const LinkStatus& after) {
  if (after.width == 0) return fmt::format("link down (was x{})", before.width);
  if (before.width == 0)
    return fmt::format("link up: x{}, {}", after.width, Printable(after.speed));
  return fmt::format("link {}: x{} -> x{}", after.width < before.width ? "narrower" : "wider",
                     before.width, after.width);
}

void CompareLink(const DiffPair& pair, ChangeList& changes) {
  if (!pair.before->link || !pair.after->link) return;
  const LinkStatus& before = *pair.before->link;
  const LinkStatus& after = *pair.after->link;
  if (before.width != after.width) {
    changes.AddValue(pair, "function", kLinkWidthProperty, TCIMValue(before.width),
                     TCIMValue(after.width), WidthChange(before, after));
  }
  // The register of a link that is down holds a speed that means nothing.
  if (before.speed == after.speed || before.width == 0 || after.width == 0) return;
  const bool isSlower = SpeedNumber(after.speed) < SpeedNumber(before.speed);
  changes.AddValue(pair, "function", kLinkSpeedProperty, TCIMValue(before.speed),
                   TCIMValue(after.speed),
                   fmt::format("link {}: {} -> {}", isSlower ? "slower" : "faster",
                               Printable(before.speed), Printable(after.speed)));
}

}  // namespace

void CompareFunctions(const vtq::Namespace& before, const vtq::Namespace& after,
                      const ComparedClasses& classes, const SlotNames& oldSlots,
                      const SlotNames& newSlots, ChangeList& changes) {
  std::set<std::string> functionClasses;
  for (const char* name : {"QZMSG_PCIDevice", "QZMSG_PCIBridge"}) {
    if (classes.Has(name)) functionClasses.insert(name);
  }
  const DiffItems oldItems = FunctionItems(before, functionClasses, oldSlots.names);
  const DiffItems newItems = FunctionItems(after, functionClasses, newSlots.names);
  for (const DiffPair& pair : PairItems(oldItems, newItems)) {
    if (pair.before == nullptr) {
      changes.AddWholeInstance(pair, "function", WhereText(*pair.after, newSlots));
    } else if (pair.after == nullptr) {
      changes.AddWholeInstance(pair, "function", WhereText(*pair.before, oldSlots));
    } else {
      CompareCard(pair, changes);
      ComparePlace(pair, classes, oldSlots, newSlots, changes);
      if (classes.Has("QZMSG_PCIRawData")) CompareLink(pair, changes);
      changes.CompareProperties(pair, "function");
    }
  }
}

}  // namespace pciinfo
