// SPDX-License-Identifier: Apache-2.0
#include "host/views/slot_json.h"

#include <nlohmann/json.hpp>

#include "host/console/utf8.h"
#include "host/model/smbios_names.h"
#include "host/views/function_json.h"

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

}  // namespace

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

}  // namespace pciinfo
