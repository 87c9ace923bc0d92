// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "pci/dev_info.h"
#include "pci/process_state.h"
#include "plugin/class_names.h"
#include "plugin/held_instances.h"
#include "plugin/values.h"

using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TOSSpecific;
using NQZMVTQ20::TVTQException;

namespace {

TCIMValue ValueOf(const ICIMInstance& instance, const char* property) {
  return instance.GetProperty(property, {}).value;
}

// Finds the first slot with a number. Reads each slot at most once, and only when it is needed.
class SlotFinder {
 public:
  explicit SlotFinder(const HeldInstances& slots) : slots_(slots) {}

  // Returns null if no slot has that number.
  const ICIMInstance* Find(std::uint8_t number) {
    while (first_[number] == nullptr && examined_ < slots_.size()) {
      const ICIMInstance& slot = *slots_[examined_];
      const ICIMInstance*& first = first_[NumberOf(slot, examined_ + 1)];
      if (first == nullptr) first = &slot;
      ++examined_;
    }
    return first_[number];
  }

 private:
  // The "UINumber" of a function is the tag of its slot if the firmware has bus numbers of slots,
  // else the firmware's slot ID; in both cases only one byte of it.
  static std::uint8_t NumberOf(const ICIMInstance& slot, std::size_t position) {
    const TCIMValue value = ValueOf(slot, "Number");
    const std::uint16_t slotId =
        value.IsNull() ? std::uint16_t{0} : static_cast<unsigned short>(value);
    const bool byPosition = processState.slotIDRetrievalType != 0;
    return static_cast<std::uint8_t>(byPosition ? position : slotId);
  }

  const HeldInstances& slots_;
  std::size_t examined_ = 0;
  std::array<const ICIMInstance*, 256> first_{};
};

// On one platform, all ports of a network chip are in the slot of the first port that has a slot
// number. All IDs are read from every device, including the subsystem IDs: if a device lacks one of
// them, or the firmware cannot be read, the association ends with a line in the log instead of
// putting some devices into doubtful slots.
bool SharesSlotOfFirstPort(const ICIMInstance& device) {
  constexpr unsigned short kVendor = 0x14E4;
  constexpr unsigned short kChip = 0x1656;
  const TCIMValue chip = ValueOf(device, "PciDeviceID");
  const TCIMValue vendor = ValueOf(device, "VendorID");
  ValueOf(device, "SubsystemID");
  const std::string biosId = TOSSpecific::GetBiosID();
  return static_cast<unsigned short>(vendor) == kVendor &&
         static_cast<unsigned short>(chip) == kChip && biosId == "B2";
}

// Returns the slot that a device shares with the first port of its kind; 0 if it shares none.
std::uint8_t SharedSlotOf(const ICIMInstance& device, const TCIMValue& ownNumber) {
  if (!SharesSlotOfFirstPort(device)) return 0;
  unsigned char& shared = processState.specialSlotNumber;
  if (shared == 0 && !ownNumber.IsNull()) shared = static_cast<unsigned char>(ownNumber);
  return shared;
}

// Returns 0 if the function is in no slot.
std::uint8_t SlotNumberOf(const ICIMInstance& function, bool isDevice) {
  const TCIMValue ownNumber = ValueOf(function, "UINumber");
  const std::uint8_t shared = isDevice ? SharedSlotOf(function, ownNumber) : std::uint8_t{0};
  if (shared != 0 || ownNumber.IsNull()) return shared;
  return static_cast<unsigned char>(ownNumber);
}

TPropertyMap MakeAssociation(const ICIMInstance& slot, const ICIMInstance& function) {
  TPropertyMap association;
  InsertProperty(&association, "Antecedent", TCIMValue(slot.GetObjectReference({})));
  InsertProperty(&association, "Dependent", TCIMValue(function.GetObjectReference({})));
  return association;
}

// The join of the functions and the slots that the framework holds: devices first, then bridges.
class SlotJoin {
 public:
  explicit SlotJoin(ICIMNamespace& nameSpace) {
    AppendHeldInstances(nameSpace, kSystemSlotClass, &slots_);
    AppendHeldInstances(nameSpace, kPciDeviceClass, &functions_);
    deviceCount_ = functions_.size();
    AppendHeldInstances(nameSpace, kPciBridgeClass, &functions_);
  }
  SlotJoin(const SlotJoin&) = delete;  // the finder refers to the slots
  SlotJoin& operator=(const SlotJoin&) = delete;
  ~SlotJoin() = default;

  bool IsDone() const { return next_ == functions_.size(); }

  // Appends the association of the next function if it is in a slot. Returns the number of its slot
  // if there is no such slot, else 0.
  std::uint8_t AssociateNext(std::vector<TPropertyMap>* associations) {
    const ICIMInstance& function = *functions_[next_];
    const std::uint8_t number = SlotNumberOf(function, next_ < deviceCount_);
    ++next_;
    if (number == 0) return 0;
    const ICIMInstance* const slot = finder_.Find(number);
    if (slot == nullptr) return number;
    associations->push_back(MakeAssociation(*slot, function));
    return 0;
  }

 private:
  HeldInstances slots_;
  HeldInstances functions_;
  std::size_t deviceCount_ = 0;
  std::size_t next_ = 0;
  SlotFinder finder_{slots_};
};

}  // namespace

std::vector<TPropertyMap> TPciDevInfo::MakeDeviceSlotAssociation() {
  std::vector<TPropertyMap> associations;
  const auto succeeds = [this](const auto& step) {
    try {
      step();
      return true;
    } catch (const TVTQException& failure) {
      // Log readers match the whole line, including the seven tabs.
      WriteStatus(
          "PCI Device-slot association encountered an error\t\t\t\t\t\t\t"
          "enumerating CIM instances for " +
          std::string(kPciDeviceClass) + " OR " + kSystemSlotClass +
          " Error Code: " + dataToString<const char*>(failure.what()));
      return false;
    }
  };

  std::optional<SlotJoin> join;
  if (!succeeds([&] { join.emplace(*GetCIMClass()->GetNamespace({})); })) return associations;
  while (!join->IsDone()) {
    std::uint8_t missing = 0;
    if (!succeeds([&] { missing = join->AssociateNext(&associations); })) break;
    // A logger that fails here is not a failure to enumerate: its exception goes to the caller.
    if (missing != 0) {
      WriteStatus("PCI Slot ID " + dataToString<unsigned short>(missing) + " not found");
    }
  }
  return associations;
}
