// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>

#include "host/console/output.h"
#include "runtime/repository.h"

/// A repository with the program's classes and no instances.
std::shared_ptr<vtq::Namespace> MakeEmptyRepository();

/// A repository with the invented machine of the plug-in "fixed".
std::shared_ptr<vtq::Namespace> MakeFixedRepository();

/// A repository with the classes of the topology and no instances.
std::shared_ptr<vtq::Namespace> MakeEmptyTopologyRepository();

/// A repository with the classes of the topology and the invented machine of the plug-in "fixed".
std::shared_ptr<vtq::Namespace> MakeTopologyRepository();

/// An output whose text can be read back.
class OutputToText {
 public:
  OutputToText();
  ~OutputToText();
  OutputToText(const OutputToText&) = delete;
  OutputToText& operator=(const OutputToText&) = delete;

  pciinfo::Output& Get() { return output_; }
  /// Everything written so far.
  std::string Text();

 private:
  int descriptor_;
  pciinfo::Output output_;
};
