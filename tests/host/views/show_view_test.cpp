// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/base/errors.h"
#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string ShownText(const std::string& name) {
  const auto repository = MakeTopologyRepository();
  OutputToText output;
  WriteShown(output.Get(), *FindNamed(*repository, name), {});
  return output.Text();
}

nlohmann::json ShownJson(const std::string& name) {
  const auto repository = MakeTopologyRepository();
  OutputToText output;
  WriteShownJson(output.Get(), *FindNamed(*repository, name));
  return nlohmann::json::parse(output.Text());
}

TEST(ShowView, ShowsAFunctionWithTheEvidenceForItsPlace) {
  const std::string text = ShownText("01:00.0");
  for (const char* part : {"NVIDIA GP104 [GeForce GTX 1080]\n", "0000:01:00.0", "PCIEX16_1",
                           "because      0000:01:00.0 is behind the port", "nouveau",
                           "x8 of x16, 8 of 16 GT/s", "(10de:1b80)"}) {
    EXPECT_THAT(text, HasSubstr(part));
  }
}

TEST(ShowView, NeverSaysOnBoardWhereThatIsNotKnown) {
  const std::string text = ShownText("04:00.0");
  EXPECT_THAT(text, HasSubstr("Place        unknown\n"));
  EXPECT_THAT(text, HasSubstr("because      it is on the conventional bus"));
  EXPECT_THAT(text, Not(HasSubstr("board")));
  EXPECT_THAT(ShownText("02:00.1"), HasSubstr("Place        PCIEX4_1 or PCIEX4_2\n"));
  EXPECT_THAT(ShownText("03:00.0"), HasSubstr("(likely)"));
}

TEST(ShowView, ShowsASlotByNameNumberAndPort) {
  for (const char* name : {"PCIEX16_1", "pciex16_1", "1"}) {
    const std::string text = ShownText(name);
    EXPECT_THAT(text, HasSubstr("Slot PCIEX16_1\n"));
    EXPECT_THAT(text, HasSubstr("01:00.0-1  NVIDIA GP104 [GeForce GTX 1080] + audio\n"));
  }
  EXPECT_THAT(ShownText("00:01.1"), HasSubstr("Leads to     PCIEX4_1 or PCIEX4_2\n"));
  EXPECT_THAT(ShownText("M2_1"), HasSubstr("Doubt        the firmware says in use"));
}

TEST(ShowView, FindsTheFunctionOfANetworkInterface) {
  const std::string text = ShownText("eth0");
  EXPECT_THAT(text, HasSubstr("0000:02:00.0"));
  EXPECT_THAT(text, HasSubstr("InterruptMode"));
}

TEST(ShowView, ShowsAnInstanceByItsPath) {
  EXPECT_THAT(ShownText("/root/cimv2:VTQ_PCISlot.Name=\"PCIEX1\""), HasSubstr("FirmwareUsage"));
  EXPECT_THROW(ShownText("/root/cimv2:VTQ_PCISlot.Name=\"no\""), NotFound);
  EXPECT_THROW(ShownText("/nonsense"), UsageError);
}

TEST(ShowView, SaysWhatItDoesNotFind) {
  EXPECT_THROW(ShownText("05:00.0"), NotFound);
  EXPECT_THROW(ShownText("0001:01:00.0"), NotFound);
  EXPECT_THROW(ShownText("nothing"), NotFound);
}

TEST(ShowView, AsksForTheDetailsOnlyWhereTheyAreDeclared) {
  std::vector<vtq::ClassSchema> declared;
  const auto repository = MakeTopologyRepository();
  for (const auto& cimClass : repository->GetClasses()) {
    declared.push_back(cimClass->GetSchema());
  }
  EXPECT_THAT(ClassesToFind(declared, "01:00.0"), testing::Contains(kDetailsClass));
  std::erase_if(declared, [](const auto& schema) { return schema.name == kDetailsClass; });
  EXPECT_THAT(ClassesToFind(declared, "01:00.0"), Not(testing::Contains(kDetailsClass)));
  EXPECT_THROW(ClassesToFind(declared, "/root/cimv2:Nothing.x=1"), UsageError);
}

TEST(ShowView, WritesJson) {
  EXPECT_EQ(ShownJson("01:00.0")["function"]["slot"], "PCIEX16_1");
  EXPECT_EQ(ShownJson("eth0")["details"]["properties"]["InterruptMode"], "MSI-X");
  EXPECT_EQ(ShownJson("PCIEX1")["slot"]["state"], "empty");
}

}  // namespace
}  // namespace pciinfo
