// SPDX-License-Identifier: Apache-2.0
#include "tests/store/stored_rows.h"

#include <algorithm>
#include <sstream>

#include "host/store/database.h"

namespace {

using namespace pciinfo;

std::string TextOf(soci::row& row, std::size_t column) {
  if (row.get_indicator(column) == soci::i_null) return "NULL";
  switch (row.get_properties(column).get_data_type()) {
    case soci::dt_string:
      return row.get<std::string>(column);
    case soci::dt_integer:
      return std::to_string(row.get<int>(column));
    case soci::dt_long_long:
      return std::to_string(row.get<long long>(column));
    default:
      throw std::runtime_error("a column has an unexpected type");
  }
}

constexpr const char* kTimes =
    "CAST(first_seen AS TEXT), CAST(last_seen AS TEXT), CAST(gone AS TEXT)";

std::string FactQuery(const std::string& table, const std::string& columns) {
  return "SELECT (SELECT name FROM machine WHERE id = machine), " + columns + ", " + kTimes +
         " FROM " + table;
}

}  // namespace

std::vector<std::string> AnswerOf(const std::string& target, const std::string& query) {
  Database database(target);
  std::vector<std::string> lines;
  const soci::rowset<soci::row> rows = database.GetSession().prepare << query;
  for (soci::row& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
      line.append(i == 0 ? "" : "|").append(TextOf(row, i));
    lines.push_back(std::move(line));
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

StoredRows ReadStoredRows(const std::string& target) {
  const std::map<std::string, std::string> queries{
      {"machine",
       "SELECT name, system_uuid, machine_id, CAST(first_seen AS TEXT), CAST(last_seen AS TEXT), "
       "complete, troubles, version FROM machine"},
      {"card_model",
       "SELECT vendor_id, device_id, subsystem_vendor_id, subsystem_id, class_code, vendor, "
       "device, subsystem, class_name FROM card_model"},
      {"identity_fact", FactQuery("identity_fact", "maker, product, bios_version")},
      {"function_fact",
       FactQuery("function_fact",
                 "address, (SELECT vendor_id || device_id FROM card_model WHERE id = model), "
                 "is_bridge, is_card, revision, max_link_width, link_width, numa_node, "
                 "max_link_speed, link_speed, parent_port, driver, firmware, place, slot, "
                 "serial_number")},
      {"system_device_fact",
       FactQuery("system_device_fact",
                 "address, kind, name, hardware_address, model, serial_number, firmware")},
      {"slot_fact", FactQuery("slot_fact", "name, ordinal, state, width, lanes, ports")},
      {"finding_fact", FactQuery("finding_fact", "code, object, ordinal, severity, text")},
  };
  StoredRows all;
  for (const auto& [table, query] : queries) all[table] = AnswerOf(target, query);
  return all;
}
