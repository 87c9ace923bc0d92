// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/plugin_manager_provider.h"
#include "pci/dev_info.h"
#include "plugin/property_map.h"
#include "runtime/repository.h"
#include "tests/fakes/framework.h"
#include "tests/fakes/machine_tree.h"

/// A machine without functions, an empty framework, and a plug-in that was just loaded.
class PluginTest : public testing::Test {
 protected:
  PluginTest();

  std::shared_ptr<vtq::Class> Class(const std::string& name) const;
  /// Creates a collector for a class, as a query does.
  template <class Collector>
  Collector Make(const std::string& className) {
    return Collector(Class(className), &provider);
  }

  /// Committed instances of a class.
  const std::vector<std::shared_ptr<vtq::Instance>>& Instances(const std::string& className) const;
  /// Commits an instance with these properties.
  std::shared_ptr<NQZMVTQ20::ICIMInstance> Commit(const std::string& className,
                                                  const TPropertyMap& properties);

  std::shared_ptr<vtq::Namespace> nameSpace;
  NQZMVTQ20::TPluginManagerProvider provider{"test.pi.so"};
};

/// Text of a string property, number of a numeric one.
std::string Text(const NQZMVTQ20::ICIMInstance& instance, const std::string& property);
unsigned Number(const NQZMVTQ20::ICIMInstance& instance, const std::string& property);
std::string Text(const TPropertyMap& properties, const std::string& property);
unsigned Number(const TPropertyMap& properties, const std::string& property);
/// Elements of an array of numbers.
std::vector<unsigned> Numbers(const NQZMVTQ20::TCIMValue& value);
std::vector<std::string> Texts(const NQZMVTQ20::TCIMValue& value);

/// A class that behaves like another one until it is set to fail.
class FaultyClass final : public NQZMVTQ20::ICIMClass {
 public:
  explicit FaultyClass(std::shared_ptr<vtq::Class> target) : target_(std::move(target)) {}

  /// Called before each operation; if it throws, the operation fails.
  std::function<void()> onGetName = [] {};
  std::function<void()> onGetNamespace = [] {};
  std::function<void(int count)> onCreate = [](int) {};  ///< count from 1

  std::string GetName(const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMNamespace> GetNamespace(
      const NQZMVTQ20::TQualifierMap& qualifiers) const override;
  std::shared_ptr<NQZMVTQ20::ICIMInstance> CreateInstance(
      const NQZMVTQ20::TQualifierMap& qualifiers) override;
  void EnumerateInstances(const NQZMVTQ20::TInstanceCallback& callback, int flag,
                          const NQZMVTQ20::TQualifierMap& qualifiers) override;

 private:
  std::shared_ptr<vtq::Class> target_;
  int created_ = 0;
};
