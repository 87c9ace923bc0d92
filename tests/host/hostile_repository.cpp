// SPDX-License-Identifier: Apache-2.0
#include "tests/host/hostile_repository.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "host/base/namespace_name.h"
#include "host/console/utf8.h"
#include "tests/fakes/pci_schema.h"

namespace {

using NQZMVTQ20::TCIMValue;
using Type = TCIMValue::TCIMType;
using enum TCIMValue::TCIMType::ECIMType;

/// The unsafe characters beyond ASCII that every format can carry: most of U+0080 to U+FFFF, each
/// with a safe one behind it, and some beyond.
std::string UnsafeCharacters() {
  std::string text;
  for (const char32_t codePoint :
       {U'\u0080',     U'\u009b',     U'\u009f',     U'\u00ad',    U'\u034f',     U'\u061c',
        U'\u115f',     U'\u17b4',     U'\u180e',     U'\u200b',    U'\u200d',     U'\u200e',
        U'\u200f',     U'\u2028',     U'\u2029',     U'\u202a',    U'\u202e',     U'\u2060',
        U'\u2064',     U'\u2066',     U'\u2069',     U'\u206f',    U'\u3164',     U'\ufe0f',
        U'\ufeff',     U'\uffa0',     U'\ufff9',     U'\ufffb',    U'\U000110bd', U'\U0001d173',
        U'\U000e0001', U'\U000e0041', U'\U000e007f', U'\U000e01ef'}) {
    pciinfo::AppendUtf8(text, codePoint);
    text += 'a';  // a hexadecimal digit, which must not become part of an escape before it
  }
  return text;
}

TCIMValue Array(Type::ECIMType type, TCIMValue::TArray elements) {
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(Type(type), count, std::move(elements));
}

TCIMValue Texts() {
  TCIMValue::TArray elements;
  for (const std::string& text : HostileTexts()) elements.emplace_back(text);
  elements.emplace_back();
  return Array(kString, std::move(elements));
}

vtq::ClassSchema EverythingSchema() {
  vtq::ClassSchema schema{"Hostile_Everything", "", "All there is.", {}};
  schema.properties.push_back({"Key", Type(kString), false, true, {}, "The key."});
  for (const auto code : {kBoolean, kUint8, kSint8, kUint16, kSint16, kUint32, kSint32, kUint64,
                          kSint64, kReal32, kReal64, kString, kDateTime}) {
    const std::string name = Type(code).GetName();
    schema.properties.push_back({name, Type(code), false, false, {}, "One."});
    schema.properties.push_back({name + "s", Type(code), true, false, {}, "Several."});
  }
  return schema;
}

vtq::ClassSchema LinkSchema() {
  return {"Hostile_Link",
          "",
          "Joins.",
          {{"Target", Type(kReference), false, true, {"Hostile_Everything"}, "Whom."},
           {"Flag", Type(kBoolean), false, true, {}, "A boolean key."},
           {"Count", Type(kSint16), false, true, {}, "A signed key."},
           {"Other", Type(kReference), false, false, {"Hostile_Everything"}, "Whom else."}}};
}

template <class Number>
void SetNumbers(vtq::Instance& instance, Type::ECIMType type, bool lowest) {
  using Limits = std::numeric_limits<Number>;
  const TCIMValue least(Limits::lowest());
  const TCIMValue most(Limits::max());
  const std::string name = Type(type).GetName();
  instance.SetProperty(name, lowest ? least : most, {});
  instance.SetProperty(name + "s", Array(type, {least, TCIMValue(), most}), {});
}

void SetIntegers(vtq::Instance& instance, bool lowest) {
  SetNumbers<std::uint8_t>(instance, kUint8, lowest);
  SetNumbers<std::int8_t>(instance, kSint8, lowest);
  SetNumbers<std::uint16_t>(instance, kUint16, lowest);
  SetNumbers<std::int16_t>(instance, kSint16, lowest);
  SetNumbers<std::uint32_t>(instance, kUint32, lowest);
  SetNumbers<std::int32_t>(instance, kSint32, lowest);
  SetNumbers<std::uint64_t>(instance, kUint64, lowest);
  SetNumbers<std::int64_t>(instance, kSint64, lowest);
}

void SetOthers(vtq::Instance& instance) {
  instance.SetProperty("boolean", TCIMValue(true), {});
  instance.SetProperty("booleans", Array(kBoolean, {TCIMValue(false), TCIMValue()}), {});
  instance.SetProperty("real32", TCIMValue(0.5F), {});
  instance.SetProperty("real64", TCIMValue(-1e300), {});
  instance.SetProperty("real64s", Array(kReal64, {TCIMValue(1.0), TCIMValue(0.25)}), {});
  instance.SetProperty("strings", Texts(), {});
  instance.SetProperty("datetime", TCIMValue::DateTime("20240229123456.000000+060"), {});
  instance.SetProperty("datetimes", Array(kDateTime, {}), {});
}

TCIMValue MakeEverything(vtq::Class& cimClass, const std::string& text, bool lowest) {
  const auto instance = std::make_shared<vtq::Instance>(cimClass.shared_from_this());
  instance->SetProperty("Key", TCIMValue(text), {});
  instance->SetProperty("string", TCIMValue(text), {});
  SetIntegers(*instance, lowest);
  SetOthers(*instance);
  instance->Commit({});
  return TCIMValue(instance->GetObjectReference({}));
}

void MakeLink(vtq::Class& cimClass, const TCIMValue& target, bool flag) {
  const auto instance = std::make_shared<vtq::Instance>(cimClass.shared_from_this());
  instance->SetProperty("Target", target, {});
  instance->SetProperty("Flag", TCIMValue(flag), {});
  instance->SetProperty("Count", TCIMValue(static_cast<std::int16_t>(-7)), {});
  if (flag) instance->SetProperty("Other", target, {});
  instance->Commit({});
}

void MakeBare(vtq::Class& cimClass) {
  const auto instance = std::make_shared<vtq::Instance>(cimClass.shared_from_this());
  instance->SetProperty("Key", TCIMValue("bare"), {});
  instance->Commit({});
}

}  // namespace

std::vector<std::string> HostileTexts() {
  std::string everyByte;
  for (int byte = 0; byte < 128; ++byte) everyByte += static_cast<char>(byte);
  return {"",
          "  blanks around  ",
          "\"quotes\" 'apostrophes' \\backslashes\\",
          "]]> <b>&amp;</b> <!-- -- --> <?pi?>",
          "a,b;c\td",
          "two\nlines",
          "mac\rdos\r\nend",
          std::string("nul\0inside", 10),
          everyByte,
          "not UTF-8: \xff\xfe caf\xe9",
          "caf\xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80",
          "DEL \x7f C1 \xc2\x85 BOM \xef\xbb\xbf no character \xef\xbf\xbe",
          "=1+1",
          "123",
          "1e3",
          "no",
          "~",
          "null",
          "- a: [b]",
          "# no comment",
          "\\x41 \\n",
          UnsafeCharacters()};
}

std::shared_ptr<vtq::Namespace> MakeEmptyHostileRepository() {
  auto repository = vtq::Namespace::Create(pciinfo::kNamespaceName);
  repository->Declare(EverythingSchema());
  repository->Declare(LinkSchema());
  return repository;
}

std::shared_ptr<vtq::Namespace> MakeHostileRepository() {
  auto repository = MakeEmptyHostileRepository();
  bool lowest = false;
  for (const std::string& text : HostileTexts()) {
    const TCIMValue path = MakeEverything(*repository->Find("Hostile_Everything"), text, lowest);
    MakeLink(*repository->Find("Hostile_Link"), path, lowest);
    lowest = !lowest;
  }
  MakeBare(*repository->Find("Hostile_Everything"));
  return repository;
}
