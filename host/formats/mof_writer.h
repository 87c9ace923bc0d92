// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes MOF (DSP0004) "instance of" declarations for the classes of `pciinfo schema --format
/// mof`. docs/formats.md describes it.
class MofWriter final : public InstanceWriter {
 public:
  explicit MofWriter(Output& output) : output_(output) {}

  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  void WriteValue(const NQZMVTQ20::TCIMValue& value);

  Output& output_;
  bool first_ = true;
};

}  // namespace pciinfo
