// SPDX-License-Identifier: Apache-2.0
#include "host/report/page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "host/report/assets.h"
#include "host/report/machines_page.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"
#include "tests/host/unsafe_text.h"
#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string Page(const Overview& overview) {
  OutputToText output;
  WritePage(output.Get(), {overview, {}}, "this machine");
  return output.Text();
}

Overview FixedOverview() {
  return {{}, "server", "", ReadMachine(*MakeTopologyRepository()), {"a file was missing"}};
}

/// A text that would be markup, script and the end of an attribute.
const char* const kHostile = "</script><script>alert(1)</script>\"'><img src=x onerror=alert(2)>&";

Overview HostileOverview() {
  Overview overview = FixedOverview();
  overview.systemName = kHostile;
  overview.notRead = {kHostile};
  for (MachineFunction& function : overview.machine.functions) {
    for (std::string* text :
         {&function.deviceName, &function.vendorName, &function.className, &function.driver,
          &function.placeReason, &function.evidence, &function.certainty, &function.link.speed}) {
      *text = kHostile;
    }
  }
  for (MachineSlot& slot : overview.machine.slots) {
    slot.name = kHostile;
    slot.noPortBecause = kHostile;
    slot.conflicts = {kHostile};
    slot.firmwareAddress = kHostile;
    slot.ports.push_back(kHostile);
  }
  return overview;
}

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(Page, ShowsTheMachine) {
  const std::string page = Page(FixedOverview());
  EXPECT_THAT(page, HasSubstr("<h1>server</h1>"));
  EXPECT_THAT(page, HasSubstr("<tr id=\"s0\"><th scope=\"row\">PCIEX16_1</th>"));
  EXPECT_THAT(page, HasSubstr("<li>a file was missing</li>"));
  EXPECT_EQ(CountOf(page, "<tr id=\"f"), FixedOverview().machine.functions.size());
  EXPECT_THAT(page, HasSubstr("Made by pciinfo " PCIINFO_VERSION " from this machine."));
}

std::string PageWithFindings(std::vector<CheckFinding> findings) {
  OutputToText output;
  WritePage(output.Get(), {FixedOverview(), std::move(findings)}, "this machine");
  return output.Text();
}

TEST(Page, TellsFindingsWithTheirAdvice) {
  const std::string page = PageWithFindings(
      {{"errors-fatal",
        Severity::kError,
        "It has failed.",
        "Replace it.",
        {{"01:00.0", "", "3 of them", "function", "0000:01:00.0", "a card"}, {"Slot 2", "", ""}}}});
  EXPECT_THAT(page, HasSubstr("<li class=\"error\"><strong>error</strong> It has failed."
                              "<div>01:00.0  a card: 3 of them</div><div>Slot 2</div>"
                              "<div>Advice: Replace it.</div></li>"));
  EXPECT_THAT(PageWithFindings({}), HasSubstr("<p>pciinfo check finds nothing.</p>"));
}

TEST(Page, EscapesFindings) {
  const std::string page = PageWithFindings({{"errors-fatal",
                                              Severity::kError,
                                              "It has failed.",
                                              "Replace it.",
                                              {{kHostile, "", kHostile, "slot", "", kHostile}}}});
  EXPECT_EQ(CountOf(page, "<script"), 1U);
  EXPECT_THAT(page, Not(HasSubstr("<img")));
}

TEST(Page, LinksEveryItemOfTheDrawingToARow) {
  const std::string page = Page(FixedOverview());
  const std::regex link("class=\"item\" href=\"#([fs][0-9]+)\"");
  std::size_t count = 0;
  for (std::sregex_iterator match(page.begin(), page.end(), link); match != std::sregex_iterator();
       ++match) {
    EXPECT_THAT(page, HasSubstr("<tr id=\"" + (*match)[1].str() + "\">"));
    ++count;
  }
  EXPECT_GT(count, 4U);
  EXPECT_EQ(count, CountOf(page, "<a "));
}

TEST(Page, AdmitsItsOwnScriptAndStyleOnly) {
  const std::string page = Page(FixedOverview());
  EXPECT_THAT(page, HasSubstr("content=\"default-src &#39;none&#39;; style-src"));
  for (const Asset& asset : {kPageScript, kPageStyle, kDrawingStyle}) {
    EXPECT_EQ(asset.hash.size(), std::string("sha256-").size() + 44);
    EXPECT_THAT(page, HasSubstr(std::string(asset.hash)));
    EXPECT_THAT(page, HasSubstr(">" + std::string(asset.text) + "</"));
  }
  EXPECT_THAT(page, Not(HasSubstr("http:")));
  EXPECT_THAT(page, Not(HasSubstr("https:")));
  EXPECT_THAT(page, Not(HasSubstr(" style=")));
}

TEST(Page, EscapesAllTextsOfTheMachine) {
  const std::string page = Page(HostileOverview());
  EXPECT_EQ(CountOf(page, "<script"), 1U);
  EXPECT_EQ(CountOf(page, "</script"), 1U);
  EXPECT_THAT(page, Not(HasSubstr("<img")));
  EXPECT_THAT(page, HasSubstr("&lt;/script&gt;&lt;script&gt;alert(1)"));
  // The attributes that would be closed by a quote.
  EXPECT_EQ(page.find("\"'><img"), std::string::npos);
}

TEST(Page, HasNoUnsafeCharacters) {
  Overview overview = FixedOverview();
  const std::string text = EveryUnsafeCharacter();
  overview.systemName = text;
  overview.notRead = {text};
  overview.machine.functions[0].deviceName = text;
  overview.machine.slots[0].name = text;
  overview.machine.slots[0].conflicts = {text};
  EXPECT_EQ(FirstUnsafe(Page(overview)), -1);
}

TEST(Page, OfAMachineWithoutAnythingSaysSo) {
  const std::string page = Page({});
  EXPECT_THAT(page, HasSubstr("No slots are known."));
  EXPECT_THAT(page, HasSubstr("Nothing is in doubt."));
  EXPECT_THAT(page, HasSubstr("0 PCI functions"));
  EXPECT_THAT(page, HasSubstr("<h1>This machine</h1>"));
}

TEST(MachinesPage, EscapesDifferences) {
  OutputToText output;
  WriteMachinesPage(output.Get(), {{kHostile, std::nullopt}}, std::string("+ ") + kHostile);
  const std::string page = output.Text();
  EXPECT_EQ(CountOf(page, "<script"), 1U);
  EXPECT_THAT(page, Not(HasSubstr("<img")));
  EXPECT_THAT(page, HasSubstr("<li class=\"added\"><strong>added</strong> &lt;/script&gt;"));
}

TEST(MachinesPage, TellsOnlyTheLinesOfDiff) {
  OutputToText output;
  WriteMachinesPage(output.Get(), {}, "--- a\n+++ b\n~ slot 1\n    now empty\n- slot 2\n");
  EXPECT_THAT(output.Text(),
              HasSubstr("<li class=\"changed\"><strong>changed</strong> slot 1<div>    now empty"
                        "</div></li>\n<li class=\"removed\"><strong>removed</strong> slot 2"));
}

TEST(ReportCommand, WritesAFileForItsOwnerOnly) {
  const vtq::TemporaryDirectory directory;
  const std::string file = directory / "page.html";
  const RunResult result = RunFake("fixed", {"report", file});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.out, "");
  const std::string page = directory.Read("page.html");
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
  EXPECT_EQ(RunFake("fixed", {"report", "-"}).out, page);
  EXPECT_EQ(RunFake("fixed", {"report", file}).status, 0);  // again, over the older one
}

TEST(ReportCommand, DrawsACapture) {
  const std::string capture = EXAMPLES "/server.tar.gz";
  const RunResult result = RunPciinfo({"report", "-", capture});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("server.example.org"));
  EXPECT_THAT(result.out, HasSubstr("from the capture server.tar.gz"));
  EXPECT_EQ(RunPciinfo({"report", "-", "--root", capture}).out, result.out);
  EXPECT_EQ(RunPciinfo({"report", "-", capture, "--root", capture}).status, 2);
}

TEST(ReportCommand, ComparesTwoCaptures) {
  const RunResult result = RunPciinfo(
      {"report", "-", EXAMPLES "/server.tar.gz", EXAMPLES "/server-after-service.tar.gz"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("<h1>2 machines</h1>"));
  EXPECT_THAT(result.out, HasSubstr("What is different"));
  EXPECT_THAT(result.out, HasSubstr("moved from PCIe Slot 3 to PCIe Slot 4</div>"));
  EXPECT_THAT(result.out, HasSubstr("<tr id=\"m0-s0\">"));
  EXPECT_THAT(result.out, HasSubstr("<tr id=\"m1-s0\">"));
  EXPECT_EQ(FirstUnsafe(result.out), -1);
}

TEST(ReportCommand, HasAnIndexOfADirectory) {
  const vtq::TemporaryDirectory directory;
  for (const char* name : {"b.tar.gz", "a.tar.gz", "c.tar.gz"}) {
    std::filesystem::copy(EXAMPLES "/server.tar.gz", directory / name);
  }
  directory.Write("notes.txt", "no capture");
  const RunResult result = RunPciinfo({"report", "-", directory.GetPath()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr("<h1>3 machines</h1>"));
  EXPECT_THAT(result.out, Not(HasSubstr("What is different")));
  EXPECT_LT(result.out.find("the capture a.tar.gz"), result.out.find("the capture b.tar.gz"));
  EXPECT_EQ(CountOf(result.out, "<script"), 1U);
}

TEST(ReportCommand, NamesACaptureThatCannotBeRead) {
  const vtq::TemporaryDirectory directory;
  const std::string damaged = directory.Write("damaged.tar.gz", "nothing");
  const RunResult result = RunPciinfo({"report", "-", damaged, EXAMPLES "/server.tar.gz", damaged});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("damaged.tar.gz"));
  EXPECT_THAT(result.out, HasSubstr("could not be read</th><td><td><td><td>damaged.tar.gz"));
  EXPECT_THAT(result.out, HasSubstr("PCIe Slot 5"));
}

TEST(ReportCommand, RefusesADirectoryWithoutCaptures) {
  const vtq::TemporaryDirectory directory;
  EXPECT_EQ(RunPciinfo({"report", "-", directory.GetPath()}).status, 2);
}

TEST(ReportCommand, LeavesNothingWhenItFails) {
  const vtq::TemporaryDirectory directory;
  EXPECT_EQ(RunPciinfo({"report", directory / "page.html", "/nonexistent"}).status, 1);
  EXPECT_EQ(RunFake("fixed", {"report", directory / "no/page.html"}).status, 1);
  EXPECT_EQ(RunFake("fixed", {"report", directory.GetPath()}).status, 2);
  EXPECT_EQ(RunFake("fixed", {"report", ""}).status, 2);
  EXPECT_EQ(RunFake("fixed", {"report", directory / "page.html", "--in-process"}).status, 2);
  EXPECT_TRUE(directory.Names().empty());
}

TEST(ReportCommand, WritesWhatCouldBeCollected) {
  const vtq::TemporaryDirectory directory;
  const RunResult result = RunHostile("Abort VTQ_PCISlot", {"report", directory / "page.html"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(directory.Read("page.html"), HasSubstr("What could not be read"));
}

}  // namespace
}  // namespace pciinfo
