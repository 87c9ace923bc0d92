// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "framework/cim_value.h"

/// Returns an array value of the given element type with `elements` in their order. An empty vector
/// gives an empty array, which is not null.
template <class Element>
NQZMVTQ20::TCIMValue MakeArrayValue(NQZMVTQ20::TCIMValue::TCIMType::ECIMType type,
                                    std::vector<Element> elements) {
  using NQZMVTQ20::TCIMValue;
  TCIMValue::TArray values;
  values.reserve(elements.size());
  for (Element& element : elements) values.emplace_back(std::move(element));
  const auto count = static_cast<std::uint32_t>(values.size());
  return TCIMValue(TCIMValue::TCIMType(type), count, std::move(values));
}
