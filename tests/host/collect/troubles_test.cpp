// SPDX-License-Identifier: Apache-2.0
#include "host/collect/troubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pciinfo {
namespace {

using NQZMVTQ20::ILogger;
using testing::HasSubstr;

Finding Judge(const std::string& text, const Circumstances& circumstances = {}) {
  return JudgeRecord(ILogger::kStatus, text, circumstances);
}

struct Case {
  const char* record;
  Verdict verdict;
  const char* text;
};

class KnownRecord : public testing::TestWithParam<Case> {};

TEST_P(KnownRecord, IsJudged) {
  const Finding finding = Judge(GetParam().record, {true, "the reason"});
  EXPECT_EQ(finding.verdict, GetParam().verdict);
  EXPECT_THAT(finding.text, HasSubstr(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Troubles, KnownRecord,
    testing::Values(
        Case{"Could not open PCI devices file.", Verdict::kTrouble,
             "/proc/bus/pci/devices, could not be opened"},
        Case{"PCI description spawn encountered an error in lspci: not found", Verdict::kTrouble,
             "lspci gave no descriptions: not found"},
        Case{"PCI description buffer is empty", Verdict::kTrouble, "it printed nothing"},
        Case{"Could not open PCI file./proc/bus/pci/03/1f.2", Verdict::kTrouble,
             "/proc/bus/pci/03/1f.2 could not be opened; this function is"},
        Case{"Could not read PCI file /proc/bus/pci/03/1f.2", Verdict::kTrouble,
             "/proc/bus/pci/03/1f.2 could not be read; this function is"},
        Case{"Configuration vendor id 1 and devices file vendor id 2 did not match.",
             Verdict::kTrouble,
             "Configuration vendor id 1 and devices file vendor id 2 did not match. This function"},
        Case{"Configuration device id 1 and devices file device id 2 did not match.",
             Verdict::kTrouble, "Configuration device id 1 and"},
        Case{"PCIInfo plugin threw unknown exception", Verdict::kClassLost,
             "the class could not be collected: the reason"},
        Case{"PciDevInfo encountered an error generating CIM instances for X Error Code: no key",
             Verdict::kTrouble, "X Error Code: no key"},
        Case{"PCI Slot ID 3 not found", Verdict::kTrouble, "PCI Slot ID 3 not found"},
        Case{"SMBIOS library could not load. Error 2", Verdict::kNotice,
             "this machine has no SMBIOS tables"},
        Case{"Unable to open SMBIOS library error: 2", Verdict::kNotice,
             "this machine has no SMBIOS tables"},
        Case{"SMBIOS library could not load. Error 4", Verdict::kTrouble, "run as root"},
        Case{"Unable to open SMBIOS library error: 4", Verdict::kTrouble, "run as root"},
        Case{"SMBIOS library could not load. Error 6", Verdict::kTrouble,
             "damaged, so no slots are known: the reason"},
        Case{"SMBIOS library could not load. Error 3", Verdict::kTrouble,
             "could not be read (status 3), so no slots are known: the reason"},
        Case{"Return from smBiosGetFirst: Error 2", Verdict::kNotice, "hold no slot records"},
        Case{"Return from smBiosGetFirst: 2", Verdict::kNotice, "hold no slot records"},
        Case{"SMBIOS tables not loaded: status 2", Verdict::kNotice,
             "no SMBIOS tables, so only the slots that the kernel shows are known; "},
        Case{"SMBIOS tables not loaded: status 4", Verdict::kTrouble,
             "so only the slots that the kernel shows are known; run as root"},
        Case{"SMBIOS slot records not read: status 2", Verdict::kNotice,
             "hold no slot records, so only the slots that the kernel shows are known; "},
        Case{"The kernel shows no PCI functions.", Verdict::kNotice,
             "this machine shows no PCI bus (/sys/bus/pci/devices"},
        Case{"Return from smBiosGetFirst: Error 5", Verdict::kTrouble, "too large"},
        Case{"Return from smBiosGetFirst: 4", Verdict::kTrouble, "status 4"},
        Case{"Return from smBiosGetFirst: Error 22", Verdict::kTrouble, "status 22"},
        Case{"SMBIOS library could not load. Error 2x", Verdict::kTrouble, "status 2x"}));

TEST(Troubles, ProgressLinesAndOldKernelFilesMeanNothing) {
  for (const char* text :
       {"Exiting correlateDeviceAndSlot", "Could not open PCI description file."}) {
    const Finding finding = JudgeRecord(ILogger::kError, text, {});
    EXPECT_EQ(finding.verdict, Verdict::kNothing) << text;
    EXPECT_EQ(finding.text, "");
  }
}

TEST(Troubles, ACaptureHasItsOwnWording) {
  const Circumstances capture{false, "", true};
  const Finding bus = Judge("Could not open PCI devices file.", capture);
  EXPECT_EQ(bus.verdict, Verdict::kNotice);
  EXPECT_THAT(bus.text, HasSubstr("this capture holds no /proc/bus/pci"));
  EXPECT_THAT(Judge("The kernel shows no PCI functions.", capture).text,
              HasSubstr("this capture holds no /sys/bus/pci/devices"));
  EXPECT_THAT(Judge("SMBIOS tables not loaded: status 2", capture).text,
              HasSubstr("this capture holds no SMBIOS tables, so only the slots"));
  const Finding tables = Judge("SMBIOS library could not load. Error 2", capture);
  EXPECT_EQ(tables.verdict, Verdict::kNotice);
  EXPECT_THAT(tables.text, HasSubstr("this capture holds no SMBIOS tables"));
  EXPECT_THAT(Judge("Return from smBiosGetFirst: 2", capture).text,
              HasSubstr("this machine's SMBIOS tables hold no slot records"));
}

TEST(Troubles, ACaptureThatTellsOfNoTablesGetsNoAdvice) {
  Circumstances capture{false, "", true};
  EXPECT_THAT(Judge("SMBIOS library could not load. Error 2", capture).text,
              HasSubstr("only root"));
  capture.showedNoTables = true;
  EXPECT_EQ(Judge("SMBIOS library could not load. Error 2", capture).text,
            "the captured machine shows no SMBIOS tables, so no slots are known");
}

TEST(Troubles, AMachineWithoutAPciBusHasNoTroubleWithItsDeviceList) {
  const Finding finding = Judge("Could not open PCI devices file.", {false, ""});
  EXPECT_EQ(finding.verdict, Verdict::kNotice);
  EXPECT_THAT(finding.text, HasSubstr("shows no PCI bus"));
}

TEST(Troubles, WithoutAPciBusAFailureOfLspciIsANotice) {
  const std::string thrown = "PCIInfo plugin threw unknown exception";
  EXPECT_EQ(Judge(thrown, {false, "lspci -vvv: exit status 1"}).verdict, Verdict::kNotice);
  EXPECT_EQ(Judge(thrown, {false, "something else"}).verdict, Verdict::kClassLost);
  EXPECT_EQ(Judge(thrown, {true, "lspci -vvv: exit status 1"}).verdict, Verdict::kClassLost);
}

TEST(Troubles, WithoutAReasonTheMessageSaysSo) {
  EXPECT_THAT(Judge("PCIInfo plugin threw unknown exception").text,
              HasSubstr("no reason was given"));
}

TEST(Troubles, BracesInRecordsAndReasonsAreOnlyText) {
  EXPECT_THAT(Judge("Could not open PCI file.{why}{}").text, HasSubstr("{why}{}"));
  EXPECT_THAT(Judge("PCIInfo plugin threw unknown exception", {true, "{rest}{"}).text,
              HasSubstr("{rest}{"));
}

TEST(Troubles, AnUnknownRecordIsATroubleWithItsTextWithoutTabs) {
  const Finding finding = Judge("Slot info\t\t\t\t generating. \tError Code: 1");
  EXPECT_EQ(finding.verdict, Verdict::kTrouble);
  EXPECT_EQ(finding.text, "Slot info  generating. Error Code: 1");
}

TEST(Troubles, OnlyErrorsWarningsAndStatusCount) {
  const std::string text = "Could not read PCI file /x";
  EXPECT_EQ(JudgeRecord(ILogger::kError, text, {}).verdict, Verdict::kTrouble);
  EXPECT_EQ(JudgeRecord(ILogger::kWarning, text, {}).verdict, Verdict::kTrouble);
  EXPECT_EQ(JudgeRecord(ILogger::kDebug, text, {}).verdict, Verdict::kNothing);
  EXPECT_EQ(JudgeRecord(ILogger::kVerbose, text, {}).verdict, Verdict::kNothing);
}

}  // namespace
}  // namespace pciinfo
