// SPDX-License-Identifier: Apache-2.0
#include "host/views/devices_view.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "host/console/columns.h"
#include "host/console/safe_json.h"
#include "host/console/text.h"
#include "host/formats/csv_text.h"
#include "host/formats/yaml_writer.h"
#include "host/machine/cards.h"
#include "host/machine/link_text.h"
#include "host/machine/names.h"
#include "host/record/machine_json.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

std::string AddressCell(const MachineFunction& function, const MachineModel& machine) {
  return AddressText(function.address, machine.HasDomains());
}

std::string ClassCell(const MachineFunction& function, const MachineModel&) {
  return ClassName(function);
}

std::string IdCell(const MachineFunction& function, const MachineModel&) {
  return IdText(function);
}

std::string NameCell(const MachineFunction& function, const MachineModel&) {
  return MakerAndModel(function);
}

std::string DriverCell(const MachineFunction& function, const MachineModel&) {
  return Printable(function.driver);
}

std::string LinkCellOf(const MachineFunction& function, const MachineModel&) {
  return LinkText(function.link);
}

std::string NumaCell(const MachineFunction& function, const MachineModel&) {
  return function.numaNode.value_or(-1) < 0 ? "" : std::to_string(*function.numaNode);
}

std::string SlotCell(const MachineFunction& function, const MachineModel& machine) {
  return PlaceText(function, machine);
}

struct DeviceColumn {
  const char* name;
  Column column;
  std::string (*cell)(const MachineFunction& function, const MachineModel& machine);
};

const std::vector<DeviceColumn>& AllColumns() {
  static const std::vector<DeviceColumn> columns = {
      {"address", {.heading = "ADDRESS", .colour = Colour::kCyan}, &AddressCell},
      {"id", {.heading = "ID", .leaves = 6}, &IdCell},
      {"class", {.heading = "CLASS", .shrinks = true, .leaves = 2}, &ClassCell},
      {"name", {.heading = "NAME", .isSubject = true}, &NameCell},
      {"driver", {.heading = "DRIVER", .leaves = 3}, &DriverCell},
      {"link", {.heading = "LINK", .leaves = 4}, &LinkCellOf},
      {"numa", {.heading = "NUMA", .leaves = 5}, &NumaCell},
      {"slot",
       {.heading = "SLOT", .shrinks = true, .colour = Colour::kGreen, .leaves = 1},
       &SlotCell},
  };
  return columns;
}

bool HasSeveralNodes(const MachineModel& machine) {
  std::set<int> nodes;
  for (const MachineFunction& function : machine.functions) {
    nodes.insert(function.numaNode.value_or(-1));
  }
  nodes.erase(-1);
  return nodes.size() > 1;
}

std::vector<DeviceColumn> UsualColumns(const MachineModel& machine) {
  std::vector<DeviceColumn> columns = AllColumns();
  std::erase_if(columns, [&machine](const DeviceColumn& column) {
    const std::string_view name = column.name;
    return name == "id" || (name == "numa" && !HasSeveralNodes(machine));
  });
  return columns;
}

/// Columns that the user has chosen stay.
std::vector<DeviceColumn> NamedColumns(const std::vector<std::string>& names) {
  std::vector<DeviceColumn> columns;
  for (const std::string& name : names) {
    for (const DeviceColumn& column : AllColumns()) {
      if (column.name != name) continue;
      columns.push_back(column);
      columns.back().column.leaves = 0;
    }
  }
  return columns;
}

nlohmann::ordered_json DevicesJson(const MachineModel& machine) {
  auto functions = nlohmann::ordered_json::array();
  for (const MachineFunction& function : machine.functions) {
    functions.push_back(FunctionJson(function, machine));
  }
  return {{"functions", std::move(functions)}};
}

}  // namespace

std::vector<std::string> DeviceColumns() {
  std::vector<std::string> names;
  for (const DeviceColumn& column : AllColumns()) names.emplace_back(column.name);
  return names;
}

void WriteDevicesTable(Output& output, const MachineModel& machine,
                       const std::vector<std::string>& columns, const Terminal& terminal) {
  const auto shown = columns.empty() ? UsualColumns(machine) : NamedColumns(columns);
  std::vector<Column> headings;
  headings.reserve(shown.size());
  for (const DeviceColumn& column : shown) headings.push_back(column.column);
  std::vector<Row> rows;
  rows.reserve(machine.functions.size());
  for (const MachineFunction& function : machine.functions) {
    Row& row = rows.emplace_back();
    row.reserve(shown.size());
    for (const DeviceColumn& column : shown) row.push_back(column.cell(function, machine));
  }
  WriteLines(output, FormatTable(headings, rows, terminal));
}

void WriteDevicesJson(Output& output, const MachineModel& machine) {
  WriteJsonLines(output, DevicesJson(machine));
}

void WriteDevicesJsonLines(Output& output, const MachineModel& machine, const MachineStamp& stamp) {
  const std::string head = "{" + StampText(stamp);
  for (const MachineFunction& function : machine.functions) {
    output.Write(head + SafeJson(FunctionJson(function, machine).dump()).substr(1) + "\n");
  }
}

void WriteDevicesYaml(Output& output, const MachineModel& machine) {
  WriteYaml(output, DevicesJson(machine));
}

void WriteDevicesCsv(Output& output, const MachineModel& machine,
                     const std::vector<std::string>& columns) {
  const std::vector<std::string> names = columns.empty() ? DeviceColumns() : columns;
  WriteCsvLine(output, names);
  const std::vector<DeviceColumn> shown = NamedColumns(names);
  for (const MachineFunction& function : machine.functions) {
    std::vector<std::string> line;
    line.reserve(shown.size());
    for (const DeviceColumn& column : shown) {
      const bool isAddress = column.cell == &AddressCell;  // programs compare addresses
      line.push_back(isAddress ? FormatAddress(function.address) : column.cell(function, machine));
    }
    WriteCsvLine(output, line);
  }
}

}  // namespace pciinfo
