// SPDX-License-Identifier: Apache-2.0
#include "host/store/record_tables.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <set>

#include "host/store/card_functions.h"
#include "host/store/columns.h"
#include "host/store/machine_store.h"

namespace pciinfo {
namespace {

using Names = std::vector<std::string>;

/// Columns of a table by their role.
template <class Object>
struct Layout {
  const char* table;
  Columns<Object> keys;
  Columns<Object> facts;
  Columns<Object> latest;

  FactTable Describe() const { return {table, NamesOf(keys), NamesOf(facts), NamesOf(latest)}; }

  Row RowOf(const Object& object) const {
    Row row;
    row.reserve(keys.size() + facts.size() + latest.size());
    AppendValues(row, keys, object);
    AppendValues(row, facts, object);
    AppendValues(row, latest, object);
    return row;
  }
};

/// An object of which a machine can have several with the same name.
template <class Object>
struct Numbered {
  const Object* object;
  unsigned ordinal;
};

struct FunctionRow {
  const RecordedFunction* function;
  std::string model;
  std::string firmware;
  bool isCard;
};

struct DeviceRow {
  const RecordedFunction* function;
  const SystemDevice* device;
};

using SlotRow = Numbered<RecordedSlot>;
using FindingRow = Numbered<RecordedFinding>;

Value JoinedValue(const Names& texts, const char* between) {
  return TextValue(fmt::format("{}", fmt::join(texts, between)));
}

const Layout<MachineIdentity>& IdentityLayout() {
  using T = MachineIdentity;
  static const Layout<T> layout{
      "identity_fact",
      {},
      {{"maker", [](const T& t) { return TextValue(t.maker); }},
       {"product", [](const T& t) { return TextValue(t.product); }},
       {"board_maker", [](const T& t) { return TextValue(t.boardMaker); }},
       {"board_product", [](const T& t) { return TextValue(t.boardProduct); }},
       {"board_version", [](const T& t) { return TextValue(t.boardVersion); }},
       {"bios_maker", [](const T& t) { return TextValue(t.biosMaker); }},
       {"bios_version", [](const T& t) { return TextValue(t.biosVersion); }},
       {"bios_date", [](const T& t) { return TextValue(t.biosDate); }}},
      {}};
  return layout;
}

const Layout<FunctionRow>& FunctionLayout() {
  using T = FunctionRow;
  static const Layout<T> layout{
      "function_fact",
      {{"address", [](const T& t) { return TextValue(t.function->address); }}},
      {{"model", [](const T& t) { return Value(t.model); }},
       {"is_bridge", [](const T& t) { return FlagValue(t.function->isBridge); }},
       {"is_card", [](const T& t) { return FlagValue(t.isCard); }},
       {"revision", [](const T& t) { return NumberValue(t.function->revision); }},
       {"max_link_width", [](const T& t) { return NumberValue(t.function->maxLinkWidth); }},
       {"link_width", [](const T& t) { return NumberValue(t.function->linkWidth); }},
       {"numa_node", [](const T& t) { return NumberValue(t.function->numaNode); }},
       {"max_link_speed", [](const T& t) { return TextValue(t.function->maxLinkSpeed); }},
       {"port_type", [](const T& t) { return TextValue(t.function->portType); }},
       {"parent_port", [](const T& t) { return TextValue(t.function->parentPort); }},
       {"physical_function", [](const T& t) { return TextValue(t.function->physicalFunction); }},
       {"driver", [](const T& t) { return TextValue(t.function->driver); }},
       {"firmware", [](const T& t) { return TextValue(t.firmware); }},
       {"place", [](const T& t) { return TextValue(t.function->place); }},
       {"slot", [](const T& t) { return TextValue(t.function->slot); }},
       {"certainty", [](const T& t) { return TextValue(t.function->certainty); }},
       {"evidence", [](const T& t) { return TextValue(t.function->evidence); }},
       {"serial_number", [](const T& t) { return TextValue(t.function->serialNumber); }},
       {"part_number", [](const T& t) { return TextValue(t.function->partNumber); }},
       {"product_name", [](const T& t) { return TextValue(t.function->productName); }}},
      {{"link_speed", [](const T& t) { return TextValue(t.function->linkSpeed); }}}};
  return layout;
}

const Layout<DeviceRow>& DeviceLayout() {
  using T = DeviceRow;
  static const Layout<T> layout{
      "system_device_fact",
      {{"address", [](const T& t) { return TextValue(t.function->address); }},
       {"kind", [](const T& t) { return TextValue(t.device->kind); }},
       {"name", [](const T& t) { return TextValue(t.device->name); }}},
      {{"hardware_address", [](const T& t) { return TextValue(t.device->hardwareAddress); }},
       {"model", [](const T& t) { return TextValue(t.device->model); }},
       {"serial_number", [](const T& t) { return TextValue(t.device->serialNumber); }},
       {"firmware", [](const T& t) { return TextValue(t.device->firmware); }}},
      {}};
  return layout;
}

const Layout<SlotRow>& SlotLayout() {
  using T = SlotRow;
  static const Layout<T> layout{
      "slot_fact",
      {{"name", [](const T& t) { return TextValue(t.object->name); }},
       {"ordinal", [](const T& t) { return Value(std::to_string(t.ordinal)); }}},
      {{"designation", [](const T& t) { return TextValue(t.object->designation); }},
       {"source", [](const T& t) { return TextValue(t.object->source); }},
       {"state", [](const T& t) { return TextValue(t.object->state); }},
       {"type", [](const T& t) { return TextValue(t.object->type); }},
       {"width", [](const T& t) { return TextValue(t.object->width); }},
       {"lanes", [](const T& t) { return NumberValue(t.object->lanes); }},
       {"length", [](const T& t) { return TextValue(t.object->length); }},
       {"usage", [](const T& t) { return TextValue(t.object->usage); }},
       {"firmware_number", [](const T& t) { return NumberValue(t.object->id); }},
       {"firmware_address", [](const T& t) { return TextValue(t.object->firmwareAddress); }},
       {"ports", [](const T& t) { return JoinedValue(t.object->ports, ", "); }},
       {"physical_number", [](const T& t) { return NumberValue(t.object->physicalNumber); }},
       {"max_link_width", [](const T& t) { return NumberValue(t.object->maxLinkWidth); }},
       {"max_link_speed", [](const T& t) { return TextValue(t.object->maxLinkSpeed); }},
       {"numa_node", [](const T& t) { return NumberValue(t.object->numaNode); }},
       {"shared_with", [](const T& t) { return JoinedValue(t.object->sharedWith, ", "); }},
       {"conflicts", [](const T& t) { return JoinedValue(t.object->conflicts, "\n"); }}},
      {}};
  return layout;
}

const Layout<FindingRow>& FindingLayout() {
  using T = FindingRow;
  static const Layout<T> layout{
      "finding_fact",
      {{"code", [](const T& t) { return TextValue(t.object->code); }},
       {"object", [](const T& t) { return TextValue(t.object->object); }},
       {"ordinal", [](const T& t) { return Value(std::to_string(t.ordinal)); }}},
      {{"severity", [](const T& t) { return TextValue(t.object->severity); }}},
      {{"text", [](const T& t) { return TextValue(t.object->text); }}}};
  return layout;
}

std::vector<Row> IdentityRows(const MachineRecord& record, const ModelLookup& /*lookup*/) {
  return {IdentityLayout().RowOf(record.identity)};
}

std::string FirmwareOf(const RecordedFunction& function) {
  for (const SystemDevice& device : function.systemDevices) {
    if (!device.firmware.empty()) return device.firmware;
  }
  return "";
}

std::vector<Row> FunctionRows(const MachineRecord& record, const ModelLookup& lookup) {
  const std::set<std::string> cards = CardFunctions(record.functions);
  std::set<std::string> seen;
  std::vector<Row> rows;
  rows.reserve(record.functions.size());
  for (const RecordedFunction& function : record.functions) {
    if (!seen.insert(function.address).second) {
      throw BadRecord(fmt::format("it has two functions {}", function.address));
    }
    rows.push_back(FunctionLayout().RowOf(
        {&function, lookup(function), FirmwareOf(function), cards.contains(function.address)}));
  }
  return rows;
}

/// The same device twice is one row: it says nothing more.
std::vector<Row> DeviceRows(const MachineRecord& record, const ModelLookup& /*lookup*/) {
  std::set<Row> seen;
  std::vector<Row> rows;
  for (const RecordedFunction& function : record.functions) {
    for (const SystemDevice& device : function.systemDevices) {
      const bool isNew = seen.insert({function.address, device.kind, device.name}).second;
      if (isNew) rows.push_back(DeviceLayout().RowOf({&function, &device}));
    }
  }
  return rows;
}

std::vector<Row> SlotRows(const MachineRecord& record, const ModelLookup& /*lookup*/) {
  std::map<std::string, unsigned> counts;
  std::vector<Row> rows;
  rows.reserve(record.slots.size());
  for (const RecordedSlot& slot : record.slots) {
    rows.push_back(SlotLayout().RowOf({&slot, counts[slot.name]++}));
  }
  return rows;
}

std::vector<Row> FindingRows(const MachineRecord& record, const ModelLookup& /*lookup*/) {
  std::map<std::pair<std::string, std::string>, unsigned> counts;
  std::vector<Row> rows;
  rows.reserve(record.findings.size());
  for (const RecordedFinding& finding : record.findings) {
    rows.push_back(FindingLayout().RowOf({&finding, counts[{finding.code, finding.object}]++}));
  }
  return rows;
}

}  // namespace

const std::vector<RecordTable>& RecordTables() {
  static const std::vector<RecordTable> tables{{IdentityLayout().Describe(), &IdentityRows},
                                               {FunctionLayout().Describe(), &FunctionRows},
                                               {DeviceLayout().Describe(), &DeviceRows},
                                               {SlotLayout().Describe(), &SlotRows},
                                               {FindingLayout().Describe(), &FindingRows}};
  return tables;
}

namespace {

/// Interfaces without a better name are called by their hardware address: "enx0c42a1000001".
std::string NameWithoutAddress(const std::string& name) {
  constexpr std::size_t kDigits = 12;
  const bool isAddress = name.starts_with("enx") && name.size() == 3 + kDigits &&
                         name.find_first_not_of("0123456789abcdef", 3) == std::string::npos;
  return isAddress ? "enx" : name;
}

}  // namespace

void RemoveDeviceIdentifiers(MachineRecord& record) {
  for (RecordedFunction& function : record.functions) {
    function.serialNumber.clear();
    for (SystemDevice& device : function.systemDevices) {
      device.serialNumber.clear();
      device.hardwareAddress.clear();
      device.name = NameWithoutAddress(device.name);
    }
  }
}

}  // namespace pciinfo
