#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
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
  /// The same of the keys only.
  const std::vector<std::size_t>& GetKeyOrder() const noexcept { return keyOrder_; }
  /// The position of a property in the schema. Throws TVTQException when it is not declared.
  std::size_t PositionOf(const std::string& property) const;

  /// The committed instances, in commit order; valid until the next commit.
  const std::vector<std::shared_ptr<Instance>>& GetInstances() const noexcept {
    return *instances_;
  }
  /// The committed instance with that object path, null when there is none.
  std::shared_ptr<Instance> Find(const std::string& path) const;
  /// Holds `instance` under its object path from now on, in the place of the instance that was held
  /// under that path, if there was one. Throws like Instance::GetPath.
  void Commit(std::shared_ptr<Instance> instance);

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

  void Replace(std::shared_ptr<Instance> instance);

  std::weak_ptr<Namespace> owner_;
  std::string nameSpace_;
  ClassSchema schema_;
  std::vector<std::size_t> nameOrder_;
  std::vector<std::size_t> keyOrder_;
  /// Place in nameOrder_ behind the property found last: names are mostly asked for in that order.
  mutable std::size_t expected_ = 0;
  // Shared with the enumerations under way, which go on over the instances that they began with.
  std::shared_ptr<std::vector<std::shared_ptr<Instance>>> instances_;
  std::unordered_map<std::string_view, std::size_t> instanceByPath_;  // the instances' own texts
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
  /// The text of the object path, made once; valid until a key changes. Throws like
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
  /// Throws TVTQException when the class is gone.
  Class& GetOwner() const;
  void CheckKeys(const Class& owner) const;

  std::weak_ptr<Class> class_;
  Class* owner_;  ///< valid unless class_ has expired; locking that for every value takes time
  std::vector<NQZMVTQ20::TCIMValue> values_;
  // Made when they are asked for: nearly all references never are.
  mutable std::string path_;
  mutable NQZMVTQ20::TCIMReference reference_;
  bool committed_ = false;
};

}  // namespace vtq
