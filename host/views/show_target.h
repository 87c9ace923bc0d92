// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/machine/function_details.h"
#include "host/machine/machine_model.h"
#include "runtime/repository.h"

namespace pciinfo {

/// The requested object does not exist; `what()` names it and says what to try.
class NotFound : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A function, a slot or an instance that a name stands for.
struct Shown {
  MachineModel machine;
  const MachineFunction* function = nullptr;  ///< of `machine`; null if the name is another thing's
  const MachineSlot* slot = nullptr;          ///< likewise
  FunctionDetails details;                    ///< of the function
  std::shared_ptr<vtq::Class> cimClass;       ///< of an instance that an object path names
  std::shared_ptr<vtq::Instance> instance;
};

/// Returns the classes to collect before FindNamed(name). Throws UsageError for an object path of
/// a class that is not declared.
std::vector<std::string> ClassesToFind(const std::vector<vtq::ClassSchema>& declared,
                                       const std::string& name);

/// Finds a function by address or by the name of its network interface or block device, a slot by
/// name, ID or kernel slot, or an instance by object path. Throws NotFound, or UsageError if the
/// name stands for several things.
std::unique_ptr<Shown> FindNamed(const vtq::Namespace& repository, const std::string& name);

}  // namespace pciinfo
