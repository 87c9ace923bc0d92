#pragma once

#include "host/instance_writer.h"

namespace pciinfo {

/// One YAML document with the keys and values of the JSON one. docs/formats.md describes it.
class YamlWriter final : public InstanceWriter {
 public:
  explicit YamlWriter(Output& output) : output_(output) {}

  void Begin() override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  bool first_ = true;
};

}  // namespace pciinfo
