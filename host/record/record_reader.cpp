// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "host/base/errors.h"
#include "host/base/utc_time.h"
#include "host/model/machine_ids.h"
#include "host/model/smbios_names.h"
#include "host/record/checked_json.h"
#include "host/record/machine_record.h"

namespace pciinfo {
namespace {

constexpr unsigned kByte = 0xFF;
constexpr unsigned kWord = 0xFFFF;

std::string Joined(const std::string& first, const std::string& second) {
  return first.empty() || second.empty() ? first + second : first + " " + second;
}

std::string OneOf(const std::string& text, const std::string& other) {
  return text.empty() ? other : text;
}

std::optional<unsigned> ClassCodeIn(const CheckedObject& code) {
  constexpr unsigned kBaseShift = 8;
  const auto base = code.Number("base", kByte);
  const auto subclass = code.Number("subclass", kByte);
  if (!base || !subclass) return std::nullopt;
  return *base << kBaseShift | *subclass;
}

/// The text of an SMBIOS code.
std::string CodeText(const CheckedObject& slot, const char* name) {
  return slot.Object(name).Text("text");
}

SystemDevice ReadSystemDevice(const CheckedObject& object) {
  object.Require("kind");
  object.Require("name");
  return {object.Word("kind", {"network", "block", "nvme", "drm", "infiniband", "scsi"}),
          object.Text("name"),
          object.Text("hardwareAddress"),
          object.Text("model"),
          object.Text("serialNumber"),
          object.Text("firmware")};
}

void ReadIds(const CheckedObject& object, RecordedFunction& function) {
  function.vendorId = object.Number("vendorID", kWord);
  function.deviceId = object.Number("deviceID", kWord);
  function.subsystemVendorId = object.Number("subsystemVendorID", kWord);
  function.subsystemId = object.Number("subsystemID", kWord);
  function.revision = object.Number("revision", kByte);
  function.vendor = object.Text("vendor");
  function.device = object.Text("device");
  function.subsystem = Joined(object.Text("subsystemVendor"), object.Text("subsystemDevice"));
  function.classCode = ClassCodeIn(object.Object("class"));
  function.className = object.Object("class").Text("text");
}

void ReadPlace(const CheckedObject& object, RecordedFunction& function) {
  function.place = object.Word(
      "place", {"slot", "one of several slots", "slot without a name", "on board", "unknown"});
  function.slot = object.Text("slot");
  function.certainty = object.Word("certainty", {"certain", "likely"});
  function.evidence = object.Text("evidence");
}

void ReadDetails(const CheckedObject& object, RecordedFunction& function) {
  function.serialNumber = OneOf(object.Text("serialNumber"), object.Text("productSerialNumber"));
  function.partNumber = object.Text("partNumber");
  function.productName = object.Text("productName");
  for (const CheckedObject& device : object.Objects("systemDevices"))
    function.systemDevices.push_back(ReadSystemDevice(device));
}

RecordedFunction ReadFunction(const CheckedObject& object) {
  for (const char* name : {"address", "kind", "place"}) object.Require(name);
  RecordedFunction function;
  function.address = object.Address("address");
  function.isBridge = object.Word("kind", {"device", "bridge"}) == "bridge";
  ReadIds(object, function);
  function.portType = object.Text("portType");
  function.parentPort = object.Address("parentPort");
  function.physicalFunction = object.Address("physicalFunction");
  const CheckedObject link = object.Object("link");
  function.linkWidth = link.Number("width", kByte);
  function.maxLinkWidth = link.Number("maxWidth", kByte);
  function.linkSpeed = link.Text("speed");
  function.maxLinkSpeed = link.Text("maxSpeed");
  function.driver = object.Text("driver");
  function.numaNode = object.SignedNumber("numaNode");
  ReadPlace(object, function);
  ReadDetails(object, function);
  return function;
}

void ReadFirmwareRecord(const CheckedObject& object, RecordedSlot& slot) {
  slot.type = CodeText(object, "type");
  slot.width = CodeText(object, "width");
  slot.length = CodeText(object, "length");
  slot.usage = CodeText(object, "usage");
  slot.lanes = LanesOfWidth(object.Object("width").Number("code", kWord).value_or(0));
  slot.id = object.Number("id", kWord);
  slot.firmwareAddress = object.Address("firmwareAddress");
}

RecordedSlot ReadSlot(const CheckedObject& object) {
  object.Require("name");
  object.Require("state");
  RecordedSlot slot;
  slot.name = object.Text("name");
  slot.designation = object.Text("designation");
  slot.source = object.Text("source");
  slot.state = object.Word("state", {"occupied", "empty", "unknown"});
  ReadFirmwareRecord(object, slot);
  slot.ports = object.Addresses("ports");
  slot.physicalNumber = object.Number("physicalNumber", kWord);
  slot.maxLinkWidth = object.Object("link").Number("maxWidth", kByte);
  slot.maxLinkSpeed = object.Object("link").Text("maxSpeed");
  slot.numaNode = object.SignedNumber("numaNode");
  slot.conflicts = object.Texts("conflicts");
  return slot;
}

/// Reads the parts of a machine one after the other.
class RecordReader final {
 public:
  explicit RecordReader(const CheckedObject& machine) : machine_(machine) {}

  MachineRecord Read() {
    ReadHead();
    ReadIdentity();
    ReadSlots();
    ReadShared();
    for (const char* place : {"onBoard", "unknown"}) ReadFunctions(machine_, place);
    SortFunctions();
    ReadFindings();
    record_.troubles = machine_.Texts(machine_.Has("troubles") ? "troubles" : "notRead");
    return std::move(record_);
  }

 private:
  void RequireWhole() const {
    for (const char* name :
         {"system", "machine", "slots", "shared", "onBoard", "unnamed", "unknown"})
      machine_.Require(name);
    if (!machine_.Has("filter")) return;
    throw UsageError("this JSON of a machine was printed with --filter, and lacks the rest");
  }

  void ReadHead() {
    RequireWhole();
    record_.name = machine_.Text("system");
    record_.systemUuid = machine_.Text("systemUUID");
    record_.machineId = machine_.Text("machineID");
    record_.collected = machine_.Text("collected");
    record_.version = machine_.Text("version");
    if (machine_.Has("systemUUID") && !IsUuid(record_.systemUuid))
      machine_.Refuse("systemUUID", "a UUID in lower case");
    if (machine_.Has("machineID") && !IsMachineId(record_.machineId))
      machine_.Refuse("machineID", "32 hexadecimal digits in lower case");
    if (machine_.Has("collected") && !IsUtcText(record_.collected))
      machine_.Refuse("collected", "a time such as 2026-01-31T23:59:59Z");
    if (!(record_.name + record_.systemUuid + record_.machineId).empty()) return;
    throw UsageError(
        "this JSON of a machine does not say which one it is: \"system\" is empty, "
        "as it is when a capture is redacted, and there is no UUID or machine ID");
  }

  void ReadIdentity() {
    const CheckedObject machine = machine_.Object("machine");
    record_.identity = {machine.Text("maker"),        machine.Text("product"),
                        machine.Text("boardMaker"),   machine.Text("boardProduct"),
                        machine.Text("boardVersion"), machine.Text("biosMaker"),
                        machine.Text("biosVersion"),  machine.Text("biosDate")};
  }

  void ReadSlots() {
    for (const char* list : {"slots", "unnamed"}) {
      for (const CheckedObject& object : machine_.Objects(list)) {
        record_.slots.push_back(ReadSlot(object));
        const std::size_t place = record_.slots.size() - 1;
        const bool isNew = slotByName_.emplace(record_.slots.back().name, place).second;
        if (!isNew) object.Refuse("name", "unique");
        ReadFunctions(object, "functions");
      }
    }
  }

  /// Each slot gets all other names, so a few kilobytes could make many gigabytes.
  void ReadShared() {
    constexpr std::size_t kMostSlots = 64;
    for (const CheckedObject& object : machine_.Objects("shared")) {
      ReadFunctions(object, "functions");
      const std::vector<std::string> names = object.Texts("slots");
      if (names.size() > kMostSlots) object.Refuse("slots", "an array of at most 64 names");
      for (const std::string& name : names) {
        const auto slot = slotByName_.find(name);
        if (slot != slotByName_.end()) Share(record_.slots[slot->second], names);
      }
    }
  }

  static void Share(RecordedSlot& slot, const std::vector<std::string>& names) {
    if (!slot.sharedWith.empty()) return;
    std::copy_if(names.begin(), names.end(), std::back_inserter(slot.sharedWith),
                 [&slot](const std::string& name) { return name != slot.name; });
  }

  void ReadFunctions(const CheckedObject& owner, const char* name) {
    for (const CheckedObject& object : owner.Objects(name))
      record_.functions.push_back(ReadFunction(object));
  }

  /// What sits in a slot that is part of a card is told for both slots.
  void SortFunctions() {
    std::vector<RecordedFunction>& functions = record_.functions;
    std::stable_sort(functions.begin(), functions.end(),
                     [](const RecordedFunction& left, const RecordedFunction& right) {
                       // A longer address has a domain of more digits.
                       return std::pair(left.address.size(), std::string_view(left.address)) <
                              std::pair(right.address.size(), std::string_view(right.address));
                     });
    const auto isSame = [](const RecordedFunction& left, const RecordedFunction& right) {
      return left.address == right.address;
    };
    functions.erase(std::unique(functions.begin(), functions.end(), isSame), functions.end());
  }

  void ReadFindings() {
    for (const CheckedObject& finding : machine_.Objects("findings")) {
      finding.Require("code");
      finding.Require("severity");
      const std::string code = finding.Text("code");
      const std::string severity = finding.Word("severity", {"error", "warning", "note"});
      for (const CheckedObject& object : finding.Objects("objects")) {
        record_.findings.push_back({code, severity, object.Text("object"),
                                    OneOf(object.Text("detail"), finding.Text("what"))});
      }
    }
  }

  const CheckedObject& machine_;
  MachineRecord record_;
  std::map<std::string, std::size_t> slotByName_;
};

}  // namespace

MachineRecord ParseRecord(const std::string& text) {
  const nlohmann::json document = ParseUntrusted(text);
  const CheckedObject machine(document, "");
  return RecordReader(machine).Read();
}

}  // namespace pciinfo
