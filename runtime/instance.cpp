// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "framework/exception.h"
#include "runtime/path_text.h"
#include "runtime/repository.h"

namespace vtq {

using NQZMVTQ20::TCIMProperty;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

std::string ShapeText(TCIMValue::TCIMType type, bool isArray) {
  return std::string(type.GetName()) + (isArray ? "[]" : "");
}

[[noreturn]] void Refuse(const Class& owner, const PropertySchema& property,
                         const std::string& reason) {
  throw TVTQException(owner.GetSchema().name + "." + property.name + " " + reason,
                      TVTQStatusCode::kInvalidArgument);
}

void CheckTarget(const Class& owner, const PropertySchema& property, const TCIMValue& value) {
  if (value.IsNull()) return;
  const std::string& target = value.GetReference().GetClassName();
  const std::vector<std::string>& allowed = property.targets;
  if (std::find(allowed.begin(), allowed.end(), target) != allowed.end()) return;
  Refuse(owner, property, "may not name an instance of " + target);
}

void CheckTargets(const Class& owner, const PropertySchema& property, const TCIMValue& value) {
  if (!value.IsArray()) return CheckTarget(owner, property, value);
  for (const TCIMValue& element : value.GetArray()) CheckTarget(owner, property, element);
}

void CheckValue(const Class& owner, const PropertySchema& property, const TCIMValue& value) {
  if (value.IsNull()) return;
  if (!(value.GetType() == property.type) || value.IsArray() != property.isArray) {
    Refuse(owner, property,
           "takes " + ShapeText(property.type, property.isArray) + ", not " +
               ShapeText(value.GetType(), value.IsArray()));
  }
  if (!property.targets.empty()) CheckTargets(owner, property, value);
}

}  // namespace

Instance::Instance(std::shared_ptr<Class> cimClass)
    : class_(cimClass), owner_(cimClass.get()), values_(cimClass->GetSchema().properties.size()) {
  ++cimClass->uncommitted_;
}

Instance::~Instance() {
  if (committed_) return;
  if (const std::shared_ptr<Class> owner = class_.lock()) --owner->uncommitted_;
}

Class& Instance::GetOwner() const {
  if (!class_.expired()) return *owner_;
  throw TVTQException("the class of this instance is gone");
}

void Instance::CheckKeys(const Class& owner) const {
  const std::vector<PropertySchema>& properties = owner.GetSchema().properties;
  for (std::size_t position = 0; position < properties.size(); ++position) {
    if (properties[position].isKey && GetValue(position).IsNull()) {
      Refuse(owner, properties[position], "is a key and not set");
    }
  }
}

const std::string& Instance::GetPath() const {
  if (!path_.empty()) return path_;
  const Class& owner = GetOwner();
  const ClassSchema& schema = owner.GetSchema();
  CheckKeys(owner);
  PathText text(owner.GetNamespaceName(), schema.name);
  for (const std::size_t position : owner.GetKeyOrder()) {
    const PropertySchema& property = schema.properties[position];
    text.AddKey(property.name, GetValue(position));
  }
  path_ = text.Take();
  return path_;
}

std::shared_ptr<NQZMVTQ20::ICIMClass> Instance::GetClass(const TQualifierMap&) const {
  return GetOwner().shared_from_this();
}

TCIMReference Instance::GetObjectReference(const TQualifierMap&) const {
  if (!reference_.IsNull()) return reference_;
  const Class& owner = GetOwner();
  CheckKeys(owner);
  TCIMReference::TKeyMap keys;
  for (const std::size_t position : owner.GetKeyOrder()) {
    const PropertySchema& property = owner.GetSchema().properties[position];
    keys.emplace(property.name, GetValue(position));
  }
  reference_ = TCIMReference(owner.GetNamespaceName(), owner.GetSchema().name, keys);
  return reference_;
}

TCIMProperty Instance::GetProperty(const std::string& name, const TQualifierMap&) const {
  return {name, GetValue(GetOwner().PositionOf(name))};
}

void Instance::SetProperty(const std::string& name, const TCIMValue& value, const TQualifierMap&) {
  const Class& owner = GetOwner();
  const std::size_t position = owner.PositionOf(name);
  const PropertySchema& property = owner.GetSchema().properties[position];
  CheckValue(owner, property, value);
  if (property.isKey) {
    if (committed_ && !(GetValue(position) == value)) {
      Refuse(owner, property, "is a key of a committed instance and cannot be changed");
    }
    if (committed_) return;
    path_.clear();
    reference_ = TCIMReference();
  }
  if (packed_) values_ = packed_->Unpack();
  packed_.reset();
  values_[position] = value;
}

TCIMValue Instance::GetValue(std::size_t position) const {
  return packed_ ? packed_->Find(position) : values_.at(position);
}

void Instance::Commit(const TQualifierMap&) {
  Class& owner = GetOwner();
  GetPath();  // builds it now: its keys take longer to find among packed values
  if (!packed_) packed_ = PackedValues::Pack(values_);
  if (packed_) values_ = PackedValues::Values();
  owner.Commit(shared_from_this());
  if (!committed_) --owner.uncommitted_;
  committed_ = true;
}

InstanceValues::InstanceValues(const Instance& instance)
    : unpacked_(instance.packed_ ? instance.packed_->Unpack() : PackedValues::Values()),
      values_(instance.packed_ ? unpacked_ : instance.values_) {}

}  // namespace vtq
