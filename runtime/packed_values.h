// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "framework/cim_value.h"

namespace vtq {

/// The values of one instance as bytes. Many properties of a class are null in most instances, and
/// most values are small numbers or short texts, so that the bytes are a quarter of the values.
class VTQ_EXPORT PackedValues final {
 public:
  using Values = std::vector<NQZMVTQ20::TCIMValue>;

  /// Packs `values`, in the order of the properties. Returns nothing if one is a reference, or if
  /// they take more than 4,096 bytes: large arrays are better shared than copied.
  static std::optional<PackedValues> Pack(const Values& values);

  Values Unpack() const;
  /// The value of the property at `position`.
  NQZMVTQ20::TCIMValue Find(std::size_t position) const;

 private:
  explicit PackedValues(std::unique_ptr<const unsigned char[]> bytes) : bytes_(std::move(bytes)) {}

  // The number of values. Then, for each that is not null, the distance from the position before,
  // its type and its content. A distance of 0 ends them.
  std::unique_ptr<const unsigned char[]> bytes_;
};

}  // namespace vtq
