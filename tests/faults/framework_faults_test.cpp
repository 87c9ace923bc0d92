// Every operation of the framework that a collection calls fails once, one after the other.
#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>

#include "tests/faults/fallbacks.h"

namespace {

constexpr const char* kThrown = "2 PCIInfo plugin threw unknown exception";
constexpr const char* kLeft = "! made to fail";
constexpr const char* kSilent = "";

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

/// The log record that a failing call in a class must cause, and the changes that are allowed.
struct Outcome {
  std::string record;  ///< kSilent: none
  Names changes;
};

using Outcomes = std::vector<Outcome>;

const Outcome kNothingMade{kThrown, {"missing"}};
const Names kSystemKeys{"SystemCreationClassName", "SystemName"};

bool IsAssociation(const std::string& className) {
  return className == "QZMSG_DeviceInSlot" || className == "QZMSG_OnBoardDevice";
}

Outcomes OfInstance(const std::string& className) { return {{Generating(className), {"missing"}}}; }

Outcomes OfName(const std::string& className) {
  return {{kLeft, {"missing"}}, kNothingMade, {Generating(className), {"missing"}}};
}

Outcomes OfNamespace(const std::string& className) {
  if (IsAssociation(className)) return {{Enumerating(className), {"missing"}}};
  return {{kSilent, kSystemKeys}};
}

Outcomes OfLookup(const std::string& className) { return {{Enumerating(className), {"missing"}}}; }

// A function whose slot number cannot be read is on the board.
Outcomes OfGet(const std::string& className) {
  if (className == "QZMSG_OnBoardDevice") return {{kSilent, {"extra"}}};
  return {{Enumerating(className), {"missing"}}};
}

Outcomes OfReference(const std::string& className) {
  if (className == "QZMSG_OnBoardDevice") return {kNothingMade};
  return {{Enumerating(className), {"missing"}}};
}

Outcomes OfSchema(const std::string&) { return {{kSilent, kSystemKeys}}; }

Outcomes OfLoad(const std::string& className) {
  if (className == "QZMSG_SystemSlot") {
    return {{"2 SMBIOS library could not load. Error 3", {"missing"}}};
  }
  return {{"0 Unable to open SMBIOS library error: 3", {"UINumber"}}};
}

Outcomes OfVersion(const std::string&) {
  return {{"3 Exiting GetSlotIDRetrievalType, not support SlotID Retrieval Feature", {"UINumber"}}};
}

Outcomes OfFirst(const std::string& className) {
  if (className == "QZMSG_SystemSlot") {
    return {{"2 Return from smBiosGetFirst: Error 3", {"missing"}}};
  }
  return {{"0 Return from smBiosGetFirst: 3", {"UINumber"}},
          {"3 SMBIOS version not support.", {"UINumber"}}};
}

// For the plug-in, a walk that fails has ended.
Outcomes OfNext(const std::string&) { return {{kSilent, {"missing", "UINumber"}}}; }

Outcomes OfClose(const std::string& className) {
  if (className == "QZMSG_SystemSlot") return {{"2 Return from smBiosClose: Error 3", {}}};
  return {{"0 Return from smBiosClose: 3", {}}, {kSilent, {}}};
}

Outcomes OfCommand(const std::string& className) {
  if (className == "QZMSG_PCIRawData") return {kNothingMade};
  return {{"2 PCI description spawn encountered an error in lspci: made to fail", {"Description"}}};
}

struct Case {
  Call call;
  Outcomes (*outcomes)(const std::string& className);
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

bool Fits(const Outcome& outcome, const std::vector<std::string>& news,
          const std::vector<Change>& changes) {
  const bool isLogged = outcome.record == kSilent ||
                        std::find(news.begin(), news.end(), outcome.record) != news.end();
  return isLogged && std::all_of(changes.begin(), changes.end(), [&](const Change& change) {
           return outcome.changes.count(change.what) != 0;
         });
}

std::string Described(const std::vector<std::string>& news, const std::vector<Change>& changes) {
  std::string text = "no outcome that is foreseen; ";
  for (const Change& change : changes) text += change.what + ", ";
  for (const std::string& record : news) text += "\n  " + record;
  return text + "\n";
}

std::string JudgeCase(const Case& tried, const Strike& strike) {
  const std::vector<Change> own = strike.OwnChanges();
  const std::vector<std::string> news = strike.News();
  const Outcomes outcomes = tried.outcomes(strike.className);
  const bool fits = std::any_of(outcomes.begin(), outcomes.end(),
                                [&](const Outcome& outcome) { return Fits(outcome, news, own); });
  const auto missing = std::count_if(own.begin(), own.end(),
                                     [](const Change& change) { return change.what == "missing"; });
  std::string wrong = JudgeFallbacks(strike);
  if (!fits) wrong += Described(news, own);
  if (static_cast<std::size_t>(missing) > tried.mostMissing) wrong += "too much is missing\n";
  return wrong;
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
