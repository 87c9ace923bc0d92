#pragma once

#include "host/instance_writer.h"
#include "host/xml_text.h"

namespace pciinfo {

/// A CIM-XML declaration (DSP0201, DSP0203 2.4) of instances with their local paths.
/// docs/formats.md describes it.
class CimXmlWriter final : public InstanceWriter {
 public:
  explicit CimXmlWriter(Output& output) : output_(output) {}

  void Begin() override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  XmlText xml_;
};

}  // namespace pciinfo
