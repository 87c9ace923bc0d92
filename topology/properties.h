// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "framework/cim_instance.h"
#include "framework/cim_value.h"

namespace topology {

/// Sets the properties of an instance, or gathers them. What is unknown or empty is left out, so
/// that it reads as null.
class PropertyWriter {
 public:
  PropertyWriter() = default;
  /// Sets the properties at once: a machine has thousands of functions, and to gather what each of
  /// them shows would take longer than to find it out.
  explicit PropertyWriter(NQZMVTQ20::ICIMInstance& instance) : instance_(&instance) {}

  void Set(const char* name, const NQZMVTQ20::TCIMValue& value) {
    if (instance_ != nullptr) {
      instance_->SetProperty(name, value, {});
    } else {
      map_[name] = value;
    }
  }

  void Set(const char* name, std::string text) {
    if (!text.empty()) Set(name, NQZMVTQ20::TCIMValue(std::move(text)));
  }

  template <class Value>
  requires std::integral<Value>
  void Set(const char* name, Value value) { Set(name, NQZMVTQ20::TCIMValue(value)); }

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
    Set(name,
        NQZMVTQ20::TCIMValue(NQZMVTQ20::TCIMValue::TCIMType(type), count, std::move(elements)));
  }

  void SetTexts(const char* name, const std::vector<std::string>& texts) {
    SetArray(name, NQZMVTQ20::TCIMValue::TCIMType::kString, texts,
             [](const std::string& text) { return text; });
  }

  /// What was gathered.
  std::map<std::string, NQZMVTQ20::TCIMValue> Take() { return std::move(map_); }

 private:
  NQZMVTQ20::ICIMInstance* instance_ = nullptr;
  std::map<std::string, NQZMVTQ20::TCIMValue> map_;
};

}  // namespace topology
