// SPDX-License-Identifier: Apache-2.0
#include "host/collect/trouble_report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using NQZMVTQ20::ILogger;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kThrown = "PCIInfo plugin threw unknown exception";

class TroubleReportTest : public testing::Test {
 protected:
  void Collect(const std::string& className, const std::vector<std::string>& records) {
    report_.BeginClass(className);
    for (const std::string& record : records) report_.AddRecord(ILogger::kStatus, record);
    report_.EndClass();
  }

  TroubleReport report_{Circumstances{}};
};

TEST_F(TroubleReportTest, StartsWithoutTroubles) {
  EXPECT_FALSE(report_.HasTroubles());
  EXPECT_THAT(report_.GetLines(), IsEmpty());
}

TEST_F(TroubleReportTest, ATroubleIsReportedOnceForItsFirstClass) {
  Collect("A", {"odd", "odd"});
  Collect("B", {"odd", "other"});
  EXPECT_THAT(report_.GetLines(), ElementsAre("A: odd", "B: other"));
  EXPECT_TRUE(report_.HasTroubles());
}

TEST_F(TroubleReportTest, TheSameSmbiosTroubleInTwoWordingsIsReportedOnce) {
  Collect("A", {"Unable to open SMBIOS library error: 4"});
  Collect("B", {"SMBIOS library could not load. Error 4"});
  EXPECT_THAT(report_.GetLines(), ElementsAre(HasSubstr("A: this user may not read")));
}

TEST_F(TroubleReportTest, OneCauseOfManyTroublesIsOneLine) {
  const std::string record = "Could not open PCI file./proc/bus/pci/0";
  Collect("A", {record + "1/00.0", record + "2/00.0"});
  Collect("B", {record + "1/00.0", record + "3/00.0", "odd"});
  EXPECT_THAT(report_.GetLines(),
              ElementsAre("A: 3 functions are missing: /proc/bus/pci/01/00.0 and 2 more could not "
                          "be opened (--log-file saves all names)",
                          "B: odd"));
}

TEST(TroubleReport, FunctionsOfOtherDomainsAreCountedByDomain) {
  const auto domainOf = [](const std::string& path) {
    return path == "03/00.0" ? "0001" : "10000";
  };
  Circumstances circumstances;
  circumstances.domainOf = domainOf;
  TroubleReport report(circumstances);
  report.BeginClass("A");
  for (const char* path : {"01/00.0", "02/00.0", "03/00.0"}) {
    report.AddRecord(ILogger::kStatus,
                     std::string("Could not open PCI file./proc/bus/pci/") + path);
  }
  EXPECT_THAT(report.GetLines(),
              ElementsAre("A: 2 functions in domain 10000 are not part of these classes (\"pciinfo "
                          "devices\" shows them)",
                          "A: 1 function in domain 0001 is not part of these classes (\"pciinfo "
                          "devices\" shows it)"));
}

TEST_F(TroubleReportTest, EveryLostClassIsReportedEvenForTheSameReason) {
  Collect("A", {kThrown});
  Collect("B", {kThrown});
  EXPECT_THAT(report_.GetLines(),
              ElementsAre("A: the class could not be collected: no reason was given",
                          "B: the class could not be collected: no reason was given"));
}

TEST_F(TroubleReportTest, NoticesComeFirstAndAreNoTroubles) {
  Collect("A", {"SMBIOS library could not load. Error 2"});
  EXPECT_FALSE(report_.HasTroubles());
  Collect("B", {"odd", "Return from smBiosGetFirst: Error 2"});
  EXPECT_THAT(report_.GetLines(), ElementsAre(HasSubstr("this machine has no SMBIOS tables"),
                                              HasSubstr("hold no slot records"), "B: odd"));
}

TEST_F(TroubleReportTest, AServiceFailureExplainsTheNextRecordOnly) {
  report_.BeginClass("A");
  report_.AddServiceFailure("lspci is missing");
  report_.AddRecord(ILogger::kDebug, "on the way");
  report_.AddRecord(ILogger::kStatus, kThrown);
  report_.BeginClass("B");
  report_.AddServiceFailure("no tables");
  report_.AddRecord(ILogger::kError, "Unable to open SMBIOS library error: 2");
  report_.AddRecord(ILogger::kStatus, kThrown);
  EXPECT_THAT(report_.GetLines(),
              ElementsAre(HasSubstr("no SMBIOS tables"),
                          HasSubstr("A: the class could not be collected: lspci is missing"),
                          HasSubstr("B: the class could not be collected: no reason was given")));
}

TEST_F(TroubleReportTest, AServiceFailureOfOneClassDoesNotExplainAnother) {
  report_.BeginClass("A");
  report_.AddServiceFailure("swallowed");
  report_.EndClass();
  Collect("B", {kThrown});
  EXPECT_THAT(report_.GetLines(), ElementsAre(HasSubstr("no reason was given")));
}

TEST_F(TroubleReportTest, RecordsOutsideOfACollectionAreNotJudged) {
  report_.AddRecord(ILogger::kError, "odd");
  Collect("A", {});
  report_.AddRecord(ILogger::kError, "odd");
  EXPECT_FALSE(report_.HasTroubles());
}

TEST_F(TroubleReportTest, AFailureOutsideOfACollectionHasNoClass) {
  report_.AddFailure("x.pi.so: it failed");
  EXPECT_THAT(report_.GetLines(), ElementsAre("x.pi.so: it failed"));
  EXPECT_TRUE(report_.HasTroubles());
}

}  // namespace
}  // namespace pciinfo
