// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/machines/machine.h"

/// The output of `pciinfo instances --format json` for the machine.
struct Collection {
  int status = -1;
  std::string messages;                   ///< standard error
  std::vector<nlohmann::json> instances;  ///< each with "class", "path" and "properties"
  std::vector<std::string> log;           ///< the records, each with its severity's digit

  std::vector<nlohmann::json> Of(const std::string& className) const;

  /// The devices, then the bridges.
  std::vector<nlohmann::json> Functions() const;

  bool HasLogged(const std::string& record) const;
};

/// Runs the program for these classes, or for all, on the machine that MachineTest shows. Throws
/// when its output is not JSON of that form. A process that asks for the same again gets what it
/// got.
const Collection& Collect(const Machine& machine, const std::vector<std::string>& classes = {});

/// Returns the address "BB:DD.F" in the location of a function ("PCI Bus  0, device  31, function
/// 2"). Throws for any other text.
std::string AddressOf(const nlohmann::json& function);

/// Returns a number of an instance, if it has the property.
unsigned NumberOr(const nlohmann::json& instance, const std::string& property, unsigned otherwise);
