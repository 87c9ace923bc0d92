// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>

#include "topology/function_details.h"
#include "topology/kernel_directory.h"
#include "topology/machine.h"
#include "topology/module_aliases.h"
#include "topology/vital_product_reader.h"

namespace topology {

/// Reads the details of functions. A file that is missing or cannot be read leaves its fact
/// unknown.
class DetailsReader {
 public:
  /// Reads which modules the kernel has.
  DetailsReader();

  /// Reads the files of a function that the list of functions did not need. May be called on
  /// several threads at once.
  FunctionDetails Read(const Function& function);

  /// Why no modules are known; empty: they are.
  const std::string& GetNoModulesBecause() const { return noModulesBecause_; }

 private:
  void ReadAttributes(const Directory& device, FunctionDetails& details) const;
  void ReadVitalProductData(const Function& function, const Directory& device,
                            FunctionDetails& details);

  Directory devices_;
  ModuleAliases aliases_;
  std::string noModulesBecause_;
  VitalProductReader vitalProducts_;
};

}  // namespace topology
