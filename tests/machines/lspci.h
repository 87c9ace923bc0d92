// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

/// A PCI function as lspci prints it.
struct ListedFunction {
  unsigned domain = 0;
  std::string address;  ///< "BB:DD.F", without the domain
  unsigned classCode = 0;
  unsigned progIf = 0;
  unsigned revision = 0;
  unsigned vendor = 0;
  unsigned device = 0;
  std::optional<unsigned> subsystemVendor;
  std::optional<unsigned> subsystemDevice;
  std::string description;
};

/// Returns the functions that lspci lists on this machine; none if it finds no PCI.
std::vector<ListedFunction> ListFunctions();
