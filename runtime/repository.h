// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"
#include "runtime/class_schema.h"
#include "runtime/packed_values.h"

namespace vtq {

class Class;
class Instance;
class Namespace;

/// A namespace and the instances of its classes, in memory. Looking up, committing and enumerating
/// n instances takes O(n) time in all, because every class indexes its instances by object path.
class VTQ_EXPORT Namespace final : public NQZMVTQ20::ICIMNamespace,
                                   public std::enable_shared_from_this<Namespace> {
 public:
  /// Creates an empty namespace of that name ("root/cimv2").
  static std::shared_ptr<Namespace> Create(std::string name);

  /// Adds a class. Throws TVTQException when the namespace already has a class of that name, or the
  /// schema has two properties of the same name.
  void Declare(ClassSchema schema);

  /// All classes, in the order of their declaration.
  const std::vector<std::shared_ptr<Class>>& GetClasses() const noexcept { return classes_; }

  /// Returns the class of that name; null if there is none.
  std::shared_ptr<Class> Find(const std::string& name) const;

  std::string GetName(const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMClass> GetClass(
      const std::string& name, const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  explicit Namespace(std::string name) : name_(std::move(name)) {}

  std::string name_;
  std::vector<std::shared_ptr<Class>> classes_;
};

/// One class with its committed instances.
class VTQ_EXPORT Class final : public NQZMVTQ20::ICIMClass,
                               public std::enable_shared_from_this<Class> {
 public:
  /// Throws TVTQException when the schema has two properties of the same name.
  Class(std::weak_ptr<Namespace> owner, std::string nameSpace, ClassSchema schema);

  const ClassSchema& GetSchema() const noexcept { return schema_; }
  /// The name of the namespace.
  const std::string& GetNamespaceName() const noexcept { return nameSpace_; }
  /// Positions of the properties in the schema, in byte order of their names.
  const std::vector<std::size_t>& GetNameOrder() const noexcept { return nameOrder_; }
  /// Positions of the keys, in byte order of their names.
  const std::vector<std::size_t>& GetKeyOrder() const noexcept { return keyOrder_; }
  /// The position of a property in the schema. Throws TVTQException when it is not declared.
  std::size_t PositionOf(const std::string& property) const;

  /// The committed instances, in commit order; valid until the next commit.
  const std::vector<std::shared_ptr<Instance>>& GetInstances() const noexcept {
    return *instances_;
  }
  /// Returns the committed instance with that object path; null if there is none.
  std::shared_ptr<Instance> Find(const std::string& path) const;
  /// Adds `instance`, or replaces the committed instance with the same object path. Throws like
  /// Instance::GetPath.
  void Commit(std::shared_ptr<Instance> instance);

  /// Number of instances that exist and are not committed.
  std::size_t CountUncommitted() const noexcept { return uncommitted_; }

  std::string GetName(const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMNamespace> GetNamespace(
      const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMInstance> CreateInstance(
      const NQZMVTQ20::TQualifierMap& qualifiers) override;
  void EnumerateInstances(const NQZMVTQ20::TInstanceCallback& callback, int flag,
                          const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  friend class Instance;

  void Replace(std::shared_ptr<Instance> instance);

  std::weak_ptr<Namespace> owner_;
  std::string nameSpace_;
  ClassSchema schema_;
  std::vector<std::size_t> nameOrder_;
  std::vector<std::size_t> keyOrder_;
  // Shared with running enumerations, which continue over the instances that they began with.
  std::shared_ptr<std::vector<std::shared_ptr<Instance>>> instances_;
  std::unordered_map<std::string_view, std::size_t>
      instanceByPath_;  // keys are views of the instances' path texts
  std::size_t uncommitted_ = 0;
};

/// One instance: a value for each declared property, null where unset.
class VTQ_EXPORT Instance final : public NQZMVTQ20::ICIMInstance,
                                  public std::enable_shared_from_this<Instance> {
 public:
  explicit Instance(std::shared_ptr<Class> cimClass);
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  ~Instance() override;

  /// The value of the property at a position in the schema. InstanceValues is faster for several.
  NQZMVTQ20::TCIMValue GetValue(std::size_t position) const;
  /// The text of the object path, built once; valid until a key changes. Throws like
  /// GetObjectReference.
  const std::string& GetPath() const;

  std::shared_ptr<NQZMVTQ20::ICIMClass> GetClass(
      const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  NQZMVTQ20::TCIMReference GetObjectReference(
      const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  NQZMVTQ20::TCIMProperty GetProperty(const std::string& name,
                                      const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  void SetProperty(const std::string& name, const NQZMVTQ20::TCIMValue& value,
                   const NQZMVTQ20::TQualifierMap& qualifiers) override;
  void Commit(const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  friend class InstanceValues;

  /// Throws TVTQException when the class is gone.
  Class& GetOwner() const;
  void CheckKeys(const Class& owner) const;

  std::weak_ptr<Class> class_;
  Class* owner_;  ///< valid unless class_ has expired; avoids locking class_ for every value
  PackedValues::Values values_;         ///< of all properties of the schema; none if packed
  std::optional<PackedValues> packed_;  ///< once committed, where they can be packed
  // Built on demand, because nearly all references are never used.
  mutable std::string path_;
  mutable NQZMVTQ20::TCIMReference reference_;
  bool committed_ = false;
};

/// All values of an instance, for a reader of several of them.
class VTQ_EXPORT InstanceValues final {
 public:
  /// `instance` must outlive the values, and be set no property while they are read.
  explicit InstanceValues(const Instance& instance);
  InstanceValues(const InstanceValues&) = delete;
  InstanceValues& operator=(const InstanceValues&) = delete;

  /// The value of the property at a position in the schema; valid as long as these values.
  const NQZMVTQ20::TCIMValue& operator[](std::size_t position) const {
    return values_.at(position);
  }

 private:
  const PackedValues::Values unpacked_;
  const PackedValues::Values& values_;
};

}  // namespace vtq
