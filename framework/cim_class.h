#pragma once

#include <functional>
#include <memory>
#include <string>

#include "framework/qualifier_map.h"

namespace NQZMVTQ20 {

class ICIMInstance;
class ICIMNamespace;

/// Receives one instance of an enumeration; answers true to go on, false to stop.
using TInstanceCallback = std::function<bool(const std::shared_ptr<ICIMInstance>&)>;

/// One CIM class and its instances. Owned by the framework, which keeps it alive for the whole of
/// the call that hands it to a plug-in; all calls come on one thread.
class ICIMClass {
 public:
  virtual ~ICIMClass() = default;

  virtual std::string GetName(const TQualifierMap& qualifiers) const = 0;

  /// The namespace that the class lives in; never null. Throws TVTQException when that namespace
  /// is gone.
  virtual std::shared_ptr<ICIMNamespace> GetNamespace(const TQualifierMap& qualifiers) const = 0;

  /// A new instance with no property set; never null. The framework does not know it until it is
  /// committed: an instance that is dropped before leaves no trace.
  virtual std::shared_ptr<ICIMInstance> CreateInstance(const TQualifierMap& qualifiers) = 0;

  /// Hands every committed instance to `callback`, in the order in which they were first
  /// committed, until it answers false. `flag` is reserved and 0. Instances committed from within
  /// the callback are not enumerated. Exceptions of the callback pass through.
  virtual void EnumerateInstances(const TInstanceCallback& callback, int flag,
                                  const TQualifierMap& qualifiers) = 0;
};

}  // namespace NQZMVTQ20
