// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/model/slots_model.h"
#include "runtime/repository.h"

namespace pciinfo {

/// The requested object does not exist; `what()` names it and says what to try.
class NotFound : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// An instance with the function and slot that belong to it.
struct Shown {
  std::shared_ptr<vtq::Class> cimClass;
  std::shared_ptr<vtq::Instance> instance;
  std::optional<PciFunction> function;  ///< if the instance is a function
  std::optional<Slot> slot;             ///< the slot itself, or the slot that holds the function
  bool isOnBoard = false;               ///< an association places the function on the board
};

/// Returns the classes to collect before FindNamed(name). Throws UsageError for an object path of
/// a class that is not declared.
std::vector<std::string> ClassesToFind(const std::vector<vtq::ClassSchema>& declared,
                                       const std::string& name);

/// Finds a function by address, a slot by ID, designation or tag, or an instance by object path.
/// Throws NotFound, or UsageError if several slots have the name.
Shown FindNamed(const vtq::Namespace& repository, const std::string& name);

}  // namespace pciinfo
