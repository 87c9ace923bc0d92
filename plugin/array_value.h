#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "framework/cim_value.h"

/// An array value of the given element type with one element for each of `elements`, in order. An
/// empty vector gives an array of no elements, which is not null.
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
