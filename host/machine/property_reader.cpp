// SPDX-License-Identifier: Apache-2.0
#include "host/machine/property_reader.h"

#include <limits>

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

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

std::optional<bool> BooleanIn(const TCIMValue& value) {
  if (!Is(value, TCIMValue::TCIMType::kBoolean)) return std::nullopt;
  return static_cast<bool>(value);
}

std::optional<std::string> TextIn(const TCIMValue& value) {
  if (!Is(value, TCIMValue::TCIMType::kString)) return std::nullopt;
  return value.GetString();
}

/// The elements for which `read` returns a value.
template <class Element>
std::vector<Element> ElementsOf(const TCIMValue& value,
                                std::optional<Element> (*read)(const TCIMValue& value)) {
  std::vector<Element> elements;
  if (value.IsNull() || !value.IsArray()) return elements;
  for (const TCIMValue& element : value.GetArray()) {
    if (auto content = read(element)) elements.push_back(*std::move(content));
  }
  return elements;
}

}  // namespace

PropertyReader::PropertyReader(const vtq::Class& cimClass) {
  const auto& properties = cimClass.GetSchema().properties;
  for (std::size_t i = 0; i < properties.size(); ++i) positions_.emplace(properties[i].name, i);
}

const TCIMValue& PropertyReader::ValueOf(const vtq::Instance& instance,
                                         std::string_view property) const {
  static const TCIMValue unset;
  const auto position = positions_.find(property);
  return position == positions_.end() ? unset : instance.GetValue(position->second);
}

std::optional<std::uint64_t> PropertyReader::LongNumber(const vtq::Instance& instance,
                                                        std::string_view property) const {
  return UnsignedIn(ValueOf(instance, property));
}

std::optional<unsigned> PropertyReader::Number(const vtq::Instance& instance,
                                               std::string_view property) const {
  const auto number = LongNumber(instance, property);
  if (!number || *number > std::numeric_limits<unsigned>::max()) return std::nullopt;
  return static_cast<unsigned>(*number);
}

std::optional<std::int64_t> PropertyReader::SignedNumber(const vtq::Instance& instance,
                                                         std::string_view property) const {
  using enum TCIMValue::TCIMType::ECIMType;
  const TCIMValue& value = ValueOf(instance, property);
  for (const auto code : {kSint8, kSint16, kSint32, kSint64}) {
    if (Is(value, code)) return static_cast<long>(value);
  }
  return std::nullopt;
}

std::optional<bool> PropertyReader::Boolean(const vtq::Instance& instance,
                                            std::string_view property) const {
  return BooleanIn(ValueOf(instance, property));
}

std::string PropertyReader::Text(const vtq::Instance& instance, std::string_view property) const {
  const TCIMValue& value = ValueOf(instance, property);
  return Is(value, TCIMValue::TCIMType::kString) ? value.GetString() : std::string();
}

std::vector<std::string> PropertyReader::Texts(const vtq::Instance& instance,
                                               std::string_view property) const {
  return ElementsOf<std::string>(ValueOf(instance, property), &TextIn);
}

std::vector<std::uint64_t> PropertyReader::LongNumbers(const vtq::Instance& instance,
                                                       std::string_view property) const {
  return ElementsOf<std::uint64_t>(ValueOf(instance, property), &UnsignedIn);
}

std::vector<bool> PropertyReader::Booleans(const vtq::Instance& instance,
                                           std::string_view property) const {
  return ElementsOf<bool>(ValueOf(instance, property), &BooleanIn);
}

std::string PropertyReader::KeyText(const vtq::Instance& instance, std::string_view property,
                                    const std::string& key) const {
  const TCIMValue& value = ValueOf(instance, property);
  if (!Is(value, TCIMValue::TCIMType::kReference)) return "";
  const auto& keys = value.GetReference().GetKeys();
  const auto found = keys.find(key);
  return found == keys.end() ? "" : TextIn(found->second).value_or("");
}

}  // namespace pciinfo
