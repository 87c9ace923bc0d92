// SPDX-License-Identifier: Apache-2.0
#include "host/fleet/find_statement.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <optional>

#include "host/model/address.h"

namespace pciinfo {
namespace {

// Each way reads an index, or a table that is small beside that of the functions. SQLite reads the
// tables of a CROSS JOIN in the order in which they are written.
constexpr const char* kFound = R"(WITH way AS (
  SELECT f.machine, f.address, 'name' AS found_by, TRIM(c.vendor || ' ' || c.device) AS found
  FROM card_model c CROSS JOIN function_fact f
  WHERE f.model = c.id AND f.gone IS NULL AND f.is_card = 1 AND {name}
  UNION ALL
  SELECT f.machine, f.address, 'serial number', f.serial_number FROM function_fact f
  WHERE f.gone IS NULL AND f.serial_number <> '' AND f.serial_number = {text}
  UNION ALL
  SELECT d.machine, d.address, 'serial number', d.serial_number FROM system_device_fact d
  WHERE d.gone IS NULL AND d.serial_number <> '' AND d.serial_number = {text}
  UNION ALL
  SELECT d.machine, d.address, 'hardware address', d.hardware_address FROM system_device_fact d
  WHERE d.gone IS NULL AND d.hardware_address <> '' AND d.hardware_address = {lower}
  UNION ALL
  SELECT d.machine, d.address, 'model', d.model FROM system_device_fact d
  WHERE d.gone IS NULL AND d.model <> '' AND {model}
  UNION ALL
  SELECT d.machine, d.address, d.kind || ' device', d.name FROM system_device_fact d
  WHERE d.gone IS NULL AND d.name = {text}
),
function_found AS (
  SELECT machine, address, MIN(found_by) AS found_by, MIN(found) AS found
  FROM way GROUP BY machine, address
)
SELECT f.machine, f.slot, f.address, TRIM(f.vendor || ' ' || f.device) AS name,
  w.found_by, w.found, f.vendor_id, f.device_id, f.subsystem_vendor_id, f.subsystem_id, f.driver,
  f.firmware, f.serial_number, f.part_number, f.place, f.first_seen, f.last_seen
FROM function_found w CROSS JOIN functions f
WHERE f.machine_number = w.machine AND f.address = w.address
ORDER BY f.machine, f.machine_number, f.address)";

constexpr const char* kFoundByIds = R"(SELECT machine, slot, address,
  TRIM(vendor || ' ' || device) AS name, 'IDs' AS found_by, vendor_id || ':' || device_id AS found,
  vendor_id, device_id, subsystem_vendor_id, subsystem_id, driver, firmware, serial_number,
  part_number, place, first_seen, last_seen
FROM functions)";

struct Ids {
  std::string vendor;
  std::string device;
};

/// "10de:2231".
std::optional<Ids> IdsIn(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) return std::nullopt;
  const auto vendor = ParseHex(text.substr(0, colon), 0xFFFF);
  const auto device = ParseHex(text.substr(colon + 1), 0xFFFF);
  if (!vendor || !device) return std::nullopt;
  return Ids{fmt::format("{:04x}", *vendor), fmt::format("{:04x}", *device)};
}

void RequireIds(const Ids& ids, Conditions& conditions) {
  conditions.Require(fmt::format("vendor_id = {}", conditions.Bind(ids.vendor)));
  conditions.Require(fmt::format("device_id = {}", conditions.Bind(ids.device)));
}

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

}  // namespace

FleetStatement FindStatement(const std::string& text) {
  Conditions conditions;
  if (const auto ids = IdsIn(text)) {
    RequireIds(*ids, conditions);
    return conditions.Make(kFoundByIds, "ORDER BY machine, machine_number, address");
  }
  const std::string name =
      ContainsText("c.vendor || ' ' || c.device || ' ' || c.subsystem", text, conditions);
  const std::string model = ContainsText("d.model", text, conditions);
  const std::string whole = conditions.Bind(text);
  const std::string lower = conditions.Bind(LowerCase(text));
  return conditions.Make(fmt::format(kFound, fmt::arg("name", name), fmt::arg("model", model),
                                     fmt::arg("text", whole), fmt::arg("lower", lower)),
                         "");
}

void RequireCard(const std::string& text, const std::string& name, Conditions& conditions) {
  if (const auto ids = IdsIn(text)) return RequireIds(*ids, conditions);
  conditions.Require(ContainsText(name, text, conditions));
}

}  // namespace pciinfo
