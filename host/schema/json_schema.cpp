// SPDX-License-Identifier: Apache-2.0
#include "host/schema/json_schema.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "host/base/namespace_name.h"
#include "host/console/safe_json.h"
#include "host/schema/check_json_schema.h"
#include "host/schema/diff_json_schema.h"
#include "host/schema/fleet_json_schema.h"
#include "host/schema/lines_json_schema.h"
#include "host/schema/slots_json_schema.h"
#include "host/schema/views_json_schema.h"

namespace pciinfo {
namespace {

using Json = nlohmann::ordered_json;

template <class Number>
Json IntegersLike() {
  return {{"type", "integer"},
          {"minimum", std::numeric_limits<Number>::min()},
          {"maximum", std::numeric_limits<Number>::max()}};
}

std::string PathPattern(const std::vector<std::string>& classes) {
  return fmt::format("^/{}:({})\\.", kNamespaceName, fmt::join(classes, "|"));
}

Json ScalarSchema(const vtq::PropertySchema& property) {
  using enum NQZMVTQ20::TCIMValue::TCIMType::ECIMType;
  switch (property.type.GetCode()) {
    case kBoolean:
      return {{"type", "boolean"}};
    case kUint8:
      return IntegersLike<std::uint8_t>();
    case kSint8:
      return IntegersLike<std::int8_t>();
    case kUint16:
      return IntegersLike<std::uint16_t>();
    case kSint16:
      return IntegersLike<std::int16_t>();
    case kUint32:
      return IntegersLike<std::uint32_t>();
    case kSint32:
      return IntegersLike<std::int32_t>();
    case kUint64:
      return IntegersLike<std::uint64_t>();
    case kSint64:
      return IntegersLike<std::int64_t>();
    case kReal32:
    case kReal64:
      return {{"type", {"number", "null"}}};
    case kDateTime:
      return {{"type", "string"}, {"minLength", 25}, {"maxLength", 25}};
    case kReference:
      return {{"type", "string"}, {"pattern", PathPattern(property.targets)}};
    default:
      return {{"type", "string"}};
  }
}

Json ElementSchema(const vtq::PropertySchema& property) {
  Json schema = ScalarSchema(property);
  if (schema["type"].is_string()) schema["type"] = {schema["type"], "null"};
  return schema;
}

Json PropertyJson(const vtq::PropertySchema& property) {
  Json schema = {{"description", property.description}};
  if (property.isArray) {
    schema["type"] = "array";
    schema["items"] = ElementSchema(property);
  } else {
    schema.update(ScalarSchema(property));
  }
  // Only an annotation, because machines may have other values.
  for (const vtq::NamedValue& value : property.values) {
    schema["x-values"][std::to_string(value.value)] = value.meaning;
  }
  return schema;
}

Json ClassJson(const vtq::ClassSchema& schema) {
  Json keys = Json::array();
  Json properties = Json::object();
  for (const vtq::PropertySchema& property : schema.properties) {
    if (property.isKey) keys.push_back(property.name);
    properties[property.name] = PropertyJson(property);
  }
  return {{"description", schema.description},
          {"type", "object"},
          {"required", {"class", "path", "properties"}},
          {"properties",
           {{"class", {{"const", schema.name}}},
            {"path", {{"type", "string"}, {"pattern", PathPattern({schema.name})}}},
            {"properties", {{"type", "object"}, {"required", keys}, {"properties", properties}}}}}};
}

Json RefTo(const std::string& name) { return {{"$ref", "#/$defs/" + name}}; }

Json Definitions(const std::vector<vtq::ClassSchema>& classes) {
  Json anyClass = Json::array();
  for (const vtq::ClassSchema& schema : classes) anyClass.push_back(RefTo(schema.name));
  Json definitions = {
      {"instances",
       {{"description", "pciinfo instances --format json"},
        {"type", "object"},
        {"required", {"instances"}},
        {"properties", {{"instances", {{"type", "array"}, {"items", RefTo("instance")}}}}}}},
      {"instance",
       {{"description", "A line of pciinfo instances --format jsonl"},
        {"oneOf", std::move(anyClass)}}}};
  for (const vtq::ClassSchema& schema : classes) definitions[schema.name] = ClassJson(schema);
  definitions.update(Json::parse(kSlotsJsonSchema));
  definitions.update(Json::parse(kViewsJsonSchema));
  definitions.update(Json::parse(kCheckJsonSchema));
  definitions.update(Json::parse(kDiffJsonSchema));
  definitions.update(Json::parse(kLinesJsonSchema));
  definitions.update(FleetDefinitions());
  return definitions;
}

}  // namespace

void WriteJsonSchema(Output& output, const std::vector<vtq::ClassSchema>& classes) {
  const Json schema = {
      {"$schema", "https://json-schema.org/draft/2020-12/schema"},
      {"$id", std::string("urn:pciinfo:json-schema:") + kJsonSchemaVersion},
      {"title", "JSON of pciinfo"},
      {"description",
       "What pciinfo without a command, instances, slots, devices, tree, show, "
       "check, diff and fleet print with --format json, and a line of --format jsonl. Keys may be "
       "added in later versions."},
      {"oneOf",
       {RefTo("overview"), RefTo("instances"), RefTo("instance"), RefTo("slots"), RefTo("devices"),
        RefTo("tree"), RefTo("shown"), RefTo("check"), RefTo("diff"), RefTo("machineLine"),
        RefTo("deviceLine"), RefTo("slotLine"), RefTo("fleetMachines"), RefTo("fleetCards"),
        RefTo("fleetSlots"), RefTo("fleetFinds"), RefTo("fleetFirmwareVersions"),
        RefTo("fleetChanges"), RefTo("fleetFindings")}},
      {"$defs", Definitions(classes)}};
  output.Write(SafeJson(schema.dump(2)) + "\n");
}

}  // namespace pciinfo
