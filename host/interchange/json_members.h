// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "host/console/utf8.h"

namespace pciinfo {

/// Adds a text, unless it is empty.
inline void AddKnownText(nlohmann::ordered_json& object, const char* name,
                         const std::string& text) {
  if (!text.empty()) object[name] = ToUtf8(text);
}

/// Adds a value, if there is one.
template <class Value>
void AddKnownValue(nlohmann::ordered_json& object, const char* name,
                   const std::optional<Value>& value) {
  if (value) object[name] = *value;
}

}  // namespace pciinfo
