// SPDX-License-Identifier: Apache-2.0

// Every operation of the framework that a collection calls fails once, one after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>

#include "tests/faults/fallbacks.h"

namespace {

constexpr const char* kThrown = "2 PCIInfo plugin threw unknown exception";
constexpr const char* kLeft = "! made to fail";
constexpr const char* kNoneMade =
    "3 TPciInfoCallbacks::retrieveDataForClass - No instances of the requested class were created.";

const std::string kGeneratingSlot =
    "2 PCI Slot info encountered an error\t\t\t\t\t\t\t\t generating CIM instances. Error Code: "
    "made to fail";
const std::string kGeneratingBoard =
    "2 Logical System Board info encountered an error\t\t\t\t\t\t\t\t\tgenerating CIM instances. "
    "Error Code: made to fail";
const std::string kEnumerating =
    "2 PCI Device-slot association encountered an error\t\t\t\t\t\t\tenumerating CIM instances "
    "for ";

std::string Generating(const std::string& className) {
  if (className == "QZMSG_SystemSlot") return kGeneratingSlot;
  if (className == "QZMSG_SystemBoard" || className == "QZMSG_OnBoardDevice") {
    return kGeneratingBoard;
  }
  return "2 PciDevInfo encountered an error generating CIM instances for " + className +
         " Error Code: made to fail";
}

std::string Enumerating(const std::string& className) {
  return kEnumerating +
         (className == "QZMSG_DeviceInSlot" ? "QZMSG_PCIDevice OR QZMSG_SystemSlot"
                                            : "QZMSG_SystemBoard OR QZMSG_PCIDevice") +
         " Error Code: made to fail";
}

using Names = std::set<std::string>;
using Records = std::vector<std::string>;

/// The log record that a failing call in a class must cause, and the changes that are allowed.
struct Outcome {
  Records records;  ///< all that the log says and would not say without the fault
  Names changes;
};

const Outcome kNothingMade{{kThrown, kNoneMade}, {"missing"}};
const Names kSystemKeys{"SystemCreationClassName", "SystemName"};

bool IsAssociation(const std::string& className) {
  return className == "QZMSG_DeviceInSlot" || className == "QZMSG_OnBoardDevice";
}

std::size_t CountOf(const char* what, const std::vector<Change>& changes) {
  return static_cast<std::size_t>(std::count_if(
      changes.begin(), changes.end(), [&](const Change& change) { return change.what == what; }));
}

const Answer& AnswerOf(const std::string& className, const Answers& answers) {
  return *std::find_if(answers.begin(), answers.end(),
                       [&](const Answer& answer) { return answer.className == className; });
}

Records operator+(Records left, const Records& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

std::size_t CountFunctions(const Strike& strike) {
  return AnswerOf("QZMSG_PCIDevice", strike.expected).instances.size() +
         AnswerOf("QZMSG_PCIBridge", strike.expected).instances.size();
}

// A record for each function, where the choice of the source of slots comes to none.
Records NoSlotsAtAll(const Strike& strike) {
  return Records(CountFunctions(strike), "3 SMBIOS version not support.");
}

// A record for each function whose slot is not found any more.
Records SlotsNotFound(const Strike& strike) {
  return Records(CountOf("UINumber", strike.changes), "0 Exiting correlateDeviceAndSlot");
}

// The records of a lookup in /proc/pci for each function that had its description from "lspci".
Records LookupsInFile(const Strike& strike) {
  const std::string entering = "3 Entering TPciDevInfo::GetDeviceDescription routine";
  const Records& log = AnswerOf("QZMSG_PCIDevice", strike.expected).log;
  const std::size_t before = static_cast<std::size_t>(std::count(log.begin(), log.end(), entering));
  const std::size_t lookups = CountFunctions(strike) - before;
  return Records(lookups, entering) +
         Records(lookups, "3 Exiting TPciDevInfo::GetDeviceDescription routine");
}

Outcome OfInstance(const Strike& strike) { return {{Generating(strike.className)}, {"missing"}}; }

// The plug-in asks for the name, then the collector does, then each instance before its commit.
Outcome OfName(const Strike& strike) {
  if (strike.fault.number == 1) return {{kLeft}, {"missing"}};
  return strike.fault.number == 2 ? kNothingMade : OfInstance(strike);
}

Outcome OfLookup(const Strike& strike) { return {{Enumerating(strike.className)}, {"missing"}}; }

Outcome OfSchema(const Strike&) { return {{}, kSystemKeys}; }

Outcome OfNamespace(const Strike& strike) {
  return IsAssociation(strike.className) ? OfLookup(strike) : OfSchema(strike);
}

// A function whose slot number cannot be read is on the board.
Outcome OfGet(const Strike& strike) {
  if (strike.className != "QZMSG_OnBoardDevice") return OfLookup(strike);
  return {Records(CountOf("extra", strike.OwnChanges()),
                  "4 TPci::generateCIMInstance - Generating CIM instance for class "
                  "QZMSG_OnBoardDevice."),
          {"extra"}};
}

Outcome OfReference(const Strike& strike) {
  return strike.className == "QZMSG_OnBoardDevice" ? kNothingMade : OfLookup(strike);
}

// SMBIOS is opened for slots, and by the first request for a PCI class twice: for the choice of the
// source of slots, and for their places.
bool IsForTheChoice(const Strike& strike) { return strike.fault.number == 1; }

Outcome OfLoad(const Strike& strike) {
  if (strike.className == "QZMSG_SystemSlot") {
    return {{"2 SMBIOS library could not load. Error 3"}, {"missing"}};
  }
  return {Records{"0 Unable to open SMBIOS library error: 3"} +
              (IsForTheChoice(strike) ? NoSlotsAtAll(strike) : SlotsNotFound(strike)),
          {"UINumber"}};
}

Outcome OfVersion(const Strike& strike) {
  return {Records{"3 Exiting GetSlotIDRetrievalType, not support SlotID Retrieval Feature"} +
              NoSlotsAtAll(strike),
          {"UINumber"}};
}

Outcome OfFirst(const Strike& strike) {
  if (strike.className == "QZMSG_SystemSlot") {
    return {{"2 Return from smBiosGetFirst: Error 3"}, {"missing"}};
  }
  if (IsForTheChoice(strike)) return {NoSlotsAtAll(strike), {"UINumber"}};
  return {Records{"0 Return from smBiosGetFirst: 3"} + SlotsNotFound(strike), {"UINumber"}};
}

// To the plug-in a walk that fails has ended.
Outcome OfNext(const Strike& strike) {
  if (strike.className == "QZMSG_SystemSlot") return {{}, {"missing"}};
  return {SlotsNotFound(strike), {"UINumber"}};
}

// The choice is made when the tables are closed behind it.
Outcome OfClose(const Strike& strike) {
  if (strike.className == "QZMSG_SystemSlot") return {{"2 Return from smBiosClose: Error 3"}, {}};
  if (IsForTheChoice(strike)) return {};
  return {{"0 Return from smBiosClose: 3"}, {}};
}

Outcome OfCommand(const Strike& strike) {
  if (strike.className == "QZMSG_PCIRawData") return kNothingMade;
  return {Records{"2 PCI description spawn encountered an error in lspci: made to fail"} +
              LookupsInFile(strike),
          {"Description"}};
}

struct Case {
  Call call;
  Outcome (*outcome)(const Strike& strike);
  std::size_t mostMissing;  ///< of the class's own instances
};

constexpr std::size_t kAll = 1000;

constexpr Case kCases[] = {
    {Call::kName, OfName, kAll},           {Call::kNamespace, OfNamespace, kAll},
    {Call::kLookUpClass, OfLookup, kAll},  {Call::kCreate, OfInstance, 1},
    {Call::kSet, OfInstance, 1},           {Call::kCommit, OfInstance, 1},
    {Call::kEnumerate, OfLookup, kAll},    {Call::kGet, OfGet, kAll},
    {Call::kReference, OfReference, kAll}, {Call::kSchema, OfSchema, 0},
    {Call::kSmBiosLoad, OfLoad, kAll},     {Call::kSmBiosVersion, OfVersion, 0},
    {Call::kSmBiosFirst, OfFirst, kAll},   {Call::kSmBiosNext, OfNext, kAll},
    {Call::kSmBiosClose, OfClose, 0},      {Call::kCommand, OfCommand, kAll},
};

Records Sorted(Records records) {
  std::sort(records.begin(), records.end());
  return records;
}

std::string Listed(const std::string& what, const Records& records) {
  std::string text = what;
  for (const std::string& record : records) text += "\n  " + record;
  return text + "\n";
}

// The log says what is foreseen, all of it and nothing else.
std::string JudgeNews(Records foreseen, const Strike& strike) {
  const bool hasEnd = std::any_of(foreseen.begin(), foreseen.end(), [](const std::string& record) {
    return record == kLeft || record == kNoneMade;
  });
  const bool isEmpty = AnswerOf(strike.className, strike.now).instances.empty();
  if (isEmpty && !hasEnd) foreseen.emplace_back(kNoneMade);
  const Records news = strike.News();
  if (Sorted(news) == Sorted(foreseen)) return "";
  return Listed("the log says", news) + Listed("in place of", foreseen);
}

// Where nothing changed, the log still says all that it said.
std::string JudgeGone(const Strike& strike) {
  const Records gone = strike.Gone();
  return strike.changes.empty() && !gone.empty() ? Listed("the log does not say", gone) : "";
}

std::string JudgeChanges(const Case& tried, const Names& foreseen, const Strike& strike) {
  const std::vector<Change> own = strike.OwnChanges();
  std::string wrong;
  for (const Change& change : own) {
    if (foreseen.count(change.what) == 0) wrong += change.what + " is not foreseen\n";
  }
  if (CountOf("missing", own) > tried.mostMissing) wrong += "too much is missing\n";
  return wrong;
}

std::string JudgeCase(const Case& tried, const Strike& strike) {
  const Outcome outcome = tried.outcome(strike);
  return JudgeFallbacks(strike) + JudgeChanges(tried, outcome.changes, strike) +
         JudgeNews(outcome.records, strike) + JudgeGone(strike);
}

class FrameworkFaults : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override { BecomeMediumMachine(); }
};

TEST_P(FrameworkFaults, EachHasTheOutcomeThatIsForeseen) {
  Round round{GetParam().call};
  round.repository = Repository::kWithFaults;
  const unsigned faults =
      RunRounds(round, [](const Strike& strike) { return JudgeCase(GetParam(), strike); });
  EXPECT_GT(faults, 0U);
  std::cout << faults << " faults\n";
}

std::string TestName(const testing::TestParamInfo<Case>& info) {
  std::string name = NameOf(info.param.call);
  for (char& c : name) c = c == ' ' ? '_' : c;
  return name;
}

INSTANTIATE_TEST_SUITE_P(Operations, FrameworkFaults, testing::ValuesIn(kCases), TestName);

}  // namespace
