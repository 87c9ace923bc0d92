// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "host/console/safe_json.h"
#include "host/views/function_json.h"
#include "host/views/slot_json.h"
#include "host/views/slots_view.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

template <class Item>
void WriteArray(Output& output, const std::vector<Item>& items, Json (*toJson)(const Item&)) {
  output.Write("[");
  bool first = true;
  for (const Item& item : items) {
    output.Write(first ? "\n" : ",\n");
    first = false;
    output.Write(SafeJson(toJson(item).dump()));
  }
  output.Write(first ? "]" : "\n]");
}

}  // namespace

void WriteSlotsJson(Output& output, const SlotsModel& model) {
  output.Write("{\"slots\":");
  WriteArray(output, model.slots, &SlotJson);
  output.Write(",\"onBoard\":");
  WriteArray(output, model.onBoard, &FunctionJson);
  output.Write("}\n");
}

}  // namespace pciinfo
