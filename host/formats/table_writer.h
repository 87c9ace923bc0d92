// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes a table for people: a heading for every class, then for every instance a block of lines
/// "property = value". Arrays of texts have one element per line; other arrays are on one line.
class TableWriter final : public InstanceWriter {
 public:
  explicit TableWriter(Output& output) : output_(output) {}

  void BeginClass(const vtq::Class& cimClass) override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  void WriteValue(const NQZMVTQ20::TCIMValue& value, std::size_t indent);

  Output& output_;
  bool first_ = true;
};

}  // namespace pciinfo
