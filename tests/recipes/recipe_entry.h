// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace recipe {

using nlohmann::json;

/// An object of a machine recipe, with its place in the recipe and the keys that were read. The
/// JSON object must outlive the entry. All functions throw std::invalid_argument, with the place
/// and the reason, for a value that is not as requested.
class Entry {
 public:
  Entry(const json& object, std::string where) : object_(object), where_(std::move(where)) {
    if (!object.is_object()) Fail("must be an object");
  }

  [[noreturn]] void Fail(const std::string& what) const {
    throw std::invalid_argument("machine recipe: " + where_ + ": " + what);
  }

  bool Has(const std::string& key) const { return object_.contains(key); }

  const json& Get(const std::string& key) {
    if (!Has(key)) Fail("\"" + key + "\" is missing");
    read_.insert(key);
    return object_[key];
  }

  std::uint64_t Number(const std::string& key, std::uint64_t highest) {
    return AsNumber(Get(key), key, highest);
  }

  std::uint64_t Number(const std::string& key, std::uint64_t highest, std::uint64_t otherwise) {
    return Has(key) ? Number(key, highest) : otherwise;
  }

  std::uint8_t Byte(const std::string& key, std::uint8_t otherwise = 0) {
    return static_cast<std::uint8_t>(Number(key, 0xFF, otherwise));
  }

  bool Flag(const std::string& key, bool otherwise) {
    if (!Has(key)) return otherwise;
    if (!Get(key).is_boolean()) Fail("\"" + key + "\" must be true or false");
    return Get(key).get<bool>();
  }

  std::string Text(const std::string& key) {
    if (!Get(key).is_string()) Fail("\"" + key + "\" must be a text");
    return Get(key).get<std::string>();
  }

  std::string Text(const std::string& key, const std::string& otherwise) {
    return Has(key) ? Text(key) : otherwise;
  }

  const json& List(const std::string& key) {
    if (!Get(key).is_array()) Fail("\"" + key + "\" must be a list");
    return Get(key);
  }

  std::vector<std::string> Texts(const std::string& key) {
    for (const json& text : List(key)) {
      if (!text.is_string()) Fail("\"" + key + "\" must hold texts");
    }
    return Get(key).get<std::vector<std::string>>();
  }

  std::vector<std::uint8_t> HexBytes(const std::string& key) {
    const std::string digits = Text(key);
    if (digits.size() % 2 != 0) Fail("\"" + key + "\" must hold two digits a byte");
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
      bytes.push_back(static_cast<std::uint8_t>(AsNumber(digits.substr(i, 2), key, 0xFF)));
    }
    return bytes;
  }

  template <std::size_t count>
  std::array<std::uint16_t, count> Numbers(const std::string& key, std::uint64_t highest) {
    if (List(key).size() != count) Fail(fmt::format("\"{}\" must hold {} numbers", key, count));
    std::array<std::uint16_t, count> numbers{};
    for (std::size_t i = 0; i < count; ++i) {
      numbers[i] = static_cast<std::uint16_t>(AsNumber(List(key)[i], key, highest));
    }
    return numbers;
  }

  /// Calls use(object, where) for each element of a list that may be missing.
  template <class Use>
  void ForEach(const std::string& key, const Use& use) {
    if (!Has(key)) return;
    std::size_t place = 0;
    for (const json& element : List(key))
      use(element, fmt::format("{}.{}[{}]", where_, key, place++));
  }

  /// Call it after reading all keys: throws for keys that were not read.
  void RefuseOthers() const {
    for (const auto& [key, value] : object_.items()) {
      if (!read_.contains(key)) Fail("unknown key \"" + key + "\"");
    }
  }

 private:
  std::uint64_t AsNumber(const json& value, const std::string& key, std::uint64_t highest) const {
    std::uint64_t number = 0;
    if (value.is_number_integer() && value >= 0) {
      number = value.get<std::uint64_t>();
    } else {
      const std::string text = value.is_string() ? value.get<std::string>() : "";
      const char* end = text.data() + text.size();
      const auto [stop, error] = std::from_chars(text.data(), end, number, 16);
      if (error != std::errc() || stop != end) {
        Fail("\"" + key + "\" must be a number or its hexadecimal digits");
      }
    }
    if (number > highest) Fail(fmt::format("\"{}\" is above {:#x}", key, highest));
    return number;
  }

  const json& object_;
  std::string where_;
  std::set<std::string> read_;
};

}  // namespace recipe
