// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/machine/machine_model.h"
#include "host/model/machine_identity.h"
#include "runtime/repository.h"

namespace pciinfo {

/// The properties of an instance, by name.
class NamedProperties final {
 public:
  /// Has no properties.
  NamedProperties() = default;
  NamedProperties(std::shared_ptr<vtq::Class> cimClass, std::shared_ptr<vtq::Instance> instance)
      : cimClass_(std::move(cimClass)), instance_(std::move(instance)) {}

  /// Returns a value; null if the class does not declare the property.
  NQZMVTQ20::TCIMValue ValueOf(const std::string& property) const;
  /// Returns a value as text, the elements of an array joined with commas; nothing for null and
  /// for what is empty.
  std::optional<std::string> TextOf(const std::string& property) const;
  /// Returns the names of all declared properties.
  std::vector<std::string> Names() const;

 private:
  std::shared_ptr<vtq::Class> cimClass_;  ///< null without properties
  std::shared_ptr<vtq::Instance> instance_;
};

/// One side of a comparison.
struct MachineState {
  std::optional<MachineIdentity> identity;  ///< nothing if the side does not tell
  MachineModel model;
  bool tellsDrivers = false;  ///< a function without a driver has none; else it is not known
  // In the order of the functions and slots of the model.
  std::vector<NamedProperties> functions;
  std::vector<NamedProperties> details;
  std::vector<NamedProperties> slots;
};

/// The classes that ReadState reads.
std::vector<std::string> ComparedMachineClasses();

/// Reads the machine from the instances of ComparedMachineClasses().
MachineState ReadState(const vtq::Namespace& repository, std::optional<MachineIdentity> identity);

}  // namespace pciinfo
