// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"

/// Records the operations of a plug-in on a namespace, its classes and its instances, as
/// "QZMSG_PCIDevice GetProperty UINumber", and can make them fail. A test fails if the plug-in
/// passes qualifiers, or flags of an enumeration, because it must not.
class WatchedFramework {
 public:
  /// Calls the real namespace, which must outlive this.
  explicit WatchedFramework(std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace);

  /// The class of that name. Operations on it and on its instances are recorded.
  std::shared_ptr<NQZMVTQ20::ICIMClass> Class(const std::string& name);
  /// An instance whose operations are recorded.
  std::shared_ptr<NQZMVTQ20::ICIMInstance> Instance(
      std::shared_ptr<NQZMVTQ20::ICIMInstance> instance);

  /// The operations so far.
  std::vector<std::string> operations;
  /// Called before each operation; if it throws, the operation fails.
  std::function<void(const std::string& operation)> before = [](const std::string&) {};

 private:
  class WatchedNamespace;
  class WatchedClass;
  class WatchedInstance;

  void Note(const std::string& operation, const NQZMVTQ20::TQualifierMap& qualifiers);

  std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace_;
};
