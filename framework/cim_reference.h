// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <memory>
#include <string>

#include "framework/export.h"

namespace NQZMVTQ20 {

class TCIMValue;

/// The object path of one instance: namespace, class and key values. A value type; copies share the
/// immutable parts, so copying takes O(1).
class VTQ_EXPORT TCIMReference {
 public:
  /// Key bindings, sorted by key name.
  using TKeyMap = std::map<std::string, TCIMValue>;

  /// The null reference: no class, no keys, an empty path text.
  TCIMReference();

  /// The path of the instance of `className` in `nameSpace` ("root/cimv2", no leading slash) with
  /// the key values `keys`. Throws TVTQException when a key is null, an array or a real number,
  /// which cannot be part of a path.
  TCIMReference(const std::string& nameSpace, const std::string& className, const TKeyMap& keys);

  bool IsNull() const noexcept;
  const std::string& GetNamespace() const noexcept;
  const std::string& GetClassName() const noexcept;
  const TKeyMap& GetKeys() const noexcept;

  /// The untyped WBEM URI (DSP0207): `/root/cimv2:Class.key="v",...`, keys sorted by name. Inside
  /// quotes, `\` and `"` are escaped with a backslash, other characters are not; integers are
  /// decimal, booleans TRUE or FALSE; a reference key is the quoted, escaped path of its target.
  const std::string& ToString() const noexcept;

  /// Two references are equal when their path texts are.
  friend VTQ_EXPORT bool operator==(const TCIMReference& left, const TCIMReference& right) noexcept;

 private:
  struct Parts;
  std::shared_ptr<const Parts> parts_;
};

}  // namespace NQZMVTQ20
