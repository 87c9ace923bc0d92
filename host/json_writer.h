#pragma once

#include "host/instance_writer.h"

namespace pciinfo {

/// One instance a line, each a JSON object. docs/json.md describes it.
class JsonLinesWriter final : public InstanceWriter {
 public:
  explicit JsonLinesWriter(Output& output) : output_(output) {}

  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;

 private:
  Output& output_;
};

/// One JSON document, one instance a line in its array. docs/json.md describes it.
class JsonWriter final : public InstanceWriter {
 public:
  explicit JsonWriter(Output& output) : output_(output) {}

  void Begin() override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  bool first_ = true;
};

}  // namespace pciinfo
