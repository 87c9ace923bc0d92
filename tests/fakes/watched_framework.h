#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_class.h"
#include "framework/cim_instance.h"
#include "framework/cim_namespace.h"

/// What a plug-in does with a namespace, its classes and its instances. Each operation is noted, as
/// "QZMSG_PCIDevice GetProperty UINumber", and may be made to fail. Qualifiers, and flags of an
/// enumeration, fail the test: a plug-in has none to pass.
class WatchedFramework {
 public:
  /// The real namespace does the work; it must outlive this.
  explicit WatchedFramework(std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace);

  /// The class of that name, watched, and all that it leads to as well.
  std::shared_ptr<NQZMVTQ20::ICIMClass> Class(const std::string& name);
  /// A watched handle of an instance.
  std::shared_ptr<NQZMVTQ20::ICIMInstance> Instance(
      std::shared_ptr<NQZMVTQ20::ICIMInstance> instance);

  /// The operations so far.
  std::vector<std::string> operations;
  /// Called before an operation is done; what it throws is the operation's failure.
  std::function<void(const std::string& operation)> before = [](const std::string&) {};

 private:
  class WatchedNamespace;
  class WatchedClass;
  class WatchedInstance;

  void Note(const std::string& operation, const NQZMVTQ20::TQualifierMap& qualifiers);

  std::shared_ptr<NQZMVTQ20::ICIMNamespace> nameSpace_;
};
