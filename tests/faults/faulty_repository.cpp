// SPDX-License-Identifier: Apache-2.0
#include "tests/faults/faulty_repository.h"

#include <utility>

#include "framework/cim_instance.h"
#include "framework/exception.h"

using namespace NQZMVTQ20;

namespace {

class FaultyInstance final : public ICIMInstance {
 public:
  FaultyInstance(std::shared_ptr<ICIMInstance> target, std::shared_ptr<ICIMClass> owner)
      : target_(std::move(target)), owner_(std::move(owner)) {}

  std::shared_ptr<ICIMClass> GetClass(const TQualifierMap&) const override { return owner_; }

  TCIMReference GetObjectReference(const TQualifierMap& qualifiers) const override {
    ThrowIfFailing(Call::kReference);
    return target_->GetObjectReference(qualifiers);
  }

  TCIMProperty GetProperty(const std::string& name,
                           const TQualifierMap& qualifiers) const override {
    ThrowIfFailing(Call::kGet);
    return target_->GetProperty(name, qualifiers);
  }

  void SetProperty(const std::string& name, const TCIMValue& value,
                   const TQualifierMap& qualifiers) override {
    ThrowIfFailing(Call::kSet);
    target_->SetProperty(name, value, qualifiers);
  }

  void Commit(const TQualifierMap& qualifiers) override {
    ThrowIfFailing(Call::kCommit);
    target_->Commit(qualifiers);
  }

 private:
  std::shared_ptr<ICIMInstance> target_;
  std::shared_ptr<ICIMClass> owner_;
};

class FaultyClass final : public ICIMClass, public std::enable_shared_from_this<FaultyClass> {
 public:
  FaultyClass(std::shared_ptr<ICIMClass> target, std::shared_ptr<ICIMNamespace> owner)
      : target_(std::move(target)), owner_(std::move(owner)) {}

  std::string GetName(const TQualifierMap& qualifiers) const override {
    ThrowIfFailing(Call::kName);
    return target_->GetName(qualifiers);
  }

  std::shared_ptr<ICIMNamespace> GetNamespace(const TQualifierMap&) const override {
    ThrowIfFailing(Call::kNamespace);
    return owner_;
  }

  std::shared_ptr<ICIMInstance> CreateInstance(const TQualifierMap& qualifiers) override {
    ThrowIfFailing(Call::kCreate);
    return std::make_shared<FaultyInstance>(target_->CreateInstance(qualifiers),
                                            shared_from_this());
  }

  void EnumerateInstances(const TInstanceCallback& callback, int flag,
                          const TQualifierMap& qualifiers) override {
    ThrowIfFailing(Call::kEnumerate);
    const auto wrapped = [&](const std::shared_ptr<ICIMInstance>& instance) {
      return callback(std::make_shared<FaultyInstance>(instance, shared_from_this()));
    };
    target_->EnumerateInstances(wrapped, flag, qualifiers);
  }

 private:
  std::shared_ptr<ICIMClass> target_;
  std::shared_ptr<ICIMNamespace> owner_;
};

class FaultyNamespace final : public ICIMNamespace,
                              public std::enable_shared_from_this<FaultyNamespace> {
 public:
  explicit FaultyNamespace(std::shared_ptr<ICIMNamespace> target) : target_(std::move(target)) {}

  std::string GetName(const TQualifierMap& qualifiers) const override {
    return target_->GetName(qualifiers);
  }

  std::shared_ptr<ICIMClass> GetClass(const std::string& name,
                                      const TQualifierMap& qualifiers) override {
    ThrowIfFailing(Call::kLookUpClass);
    return std::make_shared<FaultyClass>(target_->GetClass(name, qualifiers), shared_from_this());
  }

 private:
  std::shared_ptr<ICIMNamespace> target_;
};

}  // namespace

void ThrowIfFailing(Call call) {
  if (MustFail(call)) throw TVTQException(kInjected);
}

std::shared_ptr<ICIMNamespace> WithFaults(std::shared_ptr<ICIMNamespace> nameSpace) {
  return std::make_shared<FaultyNamespace>(std::move(nameSpace));
}
