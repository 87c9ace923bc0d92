// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// Writes all instances as one table (RFC 4180): the columns "class" and "path", then every
/// property of any of the classes, in byte order of the names. docs/formats.md describes it. Expect
/// throws std::runtime_error for a class with a value that is too long for spreadsheets.
class CsvWriter final : public InstanceWriter {
 public:
  /// `isShown`: for a terminal, where texts are made printable. CSV has no escapes, so elsewhere
  /// their bytes stay as they are.
  CsvWriter(Output& output, bool isShown) : output_(output), isShown_(isShown) {}

  void Expect(const vtq::Class& cimClass) override;
  void Begin() override;
  void BeginClass(const vtq::Class& cimClass) override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  void WriteText(std::string_view bytes);
  void WriteValue(const NQZMVTQ20::TCIMValue& value);
  void WriteArray(const NQZMVTQ20::TCIMValue::TArray& elements);

  Output& output_;
  bool isShown_;
  std::vector<std::string> columns_;    // property names, sorted
  std::vector<std::size_t> positions_;  // of the columns in the current class's schema
};

}  // namespace pciinfo
