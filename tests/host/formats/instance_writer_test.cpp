// SPDX-License-Identifier: Apache-2.0
#include "host/formats/instance_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::ElementsAre;

class Recorder final : public InstanceWriter {
 public:
  void Expect(const vtq::Class& cimClass) override {
    calls.push_back("expect " + cimClass.GetSchema().name);
  }
  void Begin() override { calls.push_back("begin"); }
  void BeginClass(const vtq::Class& cimClass) override {
    calls.push_back(cimClass.GetSchema().name);
  }
  void Write(const vtq::Class&, const vtq::Instance& instance) override {
    calls.push_back(static_cast<std::string>(instance.GetProperty("DeviceID", {}).value));
  }
  void End() override { calls.push_back("end"); }

  std::vector<std::string> calls;
};

TEST(InstanceWriter, IsCalledClassByClassInTheRequestedOrder) {
  Recorder recorder;
  WriteInstances(*MakeFixedRepository(), {"QZMSG_SystemBoard", "QZMSG_PCIBridge"}, recorder);
  EXPECT_THAT(recorder.calls, ElementsAre("expect QZMSG_SystemBoard", "expect QZMSG_PCIBridge",
                                          "begin", "QZMSG_SystemBoard", "SystemBoard1",
                                          "QZMSG_PCIBridge", "PCI Bus  0, device   0, function  0",
                                          "PCI Bus  0, device   1, function  0", "end"));
}

TEST(InstanceWriter, SkipsUndeclaredClasses) {
  Recorder recorder;
  WriteInstances(*MakeEmptyRepository(), {"Nothing", "QZMSG_PCIBridge"}, recorder);
  EXPECT_THAT(recorder.calls,
              ElementsAre("expect QZMSG_PCIBridge", "begin", "QZMSG_PCIBridge", "end"));
}

TEST(InstanceWriter, EveryFormatHasAWriter) {
  OutputToText output;
  EXPECT_THAT(InstanceFormats(),
              ElementsAre("table", "json", "jsonl", "csv", "yaml", "mof", "cim-xml"));
  for (const std::string& format : InstanceFormats()) {
    EXPECT_NE(MakeInstanceWriter(format, output.Get()), nullptr) << format;
  }
}

}  // namespace
}  // namespace pciinfo
