// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <numeric>
#include <string>

#include "framework/exception.h"
#include "runtime/repository.h"

namespace vtq {

using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

std::vector<std::size_t> PositionsInNameOrder(const ClassSchema& schema) {
  const std::vector<PropertySchema>& properties = schema.properties;
  std::vector<std::size_t> order(properties.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&properties](std::size_t left, std::size_t right) {
    return properties[left].name < properties[right].name;
  });
  const auto twice = std::adjacent_find(order.begin(), order.end(), [&](auto left, auto right) {
    return properties[left].name == properties[right].name;
  });
  if (twice == order.end()) return order;
  throw TVTQException(
      "the class " + schema.name + " declares " + properties[*twice].name + " twice",
      TVTQStatusCode::kInvalidArgument);
}

std::vector<std::size_t> KeysAmong(const std::vector<std::size_t>& positions,
                                   const std::vector<PropertySchema>& properties) {
  std::vector<std::size_t> keys;
  std::copy_if(positions.begin(), positions.end(), std::back_inserter(keys),
               [&properties](std::size_t position) { return properties[position].isKey; });
  return keys;
}

}  // namespace

Class::Class(std::weak_ptr<Namespace> owner, std::string nameSpace, ClassSchema schema)
    : owner_(std::move(owner)),
      nameSpace_(std::move(nameSpace)),
      schema_(std::move(schema)),
      nameOrder_(PositionsInNameOrder(schema_)),
      keyOrder_(KeysAmong(nameOrder_, schema_.properties)),
      instances_(std::make_shared<std::vector<std::shared_ptr<Instance>>>()) {}

std::size_t Class::PositionOf(const std::string& property) const {
  const std::vector<PropertySchema>& properties = schema_.properties;
  const auto found = std::find_if(properties.begin(), properties.end(),
                                  [&](const auto& other) { return other.name == property; });
  if (found == properties.end()) {
    throw TVTQException("the class " + schema_.name + " has no property " + property,
                        TVTQStatusCode::kNotFound);
  }
  return static_cast<std::size_t>(found - properties.begin());
}

std::shared_ptr<Instance> Class::Find(const std::string& path) const {
  const auto found = instanceByPath_.find(path);
  return found != instanceByPath_.end() ? (*instances_)[found->second] : nullptr;
}

void Class::Replace(std::shared_ptr<Instance> instance) {
  if (instances_.use_count() > 1) {
    instances_ = std::make_shared<std::vector<std::shared_ptr<Instance>>>(*instances_);
  }
  const std::string& path = instance->GetPath();
  auto entry = instanceByPath_.extract(path);
  entry.key() = path;  // the old key is a view of the replaced instance's text
  (*instances_)[entry.mapped()] = std::move(instance);
  instanceByPath_.insert(std::move(entry));
}

// Without enough memory, nothing is changed.
void Class::Commit(std::shared_ptr<Instance> instance) {
  const auto [entry, isNew] = instanceByPath_.try_emplace(instance->GetPath(), instances_->size());
  if (!isNew) return Replace(std::move(instance));
  try {
    instances_->push_back(std::move(instance));
  } catch (...) {
    instanceByPath_.erase(entry);
    throw;
  }
}

std::string Class::GetName(const TQualifierMap&) const { return schema_.name; }

std::shared_ptr<NQZMVTQ20::ICIMNamespace> Class::GetNamespace(const TQualifierMap&) const {
  if (std::shared_ptr<Namespace> owner = owner_.lock()) return owner;
  throw TVTQException("the namespace " + nameSpace_ + " of the class " + schema_.name + " is gone");
}

std::shared_ptr<NQZMVTQ20::ICIMInstance> Class::CreateInstance(const TQualifierMap&) {
  return std::make_shared<Instance>(shared_from_this());
}

void Class::EnumerateInstances(const NQZMVTQ20::TInstanceCallback& callback, int,
                               const TQualifierMap&) {
  if (!callback) {
    throw TVTQException("the instances of " + schema_.name + " are enumerated without a callback",
                        TVTQStatusCode::kInvalidArgument);
  }
  const std::shared_ptr<const std::vector<std::shared_ptr<Instance>>> instances = instances_;
  const std::size_t count = instances->size();
  for (std::size_t position = 0; position < count; ++position) {
    const std::shared_ptr<Instance> instance = (*instances)[position];
    if (!callback(instance)) return;
  }
}

}  // namespace vtq
