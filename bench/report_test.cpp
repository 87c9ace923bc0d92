// SPDX-License-Identifier: Apache-2.0
#include "bench/report.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/plot.h"

namespace bench {
namespace {

Results Made() {
  Results results;
  for (const unsigned functions : {64U, 4096U}) {
    results[functions] = {{"lspci wall", {0.2, 0.1, 0.3}},
                          {"lspci cpu", {0.2, 0.1, 0.3}},
                          {"lspci peak", {1 << 20}},
                          {"lspci output", {0}},
                          {"list wall", {0.11, 0.24, 0.4}},
                          {"list cpu", {0.1}},
                          {"list peak", {0}},
                          {"list output", {0}},
                          {"list/lspci wall", {1.0, 1.2, 1.5}}};
  }
  return results;
}

TEST(Report, TellsLeastAndMedianAndWhetherTheTargetIsReached) {
  const std::string tables = MakeTables(Made(), "Measured.");
  EXPECT_NE(tables.find("| `lspci` | 100 | 200 | 100 | 200 | 1.0 | 0.0 |"), std::string::npos);
  EXPECT_NE(tables.find("| at most 1.5 | 1.10 | 1.20 | yes |"), std::string::npos);
}

TEST(Report, AMissedMedianIsNotReached) {
  Results results = Made();
  results[64]["list/lspci wall"] = {1.5, 1.7, 1.7};
  results[4096]["list/lspci wall"] = {1.6, 1.6, 1.6};
  results[4096]["list wall"] = {0.16};
  const std::string tables = MakeTables(results, "Measured.");
  EXPECT_NE(tables.find("| at most 1.6 | 1.10 | 1.70 | at best |"), std::string::npos);
  EXPECT_NE(tables.find("| at most 1.5 | 1.60 | 1.60 | no |"), std::string::npos);
}

TEST(Report, SomeTargetsAreForMachinesOfEverySize) {
  Results results = Made();
  for (auto& [functions, measures] : results) {
    for (const std::string program : {"places", "lspci -D"}) {
      for (const char* what : {" wall", " cpu", " peak", " output"})
        measures[program + what] = {0.2};
    }
    measures["places wall"] = {0.1};
    measures["places/lspci wall"] = {functions == 64 ? 0.7 : 0.5};
  }
  const std::string tables = MakeTables(results, "Measured.");
  EXPECT_NE(tables.find(
                "| 64 | functions with their slots: wall time, in that of `lspci -D` | at most 0.6 "
                "| 0.50 | 0.70 | at best |"),
            std::string::npos);
  EXPECT_NE(
      tables.find(
          "| 4096 | functions with their slots: wall time, in that of `lspci -D` | at most 0.6 "
          "| 0.50 | 0.50 | yes |"),
      std::string::npos);
}

TEST(Report, TellsWhetherTheViewsReachTheirTargets) {
  Results results = Made();
  for (auto& [functions, measures] : results) {
    for (const std::string program : {"devices", "lspci beside views", "lspci -D beside views"}) {
      for (const char* what : {" wall", " cpu", " peak", " output"})
        measures[program + what] = {0.2};
    }
    measures["devices/lspci wall"] = {0.9};
    measures["devices/lspci -D wall"] = {0.7};
  }
  const std::string tables = MakeTables(results, "Measured.");
  EXPECT_NE(
      tables.find(
          "| 64 | `devices`: wall time, in that of `lspci` | at most 1 | 1.00 | 0.90 | yes |"),
      std::string::npos);
  EXPECT_NE(tables.find("| 4096 | `devices`: wall time, in that of `lspci -D` | at most 0.6 | 1.00 "
                        "| 0.70 | no |"),
            std::string::npos);
  EXPECT_NE(tables.find("| **`pciinfo devices`** | 200 |"), std::string::npos);
}

TEST(Report, ReplacesOnlyWhatStandsBetweenTheMarkers) {
  char name[] = "/tmp/pciinfo-report-XXXXXX";
  close(mkstemp(name));
  std::ofstream(name) << "before\n<!-- bench/run writes this -->\nold\n<!-- end -->\nafter\n";
  ReplaceBetweenMarkers(name, "new\n");
  std::ifstream file(name);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
            "before\n<!-- bench/run writes this -->\n\nnew\n\n<!-- end -->\nafter\n");
  std::ofstream(name) << "no markers\n";
  EXPECT_THROW(ReplaceBetweenMarkers(name, "new"), std::runtime_error);
  unlink(name);
}

TEST(Plot, HasALineForEachProgramThatWasMeasured) {
  const std::string svg = MakePlot(Made());
  EXPECT_NE(svg.find(">lspci</text>"), std::string::npos);
  EXPECT_EQ(svg.find(">lshw"), std::string::npos);
  EXPECT_TRUE(svg.ends_with("</svg>\n"));
}

}  // namespace
}  // namespace bench
