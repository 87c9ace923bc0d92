// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "framework/qualifier_map.h"

namespace NQZMVTQ20 {

class ICIMInstance;
class ICIMNamespace;

/// Receives one instance of an enumeration; returns true to continue, false to stop.
using TInstanceCallback = std::function<bool(const std::shared_ptr<ICIMInstance>&)>;

/// One CIM class and its instances. Owned by the framework, which keeps it alive during the call
/// that passes it to a plug-in. All calls come on one thread.
class ICIMClass {
 public:
  virtual ~ICIMClass() = default;

  virtual std::string GetName(const TQualifierMap& qualifiers) const = 0;

  /// The namespace of the class; never null. Throws TVTQException when that namespace no longer
  /// exists.
  virtual std::shared_ptr<ICIMNamespace> GetNamespace(const TQualifierMap& qualifiers) const = 0;

  /// Creates an instance with no property set; never null. The framework does not hold it until it
  /// is committed; an instance that is not committed disappears with its last reference.
  virtual std::shared_ptr<ICIMInstance> CreateInstance(const TQualifierMap& qualifiers) = 0;

  /// Calls `callback` for every committed instance, in the order in which they were first
  /// committed, until it returns false. `flag` is reserved and 0. Instances that the callback
  /// commits are not enumerated. Exceptions of the callback pass through.
  virtual void EnumerateInstances(const TInstanceCallback& callback, int flag,
                                  const TQualifierMap& qualifiers) = 0;
};

}  // namespace NQZMVTQ20
