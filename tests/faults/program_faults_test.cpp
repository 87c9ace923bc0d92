// SPDX-License-Identifier: Apache-2.0

// The whole program, with faults in all functions that it calls: it reports what is missing and
// prints the rest.
#include <gtest/gtest.h>

#include <iostream>
#include <nlohmann/json.hpp>

#include "tests/faults/apart.h"
#include "tests/faults/fallbacks.h"
#include "tests/faults/program.h"

namespace {

using nlohmann::json;

using Words = std::vector<std::string>;

const Words kInstances{"instances", "--format", "json"};
const Words kSlots{"slots"};
const Words kDevices{"devices"};

struct Run {
  Call call;
  const Words* words;
  Tools tools = Tools::kRecorded;
  unsigned step = 1;  ///< of how many calls one fails
  bool lasting = false;
};

// Returns the printed instances of all classes; nothing for a text that is not JSON.
Answers AnswersIn(const std::string& out) {
  Answers answers;
  for (const std::string& className : Classes()) answers.push_back({className, {}, {}, {}});
  const json printed = json::parse(out, nullptr, false);
  if (printed.is_discarded()) return {};
  for (const json& instance : printed["instances"]) {
    for (Answer& answer : answers) {
      if (instance["class"] == answer.className) answer.instances.push_back(instance.dump());
    }
  }
  return answers;
}

class ProgramFaults : public testing::TestWithParam<Run> {
 protected:
  void SetUp() override {
    BecomeMediumMachine();
    Use(GetParam().tools);
    whole_ = RunProgram(*GetParam().words, {GetParam().call, 0});
  }

  std::string Judge(const Fault& fault, const ProgramEnd& end) const {
    if (end.err.find("died by signal") != std::string::npos && !MayDie(fault)) return "it crashed";
    if (end.status == 0) return JudgeWhole(end);
    if (end.status != 1) return "its exit status is " + std::to_string(end.status);
    if (end.err.find("pciinfo: ") == std::string::npos) return "it does not say what failed";
    return IsOfInstances() ? JudgeInstances(fault, end) : "";
  }

 private:
  // Programs that are killed, and the scan that does not end, which is killed after its time limit.
  static bool MayDie(const Fault& fault) {
    return fault.call == Call::kDie ||
           (fault.call == Call::kRead && PlaceOfStrike() == "/proc/bus/pci/devices");
  }

  std::string JudgeWhole(const ProgramEnd& end) const {
    return end.out == whole_.out || (IsOfInstances() && IsInTheLogOnly(PlaceOfStrike()))
               ? ""
               : "it does not say that something is missing";
  }

  static bool IsOfInstances() { return GetParam().words == &kInstances; }

  // The plug-in of the inventory reports a slot that it cannot read only in a debug record, and
  // never reports /proc/pci.
  static bool IsInTheLogOnly(const std::string& place) {
    return place == "/proc/pci" || place.starts_with("/sys/bus/pci/devices/");
  }

  std::string JudgeInstances(const Fault& fault, const ProgramEnd& end) const {
    if (end.out.empty()) return "";
    const Answers now = AnswersIn(end.out);
    if (now.empty()) return fault.call == Call::kAllocate ? "" : "it prints no JSON";
    const Answers expected = AnswersIn(whole_.out);
    const std::vector<Change> changes = ChangesIn(now, expected);
    return JudgeFallbacks({fault, Classes().front(), PlaceOfStrike(), now, expected, changes});
  }

 protected:
  ProgramEnd whole_;
};

TEST_P(ProgramFaults, EachIsToldAndLeavesTheRest) {
  ASSERT_EQ(whole_.status, 0) << whole_.err;
  unsigned faults = 0;
  unsigned wrong = 0;
  for (unsigned number = 1; wrong < 10; number = NextToFail(number)) {
    const Fault fault{GetParam().call, GetParam().step * (number - 1) + 1, GetParam().lasting};
    ProgramEnd end;
    const EndApart apart = RunApart([&](std::string& failure) {
      end = RunProgram(*GetParam().words, fault);
      failure = HasStruck() ? Judge(fault, end) : "";
      if (!failure.empty()) failure += "; it prints: " + end.err;
      return 0;
    });
    if (!HasStruck()) break;
    ++faults;
    if (apart.failure.empty()) continue;
    ++wrong;
    ADD_FAILURE() << TextOf(fault) << " (" << PlaceOfStrike() << "): " << apart.failure;
  }
  EXPECT_GT(faults, 0U);
  std::cout << faults << " faults" << std::endl;  // else forked tests would print it again
}

std::string TestName(const testing::TestParamInfo<Run>& info) {
  const Run& run = info.param;
  std::string name = run.words->empty() ? "inventory" : run.words->front();
  name += std::string("_") + NameOf(run.call) + (run.lasting ? "_from_then_on" : "");
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
}

constexpr unsigned kStep = 97;

INSTANTIATE_TEST_SUITE_P(
    Calls, ProgramFaults,
    testing::Values(
        Run{Call::kOpen, &kInstances}, Run{Call::kRead, &kInstances},
        Run{Call::kShortRead, &kInstances}, Run{Call::kClose, &kInstances},
        Run{Call::kPipe, &kInstances, Tools::kLive}, Run{Call::kStart, &kInstances, Tools::kLive},
        Run{Call::kDie, &kInstances, Tools::kLive}, Run{Call::kQuit, &kInstances, Tools::kLive},
        Run{Call::kAllocate, &kInstances, Tools::kRecorded, kStep},
        Run{Call::kAllocate, &kInstances, Tools::kRecorded, kStep, true}, Run{Call::kOpen, &kSlots},
        Run{Call::kRead, &kSlots}, Run{Call::kOpen, &kDevices}),
    TestName);

}  // namespace
