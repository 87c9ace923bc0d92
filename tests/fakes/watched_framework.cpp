// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/watched_framework.h"

#include <gtest/gtest.h>

#include <utility>

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::TCIMProperty;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TInstanceCallback;
using NQZMVTQ20::TQualifierMap;

class WatchedFramework::WatchedNamespace final : public ICIMNamespace {
 public:
  explicit WatchedNamespace(WatchedFramework& watch) : watch_(watch) {}

  std::string GetName(const TQualifierMap& qualifiers) const override {
    watch_.Note("namespace GetName", qualifiers);
    return watch_.nameSpace_->GetName(qualifiers);
  }

  std::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                      const TQualifierMap& qualifiers) override {
    watch_.Note("namespace GetClass " + name, qualifiers);
    return watch_.Class(name);
  }

 private:
  WatchedFramework& watch_;
};

class WatchedFramework::WatchedClass final : public ICIMClass {
 public:
  WatchedClass(WatchedFramework& watch, std::shared_ptr<ICIMClass> target)
      : watch_(watch), target_(std::move(target)), name_(target_->GetName({})) {}

  std::string GetName(const TQualifierMap& qualifiers) const override {
    watch_.Note(name_ + " GetName", qualifiers);
    return name_;
  }

  std::shared_ptr<ICIMNamespace> GetNamespace(const TQualifierMap& qualifiers) const override {
    watch_.Note(name_ + " GetNamespace", qualifiers);
    return std::make_shared<WatchedNamespace>(watch_);
  }

  std::shared_ptr<ICIMInstance> CreateInstance(const TQualifierMap& qualifiers) override {
    watch_.Note(name_ + " CreateInstance", qualifiers);
    return watch_.Instance(target_->CreateInstance(qualifiers));
  }

  void EnumerateInstances(const TInstanceCallback& callback, int flag,
                          const TQualifierMap& qualifiers) override {
    watch_.Note(name_ + " EnumerateInstances", qualifiers);
    EXPECT_EQ(flag, 0) << name_;
    target_->EnumerateInstances(
        [&](const std::shared_ptr<ICIMInstance>& instance) {
          return callback(watch_.Instance(instance));
        },
        flag, qualifiers);
  }

 private:
  WatchedFramework& watch_;
  std::shared_ptr<ICIMClass> target_;
  std::string name_;
};

class WatchedFramework::WatchedInstance final : public ICIMInstance {
 public:
  WatchedInstance(WatchedFramework& watch, std::shared_ptr<ICIMInstance> target)
      : watch_(watch), target_(std::move(target)), name_(target_->GetClass({})->GetName({})) {}

  std::shared_ptr<ICIMClass> GetClass(const TQualifierMap& qualifiers) const override {
    watch_.Note(name_ + " GetClass", qualifiers);
    return watch_.Class(name_);
  }

  TCIMReference GetObjectReference(const TQualifierMap& qualifiers) const override {
    watch_.Note(name_ + " GetObjectReference", qualifiers);
    return target_->GetObjectReference(qualifiers);
  }

  TCIMProperty GetProperty(const std::string& name,
                           const TQualifierMap& qualifiers) const override {
    watch_.Note(name_ + " GetProperty " + name, qualifiers);
    return target_->GetProperty(name, qualifiers);
  }

  void SetProperty(const std::string& name, const TCIMValue& value,
                   const TQualifierMap& qualifiers) override {
    watch_.Note(name_ + " SetProperty " + name, qualifiers);
    target_->SetProperty(name, value, qualifiers);
  }

  void Commit(const TQualifierMap& qualifiers) override {
    watch_.Note(name_ + " Commit", qualifiers);
    target_->Commit(qualifiers);
  }

 private:
  WatchedFramework& watch_;
  std::shared_ptr<ICIMInstance> target_;
  std::string name_;
};

WatchedFramework::WatchedFramework(std::shared_ptr<ICIMNamespace> nameSpace)
    : nameSpace_(std::move(nameSpace)) {}

std::shared_ptr<ICIMClass> WatchedFramework::Class(const std::string& name) {
  return std::make_shared<WatchedClass>(*this, nameSpace_->GetClass(name, {}));
}

std::shared_ptr<ICIMInstance> WatchedFramework::Instance(std::shared_ptr<ICIMInstance> instance) {
  return std::make_shared<WatchedInstance>(*this, std::move(instance));
}

void WatchedFramework::Note(const std::string& operation, const TQualifierMap& qualifiers) {
  EXPECT_TRUE(qualifiers.empty()) << operation;
  operations.push_back(operation);
  before(operation);
}
