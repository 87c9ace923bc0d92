// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/model/address.h"
#include "runtime/repository.h"

namespace pciinfo {

/// Where a function is.
enum class FunctionPlace { kSlot, kSharedPort, kUnnamedSlot, kOnBoard, kUnknown };

enum class SlotState { kUnknown, kEmpty, kOccupied };

/// A PCI Express link. A width without a value means that it is not known or that the link is down.
struct Link {
  std::optional<unsigned> width;
  std::string speed;  ///< "8.0 GT/s"; empty if unknown
  std::optional<unsigned> maxWidth;
  std::string maxSpeed;
};

/// The buses behind a bridge.
struct BridgeBuses {
  unsigned secondary = 0;    ///< the bus directly behind the bridge
  unsigned subordinate = 0;  ///< the highest bus behind the bridge
};

/// One PCI function. Texts are as the plug-in published them; what is not known is empty.
struct MachineFunction {
  DomainAddress address;
  std::optional<unsigned> vendorId;
  std::optional<unsigned> deviceId;
  std::optional<unsigned> subsystemVendorId;
  std::optional<unsigned> subsystemId;
  std::optional<unsigned> baseClass;
  std::optional<unsigned> subclass;
  std::optional<unsigned> programmingInterface;
  std::optional<unsigned> revision;
  std::string vendorName;
  std::string deviceName;
  std::string subsystemVendorName;
  std::string subsystemName;
  std::string className;
  std::string programmingInterfaceName;
  std::optional<unsigned> headerType;
  std::string portType;
  std::optional<DomainAddress> parentPort;
  std::optional<BridgeBuses> buses;
  Link link;
  std::string driver;
  std::optional<int> numaNode;
  std::optional<DomainAddress> physicalFunction;  ///< of a virtual function
  FunctionPlace place = FunctionPlace::kUnknown;
  std::string placeReason;
  std::optional<std::size_t> slot;        ///< its place in the slots of the model
  std::optional<std::size_t> sharedPort;  ///< its place in the shared ports, if one lists it
  std::string certainty;                  ///< "certain" or "likely", for a function in a slot
  std::string evidence;

  /// Whether the function is a bridge to other buses.
  bool IsBridge() const;
};

/// A slot with the functions in it. The codes are SMBIOS codes, see smbios_names.h.
struct MachineSlot {
  std::string name;
  std::string source;  ///< "SMBIOS record", "kernel slot", "ACPI" or "port"
  SlotState state = SlotState::kUnknown;
  std::optional<unsigned> recordHandle;
  std::optional<unsigned> id;
  std::optional<unsigned> type;
  std::optional<unsigned> width;
  std::optional<unsigned> length;
  std::optional<unsigned> usage;
  std::optional<bool> hotPlug;
  std::string firmwareAddress;
  std::vector<std::string> peerAddresses;
  std::string kernelSlot;
  std::vector<std::string> ports;  ///< addresses of the ports that lead to the slot
  std::string noPortBecause;
  std::optional<int> numaNode;
  Link link;
  std::optional<unsigned> physicalNumber;
  std::optional<bool> portHotPlug;
  std::optional<bool> surpriseRemoval;
  std::optional<bool> cardPresent;
  std::optional<bool> powerOn;
  std::optional<bool> powerFault;
  std::string outerSlot;
  std::vector<std::string> conflicts;
  std::vector<std::size_t> functions;     ///< their places in the functions of the model
  std::vector<std::size_t> innerSlots;    ///< the places of the slots whose `outerSlot` this is
  std::optional<std::size_t> sharedPort;  ///< the place of the port that it shares

  /// Whether firmware or kernel name the slot; otherwise only a port says that it is there.
  bool IsNamed() const { return source != "port"; }
};

/// A port that the firmware gives to several slots.
struct SharedPort {
  std::string port;
  std::vector<std::string> slots;
  std::vector<std::size_t> slotPlaces;  ///< those of the slots that the model has
  std::vector<std::size_t> functions;   ///< that sit in one of the slots
  std::string evidence;
};

/// Functions, slots and shared ports of a machine.
struct MachineModel {
  std::vector<MachineFunction> functions;  ///< sorted by address
  std::vector<MachineSlot> slots;          ///< in the order of the plug-in
  std::vector<SharedPort> shared;

  /// Sets `sharedPort`, `innerSlots` and `slotPlaces` everywhere.
  void LinkParts();
  /// Returns the function at an address; null if there is none.
  const MachineFunction* Find(const DomainAddress& address) const;
  /// Whether addresses are shown with their domain: there are functions outside domain 0.
  bool HasDomains() const;
  /// Returns the functions at a place, sorted by address.
  std::vector<const MachineFunction*> FunctionsAt(FunctionPlace place) const;
  /// Returns the functions that a slot or a shared port lists.
  std::vector<const MachineFunction*> FunctionsOf(const std::vector<std::size_t>& places) const;
};

/// The classes of functions and slots.
inline constexpr const char* kFunctionClass = "VTQ_PCIFunction";
inline constexpr const char* kSlotClass = "VTQ_PCISlot";

/// The classes that ReadMachine reads.
std::vector<std::string> MachineClasses();

/// Reads the machine from the instances of MachineClasses(). Classes and properties that are not
/// declared are empty; functions without a readable address are left out.
MachineModel ReadMachine(const vtq::Namespace& repository);

}  // namespace pciinfo
