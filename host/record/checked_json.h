// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace pciinfo {

/// An object in a JSON text from anywhere, with its place for messages. What it reads has the right
/// type: everything throws UsageError otherwise, which names the place. Members that are missing
/// are empty, except those that are required. Texts are made printable.
class CheckedObject final {
 public:
  /// `value` must outlive the object. Throws UsageError if it is none.
  CheckedObject(const nlohmann::json& value, std::string place);

  bool Has(const char* name) const;
  /// Throws UsageError if the member is missing.
  void Require(const char* name) const;
  std::string Text(const char* name) const;
  std::vector<std::string> Texts(const char* name) const;
  std::optional<unsigned> Number(const char* name, unsigned highest) const;
  std::optional<int> SignedNumber(const char* name) const;
  /// One of `words`; empty only if the member is missing.
  std::string Word(const char* name, const std::vector<std::string>& words) const;
  /// The address of a function in its usual form.
  std::string Address(const char* name) const;
  std::vector<std::string> Addresses(const char* name) const;
  /// An object without members if the member is missing.
  CheckedObject Object(const char* name) const;
  std::vector<CheckedObject> Objects(const char* name) const;

  /// Throws UsageError: the member is not what it must be, "an address" for example.
  [[noreturn]] void Refuse(const std::string& name, const std::string& wanted) const;

 private:
  const nlohmann::json* Find(const char* name) const;
  const nlohmann::json* FindArray(const char* name) const;
  std::string PlaceOf(const std::string& name) const;

  const nlohmann::json* value_;
  std::string place_;
};

/// Parses a text from anywhere. Throws UsageError for one that is not JSON.
nlohmann::json ParseUntrusted(const std::string& text);

}  // namespace pciinfo
