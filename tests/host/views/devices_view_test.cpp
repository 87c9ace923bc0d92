// SPDX-License-Identifier: Apache-2.0
#include "host/views/devices_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

TEST(DevicesView, ListsEveryFunctionByAddress) {
  OutputToText output;
  WriteDevicesTable(output.Get(), *MakeFixedRepository(), {});
  EXPECT_EQ(output.Text(),
            "ADDRESS  KIND    ID         DESCRIPTION\n"
            "00:00.0  bridge  8086:191f  Host bridge: Intel\n"
            "00:01.0  bridge  8086:1901  PCI bridge: Intel\n"
            "00:02.0  device  8086:1912  Display controller with a description that is so "
            "long that no line of a hundred columns could ever hold all of it\n"
            "00:1f.3  device  8086:a170  Audio device: Fa\xc3\xa7onn\xc3\xa9\n"
            "01:00.0  device  10de:1b80  VGA compatible controller: NVIDIA Corporation "
            "GP104\n");
}

TEST(DevicesView, WithoutFunctionsWritesOnlyHeadings) {
  OutputToText output;
  WriteDevicesTable(output.Get(), *MakeEmptyRepository(), {});
  EXPECT_EQ(output.Text(), "ADDRESS  KIND  ID  DESCRIPTION\n");
}

TEST(DevicesView, CutsDescriptionsToTheTerminalWidth) {
  OutputToText output;
  Terminal terminal;
  terminal.width = 60;
  WriteDevicesTable(output.Get(), *MakeFixedRepository(), terminal);
  EXPECT_THAT(output.Text(),
              testing::HasSubstr("00:02.0  device  8086:1912  Display controller with a des...\n"));
}

TEST(DevicesView, WritesJson) {
  OutputToText output;
  WriteDevicesJson(output.Get(), *MakeFixedRepository());
  const auto functions = nlohmann::json::parse(output.Text())["functions"];
  ASSERT_EQ(functions.size(), 5U);
  EXPECT_EQ(functions[0]["address"], "00:00.0");
  EXPECT_EQ(functions[4]["class"]["text"], "Display controller");
  OutputToText nothing;
  WriteDevicesJson(nothing.Get(), *MakeEmptyRepository());
  EXPECT_EQ(nlohmann::json::parse(nothing.Text())["functions"], nlohmann::json::array());
}

}  // namespace
}  // namespace pciinfo
