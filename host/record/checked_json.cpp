// SPDX-License-Identifier: Apache-2.0
#include "host/record/checked_json.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>

#include "host/base/errors.h"
#include "host/console/text.h"
#include "host/model/address.h"

namespace pciinfo {
namespace {

constexpr const char* kNotMachine = "this is not the JSON of a machine: ";

std::optional<std::string> UsualAddress(const nlohmann::json& value) {
  if (!value.is_string()) return std::nullopt;
  const auto address = ParseDomainAddress(value.get_ref<const std::string&>());
  return address ? std::optional(FormatAddress(*address)) : std::nullopt;
}

}  // namespace

CheckedObject::CheckedObject(const nlohmann::json& value, std::string place)
    : value_(&value), place_(std::move(place)) {
  if (value.is_object()) return;
  throw UsageError(fmt::format("{}{} is not an object", kNotMachine,
                               place_.empty() ? std::string("it") : place_));
}

std::string CheckedObject::PlaceOf(const std::string& name) const {
  return place_.empty() ? name : place_ + "." + name;
}

void CheckedObject::Refuse(const std::string& name, const std::string& wanted) const {
  throw UsageError(fmt::format("{}{} is not {}", kNotMachine, PlaceOf(name), wanted));
}

const nlohmann::json* CheckedObject::Find(const char* name) const {
  const auto member = value_->find(name);
  return member == value_->end() ? nullptr : &*member;
}

const nlohmann::json* CheckedObject::FindArray(const char* name) const {
  const nlohmann::json* value = Find(name);
  if (value != nullptr && !value->is_array()) Refuse(name, "an array");
  return value;
}

bool CheckedObject::Has(const char* name) const { return Find(name) != nullptr; }

void CheckedObject::Require(const char* name) const {
  if (!Has(name)) throw UsageError(fmt::format("{}{} is missing", kNotMachine, PlaceOf(name)));
}

std::string CheckedObject::Text(const char* name) const {
  const nlohmann::json* value = Find(name);
  if (value == nullptr) return "";
  if (!value->is_string()) Refuse(name, "a text");
  return Printable(value->get_ref<const std::string&>());
}

std::vector<std::string> CheckedObject::Texts(const char* name) const {
  std::vector<std::string> texts;
  const nlohmann::json* array = FindArray(name);
  if (array == nullptr) return texts;
  texts.reserve(array->size());
  for (const nlohmann::json& value : *array) {
    if (!value.is_string()) Refuse(name, "an array of texts");
    texts.push_back(Printable(value.get_ref<const std::string&>()));
  }
  return texts;
}

std::optional<unsigned> CheckedObject::Number(const char* name, unsigned highest) const {
  const nlohmann::json* value = Find(name);
  if (value == nullptr) return std::nullopt;
  // Not get() alone, which makes 1 of 1.5 and of 2^32 + 1.
  if (!value->is_number_unsigned() || value->get<std::uint64_t>() > highest)
    Refuse(name, fmt::format("a whole number from 0 to {}", highest));
  return value->get<unsigned>();
}

std::optional<int> CheckedObject::SignedNumber(const char* name) const {
  const nlohmann::json* value = Find(name);
  if (value == nullptr) return std::nullopt;
  using Limits = std::numeric_limits<int>;
  const bool isTooLarge =
      value->is_number_unsigned() && value->get<std::uint64_t>() > std::uint64_t{Limits::max()};
  if (!value->is_number_integer() || isTooLarge || value->get<std::int64_t>() < Limits::min())
    Refuse(name, "a whole number of 32 bits");
  return value->get<int>();
}

std::string CheckedObject::Word(const char* name, const std::vector<std::string>& words) const {
  std::string text = Text(name);
  const bool isKnown = std::find(words.begin(), words.end(), text) != words.end();
  if (Has(name) && !isKnown) Refuse(name, fmt::format("one of: {}", fmt::join(words, ", ")));
  return text;
}

std::string CheckedObject::Address(const char* name) const {
  const nlohmann::json* value = Find(name);
  if (value == nullptr) return "";
  const auto address = UsualAddress(*value);
  if (!address) Refuse(name, "an address such as 0000:01:00.0");
  return *address;
}

std::vector<std::string> CheckedObject::Addresses(const char* name) const {
  std::vector<std::string> addresses;
  const nlohmann::json* array = FindArray(name);
  if (array == nullptr) return addresses;
  addresses.reserve(array->size());
  for (const nlohmann::json& value : *array) {
    const auto address = UsualAddress(value);
    if (!address) Refuse(name, "an array of addresses such as 0000:01:00.0");
    addresses.push_back(*address);
  }
  return addresses;
}

CheckedObject CheckedObject::Object(const char* name) const {
  static const nlohmann::json kNone = nlohmann::json::object();
  const nlohmann::json* value = Find(name);
  return {value == nullptr ? kNone : *value, PlaceOf(name)};
}

std::vector<CheckedObject> CheckedObject::Objects(const char* name) const {
  std::vector<CheckedObject> objects;
  const nlohmann::json* array = FindArray(name);
  if (array == nullptr) return objects;
  objects.reserve(array->size());
  for (std::size_t i = 0; i < array->size(); ++i)
    objects.emplace_back((*array)[i], fmt::format("{}[{}]", PlaceOf(name), i));
  return objects;
}

nlohmann::json ParseUntrusted(const std::string& text) {
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::exception& error) {
    constexpr std::size_t kWidth = 200;
    throw UsageError(kNotMachine + Cut(Printable(error.what()), kWidth));
  }
}

}  // namespace pciinfo
