// SPDX-License-Identifier: Apache-2.0
#include "host/metrics/metrics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "host/metrics/metric_writer.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

namespace pciinfo {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

std::string FamilyText(const MetricFamily& family) {
  OutputToText output;
  WriteMetricFamily(output.Get(), family);
  return output.Text();
}

std::string MetricsText(bool hasTroubles = false) {
  OutputToText output;
  MetricsInput input;
  input.facts = ReadMachineFacts(*MakeTopologyRepository());
  input.identity.product = "To Be Filled By O.E.M.";
  input.identity.maker = "Example";
  input.hasTroubles = hasTroubles;
  input.seconds = 0.25;
  WriteMetrics(output.Get(), input);
  return output.Text();
}

TEST(MetricWriter, WritesSamplesWithLabels) {
  MetricFamily family{"pciinfo_thing", "What it is."};
  family.Add({{"slot", "Slot 1"}, {"driver", ""}}, 3);
  family.Add({}, 0.5);
  EXPECT_EQ(FamilyText(family),
            "# TYPE pciinfo_thing gauge\n# HELP pciinfo_thing What it is.\n"
            "pciinfo_thing{slot=\"Slot 1\"} 3\npciinfo_thing 0.5\n");
}

TEST(MetricWriter, WritesNothingWithoutSamples) {
  EXPECT_EQ(FamilyText({"pciinfo_thing", "What it is."}), "");
}

TEST(MetricWriter, EscapesWhatTheFormatNeedsAndTerminalsFear) {
  MetricFamily family{"pciinfo_thing", "What it is."};
  family.Add({{"slot", "a\"b\\c\nd\x1b[2J"}}, 1);
  EXPECT_THAT(FamilyText(family), HasSubstr("{slot=\"a\\\"b\\\\c?d?[2J\"} 1\n"));
}

TEST(MetricWriter, WritesLargeNumbersExactly) {
  MetricFamily family{"pciinfo_thing", "What it is."};
  family.Add({}, 16e9);
  family.Add({}, 9007199254740992.0);
  EXPECT_THAT(FamilyText(family), HasSubstr("pciinfo_thing 16000000000\n"));
  EXPECT_THAT(FamilyText(family), HasSubstr("pciinfo_thing 9007199254740992\n"));
}

TEST(Metrics, TellOfTheCollection) {
  EXPECT_THAT(MetricsText(), HasSubstr("pciinfo_build_info{version=\"" PCIINFO_VERSION "\"} 1\n"));
  EXPECT_THAT(MetricsText(), HasSubstr("\npciinfo_collection_success 1\n"));
  EXPECT_THAT(MetricsText(true), HasSubstr("\npciinfo_collection_success 0\n"));
  EXPECT_THAT(MetricsText(), HasSubstr("\npciinfo_collection_duration_seconds 0.25\n"));
  EXPECT_THAT(MetricsText(), HasSubstr("\npciinfo_machine_info{vendor=\"Example\"} 1\n"));
  EXPECT_THAT(MetricsText(), EndsWith("# EOF\n"));
}

TEST(Metrics, TellStatesOfSlots) {
  EXPECT_THAT(MetricsText(), HasSubstr("\npciinfo_slot_occupied{slot=\"PCIEX16_1\"} 1\n"));
  EXPECT_THAT(MetricsText(), Not(HasSubstr("pciinfo_slot_occupied{slot=\"PCIEX4_1\"}")))
      << "which shares its port";
  EXPECT_THAT(MetricsText(), HasSubstr("\npciinfo_slot_conflicts{slot=\"M2_1\"} 1\n"));
}

TEST(Metrics, TellOfCardsAndLinks) {
  const std::string card = "{address=\"0000:01:00.0\",slot=\"PCIEX16_1\"";
  for (const char* name :
       {"pciinfo_function_info", "pciinfo_link_width_lanes", "pciinfo_link_possible_width_lanes"}) {
    EXPECT_THAT(MetricsText(), HasSubstr(name + card));
  }
  EXPECT_THAT(MetricsText(), HasSubstr("8000000000\n"));
}

TEST(Metrics, LeaveOutVirtualFunctions) {
  EXPECT_THAT(MetricsText(), HasSubstr("0000:02:00.0"));
  for (const MachineFunction& function : ReadMachine(*MakeTopologyRepository()).functions) {
    if (!function.physicalFunction) continue;
    EXPECT_THAT(MetricsText(), Not(HasSubstr(FormatAddress(function.address))));
  }
}

TEST(Metrics, HaveOneFamilyForEachNameAndOneSampleForEachLabels) {
  const std::string text = MetricsText();
  std::set<std::string> seen;
  for (const std::string& line : LinesOf(text)) {
    const std::string key = line.starts_with("# TYPE") ? line : line.substr(0, line.rfind(' '));
    EXPECT_TRUE(seen.insert(key).second) << line;
  }
}

}  // namespace
}  // namespace pciinfo
