// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>

#include "tests/machines/collection.h"
#include "tests/machines/dmidecode.h"
#include "tests/machines/machine.h"

namespace {

using nlohmann::json;

// Offsets in a System Slots structure (DSP0134 7.10).
constexpr std::size_t kLength = 0x01;
constexpr std::size_t kDesignation = 0x04;
constexpr std::size_t kPeerCount = 0x12;

// A structure counts once for itself and once for each of its peer groups, if it has 1 to 8 of them
// and is longer than 16 bytes. Both bytes are read as signed, so lengths and counts above 127 give
// no peers. A structure of 17 or 18 bytes ends before its peer count; a byte of its strings is read
// instead.
int CountOf(const DecodedSlot& slot) {
  const int peers = slot.SignedByte(kPeerCount);
  return peers >= 1 && peers <= 8 && slot.SignedByte(kLength) > 16 ? 1 + peers : 1;
}

// dmidecode prints a dot for every byte that is not printable ASCII. A JSON text contains such a
// byte unchanged or, in a text that is not UTF-8, as a character of two bytes.
std::string WithDots(const std::string& text, bool wideAreTwoBytes) {
  std::string printed;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (!wideAreTwoBytes && byte >= 0x80 && byte < 0xC0) continue;
    printed += byte < 32 || byte >= 127 ? '.' : c;
  }
  return printed;
}

void ExpectDesignation(const DecodedSlot& slot, const json& properties) {
  if (slot.Byte(kDesignation) == 0) {
    EXPECT_EQ(slot.designation, "Not Specified");
    EXPECT_FALSE(properties.contains("SlotDesignation"));
    EXPECT_FALSE(properties.contains("SlotAllInfo"));
    return;
  }
  const std::string designation = properties.at("SlotDesignation");
  const std::string tag = properties.at("Tag");
  EXPECT_EQ(properties.at("SlotAllInfo"), designation == tag ? tag : designation + "," + tag);
  if (slot.SignedByte(kLength) < 0) {
    // The length is read as signed, so the strings are searched before the structure, where there
    // are only zeros.
    EXPECT_EQ(designation, "(null string)");
  } else if (slot.designation == "<BAD INDEX>") {
    // A missing string is empty if there are other strings.
    const bool hasStrings = slot.bytes.size() > slot.Byte(kLength);
    EXPECT_EQ(designation, hasStrings ? "" : "(null string)");
  } else {
    EXPECT_TRUE(WithDots(designation, true) == slot.designation ||
                WithDots(designation, false) == slot.designation)
        << designation << "\n"
        << slot.designation;
  }
}

void ExpectUsage(const DecodedSlot& slot, const json& properties) {
  // DSP0134 7.10.3
  const std::map<std::string, unsigned> codes = {
      {"Other", 1}, {"Unknown", 2}, {"Available", 3}, {"In Use", 4}, {"Unavailable", 5}};
  const unsigned usage = properties.at("CurrentUsage");
  const auto code = codes.find(slot.usage);
  if (code != codes.end()) {
    EXPECT_EQ(usage, code->second);
  } else {
    EXPECT_EQ(slot.usage, "<OUT OF SPEC>");
    EXPECT_TRUE(usage == 0 || usage > 5) << usage;
  }
}

// dmidecode prints the low byte of the ID, and only for slot types for which it has a meaning.
void ExpectId(const DecodedSlot& slot, const json& properties) {
  if (slot.id.empty() || slot.id.find_first_not_of("0123456789") != std::string::npos) return;
  EXPECT_EQ(properties.at("Number").get<unsigned>() & 0xFF, std::stoul(slot.id));
}

bool Says(const DecodedSlot& slot, const std::string& characteristic) {
  const std::vector<std::string>& all = slot.characteristics;
  return std::find(all.begin(), all.end(), characteristic) != all.end();
}

// A structure may set bits of its characteristics and also the bit "unknown"; then dmidecode does
// not print them.
void ExpectCharacteristics(const DecodedSlot& slot, const json& properties) {
  if (Says(slot, "Unknown")) return;
  EXPECT_EQ(properties.at("Shared"), Says(slot, "Opening is shared"));
  EXPECT_EQ(properties.at("PMESignal"), Says(slot, "PME signal is supported"));
  EXPECT_EQ(properties.at("SupportsHotPlug"), Says(slot, "Hot-plug devices are supported"));
  std::vector<unsigned> voltages;
  if (Says(slot, "5.0 V is provided")) voltages.push_back(3);
  if (Says(slot, "3.3 V is provided")) voltages.push_back(2);
  if (voltages.empty()) voltages.push_back(0);
  EXPECT_EQ(properties.at("VccMixedVoltageSupport"), json(voltages));
}

class SlotsTest : public MachineTest {
 protected:
  void SetUp() override {
    MachineTest::SetUp();
    collected_ = Collect(GetParam(), {"QZMSG_SystemSlot"}).instances;
    for (const DecodedSlot& slot : DecodeSlots()) {
      decoded_.insert(decoded_.end(), static_cast<std::size_t>(CountOf(slot)), slot);
    }
  }

  // Calls check(slot of dmidecode, properties) for each slot.
  template <class Check>
  void ForEach(const Check& check) const {
    ASSERT_EQ(collected_.size(), decoded_.size());
    for (std::size_t i = 0; i < decoded_.size(); ++i) {
      SCOPED_TRACE(collected_[i].at("path"));
      check(decoded_[i], collected_[i].at("properties"));
    }
  }

  std::vector<json> collected_;
  std::vector<DecodedSlot> decoded_;
};
INSTANTIATE_TEST_SUITE_P(Machines, SlotsTest, testing::ValuesIn(AllMachines()), TestNameOf);

TEST_P(SlotsTest, AreTheStructuresWithTheirPeersInTableOrder) {
  std::size_t number = 0;
  ForEach([&number](const DecodedSlot& slot, const json& properties) {
    EXPECT_EQ(properties.at("Tag"), "Tag " + std::to_string(++number));
    // dmidecode prints the number of peers if the structure is long enough to contain it.
    if (slot.peers.empty()) return;
    EXPECT_EQ(std::stoul(slot.peers), slot.Byte(kPeerCount));
  });
}

TEST_P(SlotsTest, AreDesignatedAsByDmidecode) { ForEach(ExpectDesignation); }

TEST_P(SlotsTest, HaveTheUsageThatDmidecodePrints) { ForEach(ExpectUsage); }

TEST_P(SlotsTest, HaveTheIdThatDmidecodePrints) { ForEach(ExpectId); }

TEST_P(SlotsTest, HaveTheCharacteristicsThatDmidecodePrints) { ForEach(ExpectCharacteristics); }

}  // namespace
