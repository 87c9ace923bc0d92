// SPDX-License-Identifier: Apache-2.0
#include "framework/schema_helper.h"

#include <gtest/gtest.h>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "runtime/repository.h"

namespace NQZMVTQ20 {
namespace {

TEST(SchemaHelperTest, TheSystemIsAComputerSystem) {
  EXPECT_EQ(TCIMSchemaHelper::GetSystemCreationClassName(vtq::Namespace::Create("root/cimv2")),
            "CIM_ComputerSystem");
}

TEST(SchemaHelperTest, TheSystemHasTheKernelsNameWithOrWithoutADomain) {
  std::string kernelName = TOSSpecific::CaptureFile("/proc/sys/kernel/hostname");
  kernelName.pop_back();
  const std::string name = TCIMSchemaHelper::GetSystemName(vtq::Namespace::Create("root/cimv2"));
  EXPECT_TRUE(name == kernelName || name.starts_with(kernelName + ".")) << name;
}

TEST(SchemaHelperTest, ANullNamespaceIsRefused) {
  EXPECT_THROW((void)TCIMSchemaHelper::GetSystemCreationClassName(nullptr), TVTQException);
  EXPECT_THROW((void)TCIMSchemaHelper::GetSystemName(nullptr), TVTQException);
}

}  // namespace
}  // namespace NQZMVTQ20
