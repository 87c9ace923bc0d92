// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/diff/machine_state.h"
#include "runtime/repository.h"

using Properties = std::vector<std::pair<std::string, NQZMVTQ20::TCIMValue>>;

inline NQZMVTQ20::TCIMValue ByteValue(unsigned value) {
  return NQZMVTQ20::TCIMValue(static_cast<std::uint8_t>(value));
}
inline NQZMVTQ20::TCIMValue WordValue(unsigned value) {
  return NQZMVTQ20::TCIMValue(static_cast<std::uint16_t>(value));
}
NQZMVTQ20::TCIMValue TextsValueOf(const std::vector<std::string>& texts);

/// A machine that a test assembles from instances of the topology.
class MadeMachine {
 public:
  MadeMachine();

  /// Adds a function of the vendor 8086.
  MadeMachine& Function(const std::string& address, unsigned device, Properties more = {});
  /// Adds a root port that leads to a bus.
  MadeMachine& RootPort(const std::string& address, unsigned bus);
  /// Adds a function behind a port.
  MadeMachine& Card(const std::string& address, unsigned device, const std::string& port,
                    Properties more = {});
  MadeMachine& Details(const std::string& address, const Properties& properties);
  /// Adds a slot of a firmware record to which ports lead.
  MadeMachine& Slot(const std::string& name, unsigned id, const std::vector<std::string>& ports,
                    const std::string& state = "unknown", Properties more = {});
  /// Puts a function into a slot.
  MadeMachine& Put(const std::string& address, const std::string& slot);

  std::optional<pciinfo::MachineIdentity> identity = pciinfo::MachineIdentity();

  pciinfo::MachineState State() const { return pciinfo::ReadState(*repository_, identity); }

 private:
  void Create(const char* className, const Properties& properties);
  NQZMVTQ20::TCIMValue Reference(const char* className, const char* key,
                                 const std::string& value) const;

  std::shared_ptr<vtq::Namespace> repository_;
};
