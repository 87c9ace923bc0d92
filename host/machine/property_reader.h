// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "runtime/repository.h"

namespace pciinfo {

// Values; unset for those that are null or have another type.

/// An unsigned integer of at most 32 bits.
std::optional<unsigned> NumberIn(const NQZMVTQ20::TCIMValue& value);
std::optional<std::int64_t> SignedNumberIn(const NQZMVTQ20::TCIMValue& value);
std::optional<bool> BooleanIn(const NQZMVTQ20::TCIMValue& value);
/// A string; empty if unset.
std::string TextIn(const NQZMVTQ20::TCIMValue& value);
/// The elements of an array of strings; empty if unset.
std::vector<std::string> TextsIn(const NQZMVTQ20::TCIMValue& value);

/// Reads properties of the instances of one class by name. A property that the class does not
/// declare, that is null or that has another type is unset, so that plug-ins of other versions can
/// be read.
class PropertyReader final {
 public:
  /// `cimClass` must outlive the reader.
  explicit PropertyReader(const vtq::Class& cimClass);

  /// The place of a property in the values of an instance; nothing if the class does not declare
  /// it.
  std::optional<std::size_t> Place(std::string_view property) const;

  /// Returns an unsigned integer of at most 32 bits.
  std::optional<unsigned> Number(const vtq::Instance& instance, std::string_view property) const;
  /// Returns an unsigned integer.
  std::optional<std::uint64_t> LongNumber(const vtq::Instance& instance,
                                          std::string_view property) const;
  /// Returns a string; empty if unset.
  std::string Text(const vtq::Instance& instance, std::string_view property) const;
  /// Returns the elements of an array of strings; empty if unset.
  std::vector<std::string> Texts(const vtq::Instance& instance, std::string_view property) const;
  std::vector<std::uint64_t> LongNumbers(const vtq::Instance& instance,
                                         std::string_view property) const;
  std::vector<bool> Booleans(const vtq::Instance& instance, std::string_view property) const;
  /// Returns a text among the keys of the instance to which a reference leads; empty if unset.
  std::string KeyText(const vtq::Instance& instance, std::string_view property,
                      const std::string& key) const;

 private:
  NQZMVTQ20::TCIMValue ValueOf(const vtq::Instance& instance, std::string_view property) const;

  std::unordered_map<std::string_view, std::size_t> positions_;
};

}  // namespace pciinfo
