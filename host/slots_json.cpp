#include <nlohmann/json.hpp>

#include "host/slots_view.h"
#include "host/smbios_names.h"
#include "host/utf8.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

template <class Value>
void AddIfSet(Json& object, const char* name, const std::optional<Value>& value) {
  if (value) object[name] = *value;
}

void AddCode(Json& object, const char* name, const std::optional<unsigned>& code,
             std::string (*text)(unsigned)) {
  if (code) object[name] = Json{{"code", *code}, {"text", text(*code)}};
}

Json FunctionJson(const PciFunction& function) {
  Json object;
  if (function.address) object["address"] = FormatAddress(*function.address);
  if (!function.kind.empty()) object["kind"] = function.kind;
  AddIfSet(object, "vendorID", function.vendorId);
  AddIfSet(object, "pciDeviceID", function.deviceId);
  AddIfSet(object, "revision", function.revision);
  object["description"] = ToUtf8(function.description);
  object["path"] = ToUtf8(function.path);
  return object;
}

Json SlotJson(const Slot& slot) {
  Json object;
  object["tag"] = ToUtf8(slot.tag);
  if (slot.designation) object["designation"] = ToUtf8(*slot.designation);
  AddCode(object, "type", slot.type, ConnectorTypeText);
  AddCode(object, "usage", slot.usage, SlotUsageText);
  AddCode(object, "width", slot.width, SlotWidthText);
  AddIfSet(object, "id", slot.id);
  AddIfSet(object, "hotPlug", slot.hotPlug);
  object["path"] = ToUtf8(slot.path);
  object["functions"] = Json::array();
  for (const PciFunction& function : slot.functions) {
    object["functions"].push_back(FunctionJson(function));
  }
  return object;
}

template <class Item>
void WriteArray(Output& output, const std::vector<Item>& items, Json (*toJson)(const Item&)) {
  output.Write("[");
  bool first = true;
  for (const Item& item : items) {
    output.Write(first ? "\n" : ",\n");
    first = false;
    output.Write(toJson(item).dump());
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
