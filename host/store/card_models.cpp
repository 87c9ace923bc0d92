// SPDX-License-Identifier: Apache-2.0
#include "host/store/card_models.h"

#include <fmt/format.h>

#include "host/store/columns.h"

namespace pciinfo {
namespace {

Value IdText(const std::optional<unsigned>& id) { return id ? fmt::format("{:04x}", *id) : ""; }

Row IdsOf(const RecordedFunction& function) {
  return {IdText(function.vendorId), IdText(function.deviceId), IdText(function.subsystemVendorId),
          IdText(function.subsystemId), IdText(function.classCode)};
}

Row ModelNamesOf(const RecordedFunction& function) {
  return {TextValue(function.vendor), TextValue(function.device), TextValue(function.subsystem),
          TextValue(function.className)};
}

}  // namespace

CardModels::CardModels(Database& database)
    : find_(database,
            "SELECT id, vendor, device, subsystem, class_name FROM card_model "
            "WHERE vendor_id = :p1 AND device_id = :p2 AND subsystem_vendor_id = :p3 "
            "AND subsystem_id = :p4 AND class_code = :p5",
            5, 5),
      add_(database,
           "INSERT INTO card_model (vendor_id, device_id, subsystem_vendor_id, subsystem_id, "
           "class_code, vendor, device, subsystem, class_name) "
           "VALUES (:p1, :p2, :p3, :p4, :p5, :p6, :p7, :p8, :p9) RETURNING id",
           9, 1),
      name_(database,
            "UPDATE card_model SET vendor = :p1, device = :p2, subsystem = :p3, class_name = :p4 "
            "WHERE id = :p5",
            5) {}

std::string CardModels::KeyOf(const RecordedFunction& function) {
  const Row ids = IdsOf(function);
  const Row names = ModelNamesOf(function);
  auto found = known_.find(ids);
  if (found == known_.end()) found = known_.emplace(ids, Find(ids, names)).first;
  AddNames(found->second, names);
  return found->second.key;
}

CardModels::Model CardModels::Find(const Row& ids, const Row& names) {
  std::vector<Row> rows = find_.Query(ids);
  if (!rows.empty()) {
    const Row& row = rows.front();
    return {row.front().value_or(""), {row.begin() + 1, row.end()}};
  }
  Row added = ids;
  added.insert(added.end(), names.begin(), names.end());
  return {add_.Query(added).front().front().value_or(""), names};
}

void CardModels::AddNames(Model& model, const Row& names) {
  Row better = model.names;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (better[i].value_or("").empty()) better[i] = names[i];
  }
  if (better == model.names) return;
  model.names = better;
  better.emplace_back(model.key);
  name_.Execute(better);
}

}  // namespace pciinfo
