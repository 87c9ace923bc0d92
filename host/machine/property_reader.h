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

/// Reads properties of the instances of one class by name. A property that the class does not
/// declare, that is null or that has another type is unset, so that plug-ins of other versions can
/// be read.
class PropertyReader final {
 public:
  /// `cimClass` must outlive the reader.
  explicit PropertyReader(const vtq::Class& cimClass);

  /// Returns an unsigned integer of at most 32 bits.
  std::optional<unsigned> Number(const vtq::Instance& instance, std::string_view property) const;
  /// Returns an unsigned integer.
  std::optional<std::uint64_t> LongNumber(const vtq::Instance& instance,
                                          std::string_view property) const;
  /// Returns a signed integer.
  std::optional<std::int64_t> SignedNumber(const vtq::Instance& instance,
                                           std::string_view property) const;
  std::optional<bool> Boolean(const vtq::Instance& instance, std::string_view property) const;
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
  const NQZMVTQ20::TCIMValue& ValueOf(const vtq::Instance& instance,
                                      std::string_view property) const;

  std::unordered_map<std::string_view, std::size_t> positions_;
};

}  // namespace pciinfo
