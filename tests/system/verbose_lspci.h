// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>

/// Facts in words, by their names.
using Facts = std::map<std::string, std::string>;
using FactsByName = std::map<std::string, Facts>;

/// What `lspci -vvv -n -D` prints, in facts by the address of the function.
struct VerboseLspci {
  FactsByName functions;      ///< class, IDs, buses, driver, NUMA node, port type, link
  FactsByName portSlots;      ///< of ports to slots: the registers of the slot
  FactsByName physicalSlots;  ///< "kernel slot" of the functions that the kernel has in a slot
};
VerboseLspci ReadVerboseLspci(const std::string& listing);

/// What `grep . /sys/bus/pci/slots/*/*` prints of each kernel slot.
FactsByName ReadKernelSlots(const std::string& listing);

/// The same facts as the program tells them. `instances` is the output of `pciinfo instances
/// VTQ_PCIFunction ... --format json`.
FactsByName TellFunctions(const nlohmann::json& instances);
FactsByName TellPortSlots(const nlohmann::json& instances);
FactsByName TellPhysicalSlots(const nlohmann::json& instances);
FactsByName TellKernelSlots(const nlohmann::json& instances);
