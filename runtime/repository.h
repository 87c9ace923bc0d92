#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"
#include "runtime/class_schema.h"

namespace vtq {

class Class;
class Instance;
class Namespace;

/// A namespace and the instances of its classes, in memory. Looking up, committing and enumerating
/// n instances costs O(n) in all: every class indexes its instances by object path.
class VTQ_EXPORT Namespace final : public NQZMVTQ20::ICIMNamespace,
                                   public std::enable_shared_from_this<Namespace> {
 public:
  /// An empty namespace of that name ("root/cimv2").
  static std::shared_ptr<Namespace> Create(std::string name);

  /// Adds a class. Throws TVTQException when the namespace has one of that name, or the schema has
  /// two properties of one name.
  void Declare(ClassSchema schema);

  /// All classes, in the order of their declaration.
  const std::vector<std::shared_ptr<Class>>& GetClasses() const noexcept { return classes_; }

  /// The class of that name, null when there is none.
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
  /// Throws TVTQException when the schema has two properties of one name.
  Class(std::weak_ptr<Namespace> owner, std::string nameSpace, ClassSchema schema);

  const ClassSchema& GetSchema() const noexcept { return schema_; }
  /// The name of the namespace.
  const std::string& GetNamespaceName() const noexcept { return nameSpace_; }
  /// Positions of the properties in the schema, in byte order of their names.
  const std::vector<std::size_t>& GetNameOrder() const noexcept { return nameOrder_; }
  /// The position of a property in the schema. Throws TVTQException when it is not declared.
  std::size_t PositionOf(const std::string& property) const;

  /// The committed instances, in commit order; valid until the next commit.
  const std::vector<std::shared_ptr<Instance>>& GetInstances() const noexcept {
    return *instances_;
  }
  /// The committed instance with that object path, null when there is none.
  std::shared_ptr<Instance> Find(const std::string& path) const;
  /// Holds `instance` under its object path from now on, in the place of the instance that was held
  /// under that path, if there was one.
  void Commit(std::shared_ptr<Instance> instance, const std::string& path);

  /// Instances that were created, and neither committed nor dropped yet.
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

  std::weak_ptr<Namespace> owner_;
  std::string nameSpace_;
  ClassSchema schema_;
  std::unordered_map<std::string, std::size_t> positions_;
  std::vector<std::size_t> nameOrder_;
  // Shared with the enumerations under way, which go on over the instances that they began with.
  std::shared_ptr<std::vector<std::shared_ptr<Instance>>> instances_;
  std::unordered_map<std::string, std::size_t> instanceByPath_;
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

  /// The value at a position of the schema; valid until the property is set again.
  const NQZMVTQ20::TCIMValue& GetValue(std::size_t position) const { return values_.at(position); }
  /// The object path, made once and kept until a key changes; throws like GetObjectReference.
  NQZMVTQ20::TCIMReference GetPath() const;

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
  std::shared_ptr<Class> LockClass() const;

  std::weak_ptr<Class> class_;
  std::vector<NQZMVTQ20::TCIMValue> values_;
  mutable NQZMVTQ20::TCIMReference path_;  ///< null until it is asked for
  bool committed_ = false;
};

}  // namespace vtq
