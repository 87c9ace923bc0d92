// SPDX-License-Identifier: Apache-2.0
#include <utility>

#include "framework/cim_reference.h"
#include "framework/cim_value.h"
#include "runtime/path_text.h"

namespace NQZMVTQ20 {

namespace {

std::string TextOf(const std::string& nameSpace, const std::string& className,
                   const TCIMReference::TKeyMap& keys) {
  vtq::PathText text(nameSpace, className);
  for (const auto& [name, value] : keys) text.AddKey(name, value);
  return text.Take();
}

}  // namespace

struct TCIMReference::Parts {
  std::string nameSpace;
  std::string className;
  TKeyMap keys;
  std::string path;

  static const Parts& Of(const std::shared_ptr<const Parts>& parts) noexcept {
    static const Parts kNull;
    return parts ? *parts : kNull;
  }
};

TCIMReference::TCIMReference() = default;

TCIMReference::TCIMReference(const std::string& nameSpace, const std::string& className,
                             const TKeyMap& keys)
    : parts_(std::make_shared<const Parts>(
          Parts{nameSpace, className, keys, TextOf(nameSpace, className, keys)})) {}

bool TCIMReference::IsNull() const noexcept { return parts_ == nullptr; }

const std::string& TCIMReference::GetNamespace() const noexcept {
  return Parts::Of(parts_).nameSpace;
}

const std::string& TCIMReference::GetClassName() const noexcept {
  return Parts::Of(parts_).className;
}

const TCIMReference::TKeyMap& TCIMReference::GetKeys() const noexcept {
  return Parts::Of(parts_).keys;
}

const std::string& TCIMReference::ToString() const noexcept { return Parts::Of(parts_).path; }

bool operator==(const TCIMReference& left, const TCIMReference& right) noexcept {
  return left.parts_ == right.parts_ || left.ToString() == right.ToString();
}

}  // namespace NQZMVTQ20
