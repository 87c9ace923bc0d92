#pragma once

#include <string>
#include <vector>

#include "host/formats/instance_writer.h"

namespace pciinfo {

/// One table (RFC 4180) of all instances: the columns "class" and "path", then every property that
/// one of the classes has, in byte order of the names. docs/formats.md describes it.
class CsvWriter final : public InstanceWriter {
 public:
  explicit CsvWriter(Output& output) : output_(output) {}

  void Expect(const vtq::Class& cimClass) override;
  void Begin() override;
  void BeginClass(const vtq::Class& cimClass) override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  void WriteText(std::string_view bytes);
  void WriteValue(const NQZMVTQ20::TCIMValue& value);
  void WriteArray(const NQZMVTQ20::TCIMValue::TArray& elements);

  Output& output_;
  std::vector<std::string> columns_;    // of the properties, sorted
  std::vector<std::size_t> positions_;  // of the columns in the schema of the current class
};

}  // namespace pciinfo
