// SPDX-License-Identifier: Apache-2.0
#include "host/views/function_json.h"

#include <nlohmann/json.hpp>

#include "host/console/utf8.h"
#include "host/model/pci_class_names.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

void AddIfSet(Json& object, const char* name, const std::optional<unsigned>& value) {
  if (value) object[name] = *value;
}

Json ClassJson(const PciFunction& function) {
  Json object = {{"base", *function.classCode}};
  AddIfSet(object, "subclass", function.subclass);
  AddIfSet(object, "programmingInterface", function.programmingInterface);
  object["text"] =
      ClassText(ClassCode{function.classCode, function.subclass, function.programmingInterface});
  return object;
}

}  // namespace

Json FunctionJson(const PciFunction& function) {
  Json object;
  if (function.address) object["address"] = FormatAddress(*function.address);
  if (!function.kind.empty()) object["kind"] = function.kind;
  if (function.classCode) object["class"] = ClassJson(function);
  AddIfSet(object, "vendorID", function.vendorId);
  AddIfSet(object, "pciDeviceID", function.deviceId);
  AddIfSet(object, "subsystemVendorID", function.subsystemVendorId);
  AddIfSet(object, "subsystemID", function.subsystemId);
  AddIfSet(object, "revision", function.revision);
  object["description"] = ToUtf8(function.description);
  object["path"] = ToUtf8(function.path);
  return object;
}

}  // namespace pciinfo
