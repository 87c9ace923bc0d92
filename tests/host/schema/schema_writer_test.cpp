// SPDX-License-Identifier: Apache-2.0
#include "host/schema/schema_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/pci_schema.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

std::string Schema(const std::string& format) {
  OutputToText output;
  WriteSchema(output.Get(), format, PciSchema());
  return output.Text();
}

TEST(SchemaWriter, EveryFormatPrintsTheClasses) {
  EXPECT_THAT(SchemaFormats(), testing::ElementsAre("mof", "json-schema"));
  for (const std::string& format : SchemaFormats()) {
    EXPECT_THAT(Schema(format), testing::HasSubstr("QZMSG_DeviceInSlot")) << format;
  }
}

}  // namespace
}  // namespace pciinfo
