// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "framework/cim_value.h"

namespace topology {

/// Gathers the properties of an instance. What is unknown or empty is left out, so that it reads as
/// null.
class PropertyWriter {
 public:
  void Set(const char* name, const std::string& text) {
    if (!text.empty()) map_[name] = NQZMVTQ20::TCIMValue(text);
  }

  template <class Value>
  requires std::integral<Value>
  void Set(const char* name, Value value) { map_[name] = NQZMVTQ20::TCIMValue(value); }

  template <class Value>
  void Set(const char* name, const std::optional<Value>& value) {
    if (value) Set(name, *value);
  }

  /// An array of the elements that `make` makes of `items`; null when there is none.
  template <class Item, class Make>
  void SetArray(const char* name, NQZMVTQ20::TCIMValue::TCIMType::ECIMType type,
                const std::vector<Item>& items, const Make& make) {
    if (items.empty()) return;
    NQZMVTQ20::TCIMValue::TArray elements;
    for (const Item& item : items) elements.emplace_back(make(item));
    const auto count = static_cast<std::uint32_t>(elements.size());
    map_[name] =
        NQZMVTQ20::TCIMValue(NQZMVTQ20::TCIMValue::TCIMType(type), count, std::move(elements));
  }

  void SetTexts(const char* name, const std::vector<std::string>& texts) {
    SetArray(name, NQZMVTQ20::TCIMValue::TCIMType::kString, texts,
             [](const std::string& text) { return text; });
  }

  std::map<std::string, NQZMVTQ20::TCIMValue> Take() { return std::move(map_); }

 private:
  std::map<std::string, NQZMVTQ20::TCIMValue> map_;
};

}  // namespace topology
