// SPDX-License-Identifier: Apache-2.0

// What the second plug-in decodes of configuration spaces with any capabilities: lists that lead
// in circles, into the header or outside, and spaces that end anywhere. An input is a configuration
// space.
#include <array>
#include <random>
#include <set>

#include "fuzz/fuzz.h"
#include "fuzz/mutate.h"
#include "topology/config_facts.h"
#include "topology/extended_facts.h"
#include "topology/interrupts.h"

namespace {

using fuzz::Require;

using topology::Capability;
using topology::ConfigFacts;
using topology::ConfigSpace;
using topology::ExtendedFacts;

constexpr std::size_t kExtended = 0x100;

void CheckList(const std::vector<Capability>& list, std::size_t first, std::size_t size) {
  std::set<std::uint16_t> seen;
  for (const Capability& capability : list) {
    Require(capability.offset >= first && capability.offset < size,
            "capabilities are in the bytes");
    Require(capability.offset % 4 == 0, "at places that a pointer can name");
    Require(seen.insert(capability.offset).second, "each is met once");
  }
}

void CheckFacts(const ConfigSpace& config) {
  const ConfigFacts facts = topology::DecodeConfig(config);
  Require(facts.capabilitiesKnown == (config.GetSize() >= kExtended), "256 bytes tell them");
  Require(!facts.express || facts.capabilitiesKnown, "without capabilities there is no port type");
  if (!facts.express) return;
  Require(facts.express->HasLink() || facts.express->most == topology::Link(),
          "the root complex has no link");
  Require(!facts.express->slot || facts.express->LeadsToLink(), "only ports lead to slots");
  Require(!facts.express->forwardsRoutingIds || facts.express->LeadsToLink(), "and forward");
}

void CheckInterrupts(const ConfigSpace& config) {
  const topology::Interrupts found = topology::DecodeInterrupts(config);
  Require(found.pin <= 4, "there are four pins");
  for (const auto& messages : {found.msi, found.msix}) {
    Require(!messages || messages->enabled || messages->enabledVectors == 0,
            "vectors are enabled with their kind only");
    Require(!messages || messages->vectors <= 2048, "there are 2048 vectors at most");
  }
  Require((found.GetMode()[0] == '\0') != found.capabilitiesKnown, "the mode is known with them");
}

void CheckExtended(const ConfigSpace& config) {
  const ExtendedFacts facts = topology::DecodeExtended(config);
  Require(facts.resizable.size() <= 6, "there are six regions at most");
  for (const topology::ResizableRegion& region : facts.resizable) {
    for (const std::uint64_t size : region.sizes) {
      Require(size >= 1U << 20 && (size & (size - 1)) == 0, "sizes are powers of two");
    }
    Require(std::is_sorted(region.sizes.begin(), region.sizes.end()), "and ascend");
  }
  Require(!facts.serialNumber || topology::SerialText(*facts.serialNumber).size() == 23,
          "a serial number has eight bytes");
  if (!facts.errors) return;
  const auto names = topology::UncorrectableNames(facts.errors->uncorrectable);
  Require(std::set(names.begin(), names.end()).size() == names.size(),
          "every bit has its own name");
}

// The bytes of the last capability of its kind, if they are all there.
bool IsWholeNumber(const ConfigSpace& config, std::size_t at, std::uint64_t& number) {
  for (std::size_t i = 12; i-- > 4;) {
    const auto byte = config.Byte(at + i);
    if (!byte) return false;
    number = number << 8 | *byte;
  }
  return true;
}

void CheckSerialNumber(const ConfigSpace& config) {
  bool isKnown = false;
  std::uint64_t last = 0;
  for (const Capability& capability : config.GetExtendedCapabilities()) {
    if (capability.id == 3) isKnown = IsWholeNumber(config, capability.offset, last = 0);
  }
  const auto told = topology::DecodeExtended(config).serialNumber;
  Require(told.has_value() == isKnown, "a whole serial number is told");
  Require(!told || *told == last, "its bytes are little-endian");
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  const std::string bytes(input.substr(0, topology::kExtendedSize));
  for (const std::size_t size : {bytes.size(), bytes.size() / 2, std::size_t{64}}) {
    const ConfigSpace config(bytes.substr(0, size));
    CheckList(config.GetCapabilities(), 0x40, config.GetSize());
    CheckList(config.GetExtendedCapabilities(), kExtended, config.GetSize());
    CheckFacts(config);
    CheckInterrupts(config);
    CheckExtended(config);
    CheckSerialNumber(config);
  }
}

namespace {

// Writes the header of a capability at any place behind the first 256 bytes, and leads there.
void PutExtended(std::uint8_t* bytes, std::size_t size, std::minstd_rand& random) {
  constexpr std::array<unsigned, 6> kIds = {0x01, 0x03, 0x0E, 0x10, 0x15, 0x0D};
  const std::size_t place =
      random() % 2 == 0 ? kExtended : (kExtended + random() % (size - kExtended)) & ~3U;
  const std::size_t next = (kExtended + random() % (size - kExtended)) & ~3U;
  if (place + 4 > size) return;
  bytes[place] = static_cast<std::uint8_t>(kIds[random() % kIds.size()]);
  bytes[place + 1] = 0;
  bytes[place + 2] = static_cast<std::uint8_t>(1 + next % 16 * 16);
  bytes[place + 3] = static_cast<std::uint8_t>(next / 16);
}

// The same below 256, where one byte names the next place.
void PutCapability(std::uint8_t* bytes, std::minstd_rand& random) {
  constexpr std::array<unsigned, 6> kIds = {0x03, 0x05, 0x0D, 0x10, 0x11, 0xFF};
  const std::size_t place = 0x40 + random() % 0x2F * 4;
  bytes[0x06] |= 0x10;
  if (random() % 2 == 0) bytes[0x34] = static_cast<std::uint8_t>(place);
  bytes[place] = static_cast<std::uint8_t>(kIds[random() % kIds.size()]);
  bytes[place + 1] = static_cast<std::uint8_t>(0x40 + random() % 0x30 * 4);
}

}  // namespace

// Nearly no changed byte makes a list of capabilities longer, so most changes add one to it.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  std::minstd_rand random(seed);
  if (size < kExtended || random() % 3 == 0) return LLVMFuzzerMutate(bytes, size, most);
  if (size > kExtended + 4 && random() % 2 == 0) {
    PutExtended(bytes, size, random);
  } else {
    PutCapability(bytes, random);
  }
  return size;
}
