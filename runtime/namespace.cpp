// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "framework/exception.h"
#include "runtime/repository.h"

namespace vtq {

using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

std::shared_ptr<Namespace> Namespace::Create(std::string name) {
  return std::shared_ptr<Namespace>(new Namespace(std::move(name)));
}

void Namespace::Declare(ClassSchema schema) {
  if (Find(schema.name)) {
    throw TVTQException("the class " + schema.name + " is declared in " + name_ + " already",
                        TVTQStatusCode::kInvalidArgument);
  }
  classes_.push_back(std::make_shared<Class>(weak_from_this(), name_, std::move(schema)));
}

std::shared_ptr<Class> Namespace::Find(const std::string& name) const {
  const auto found = std::find_if(
      classes_.begin(), classes_.end(),
      [&name](const std::shared_ptr<Class>& item) { return item->GetSchema().name == name; });
  return found != classes_.end() ? *found : nullptr;
}

std::string Namespace::GetName(const TQualifierMap&) const { return name_; }

std::shared_ptr<NQZMVTQ20::ICIMClass> Namespace::GetClass(const std::string& name,
                                                          const TQualifierMap&) {
  if (std::shared_ptr<Class> found = Find(name)) return found;
  throw TVTQException("the namespace " + name_ + " has no class " + name,
                      TVTQStatusCode::kNotFound);
}

}  // namespace vtq
