#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/model/slots_model.h"
#include "runtime/repository.h"

namespace pciinfo {

/// What somebody asked for is not there; `what()` names it and says what to try.
class NotFound : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One thing with all that is known of it.
struct Shown {
  std::shared_ptr<vtq::Class> cimClass;
  std::shared_ptr<vtq::Instance> instance;
  std::optional<PciFunction> function;  ///< where it is one
  std::optional<Slot> slot;             ///< the slot itself, or the one that the function sits in
  bool isOnBoard = false;               ///< a function that the board is said to hold
};

/// The classes to collect before `name` can be looked for. Throws UsageError for an object path of
/// a class that is not served.
std::vector<std::string> ClassesToFind(const std::string& name);

/// The function of that address, the slot of that ID, designation or tag, or the instance of that
/// object path. Throws NotFound, and UsageError for a name of several slots.
Shown FindNamed(const vtq::Namespace& repository, const std::string& name);

}  // namespace pciinfo
