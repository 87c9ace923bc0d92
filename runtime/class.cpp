#include <algorithm>
#include <numeric>

#include "framework/exception.h"
#include "runtime/repository.h"

namespace vtq {

using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

std::unordered_map<std::string, std::size_t> PositionsByName(const ClassSchema& schema) {
  std::unordered_map<std::string, std::size_t> positions;
  for (const PropertySchema& property : schema.properties) {
    if (positions.emplace(property.name, positions.size()).second) continue;
    throw TVTQException("the class " + schema.name + " declares " + property.name + " twice",
                        TVTQStatusCode::kInvalidArgument);
  }
  return positions;
}

std::vector<std::size_t> PositionsInNameOrder(const std::vector<PropertySchema>& properties) {
  std::vector<std::size_t> order(properties.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&properties](std::size_t left, std::size_t right) {
    return properties[left].name < properties[right].name;
  });
  return order;
}

}  // namespace

Class::Class(std::weak_ptr<Namespace> owner, std::string nameSpace, ClassSchema schema)
    : owner_(std::move(owner)),
      nameSpace_(std::move(nameSpace)),
      schema_(std::move(schema)),
      positions_(PositionsByName(schema_)),
      nameOrder_(PositionsInNameOrder(schema_.properties)),
      instances_(std::make_shared<std::vector<std::shared_ptr<Instance>>>()) {}

std::size_t Class::PositionOf(const std::string& property) const {
  const auto found = positions_.find(property);
  if (found != positions_.end()) return found->second;
  throw TVTQException("the class " + schema_.name + " has no property " + property,
                      TVTQStatusCode::kNotFound);
}

std::shared_ptr<Instance> Class::Find(const std::string& path) const {
  const auto found = instanceByPath_.find(path);
  return found != instanceByPath_.end() ? (*instances_)[found->second] : nullptr;
}

void Class::Commit(std::shared_ptr<Instance> instance, const std::string& path) {
  const auto found = instanceByPath_.find(path);
  if (found == instanceByPath_.end()) {
    instances_->push_back(std::move(instance));
    instanceByPath_.emplace(path, instances_->size() - 1);
    return;
  }
  if (instances_.use_count() > 1) {
    instances_ = std::make_shared<std::vector<std::shared_ptr<Instance>>>(*instances_);
  }
  (*instances_)[found->second] = std::move(instance);
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
