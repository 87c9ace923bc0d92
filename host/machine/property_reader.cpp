// SPDX-License-Identifier: Apache-2.0
#include "host/machine/property_reader.h"

#include <limits>

namespace pciinfo {

using NQZMVTQ20::TCIMValue;

namespace {

bool Is(const TCIMValue& value, TCIMValue::TCIMType::ECIMType code) {
  return !value.IsNull() && !value.IsArray() && value.GetType().GetCode() == code;
}

std::optional<std::uint64_t> UnsignedIn(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  for (const auto code : {kUint8, kUint16, kUint32, kUint64}) {
    if (Is(value, code)) return static_cast<unsigned long>(value);
  }
  return std::nullopt;
}

/// The elements for which `read` returns a value.
template <class Element, class Read>
std::vector<Element> ElementsOf(const TCIMValue& value, const Read& read) {
  std::vector<Element> elements;
  if (value.IsNull() || !value.IsArray()) return elements;
  for (const TCIMValue& element : value.GetArray()) {
    if (std::optional<Element> content = read(element)) elements.push_back(*std::move(content));
  }
  return elements;
}

}  // namespace

std::optional<unsigned> NumberIn(const TCIMValue& value) {
  const auto number = UnsignedIn(value);
  if (!number || *number > std::numeric_limits<unsigned>::max()) return std::nullopt;
  return static_cast<unsigned>(*number);
}

std::optional<std::int64_t> SignedNumberIn(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  for (const auto code : {kSint8, kSint16, kSint32, kSint64}) {
    if (Is(value, code)) return static_cast<long>(value);
  }
  return std::nullopt;
}

std::optional<bool> BooleanIn(const TCIMValue& value) {
  if (!Is(value, TCIMValue::TCIMType::kBoolean)) return std::nullopt;
  return static_cast<bool>(value);
}

std::string TextIn(const TCIMValue& value) {
  return Is(value, TCIMValue::TCIMType::kString) ? std::string(value.GetString()) : std::string();
}

std::vector<std::string> TextsIn(const TCIMValue& value) {
  return ElementsOf<std::string>(value, [](const TCIMValue& element) {
    const bool isText = Is(element, TCIMValue::TCIMType::kString);
    return isText ? std::optional(std::string(element.GetString())) : std::nullopt;
  });
}

PropertyReader::PropertyReader(const vtq::Class& cimClass) {
  const auto& properties = cimClass.GetSchema().properties;
  for (std::size_t i = 0; i < properties.size(); ++i) positions_.emplace(properties[i].name, i);
}

std::optional<std::size_t> PropertyReader::Place(std::string_view property) const {
  const auto position = positions_.find(property);
  return position == positions_.end() ? std::nullopt : std::optional(position->second);
}

TCIMValue PropertyReader::ValueOf(const vtq::Instance& instance, std::string_view property) const {
  const auto place = Place(property);
  return place ? instance.GetValue(*place) : TCIMValue();
}

std::optional<std::uint64_t> PropertyReader::LongNumber(const vtq::Instance& instance,
                                                        std::string_view property) const {
  return UnsignedIn(ValueOf(instance, property));
}

std::optional<unsigned> PropertyReader::Number(const vtq::Instance& instance,
                                               std::string_view property) const {
  return NumberIn(ValueOf(instance, property));
}

std::string PropertyReader::Text(const vtq::Instance& instance, std::string_view property) const {
  return TextIn(ValueOf(instance, property));
}

std::vector<std::string> PropertyReader::Texts(const vtq::Instance& instance,
                                               std::string_view property) const {
  return TextsIn(ValueOf(instance, property));
}

std::vector<std::uint64_t> PropertyReader::LongNumbers(const vtq::Instance& instance,
                                                       std::string_view property) const {
  return ElementsOf<std::uint64_t>(ValueOf(instance, property), UnsignedIn);
}

std::vector<bool> PropertyReader::Booleans(const vtq::Instance& instance,
                                           std::string_view property) const {
  return ElementsOf<bool>(ValueOf(instance, property), BooleanIn);
}

std::string PropertyReader::KeyText(const vtq::Instance& instance, std::string_view property,
                                    const std::string& key) const {
  const TCIMValue value = ValueOf(instance, property);
  if (!Is(value, TCIMValue::TCIMType::kReference)) return "";
  const auto& keys = value.GetReference().GetKeys();
  const auto found = keys.find(key);
  return found == keys.end() ? "" : TextIn(found->second);
}

}  // namespace pciinfo
