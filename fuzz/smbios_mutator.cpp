// SPDX-License-Identifier: Apache-2.0
#include "fuzz/smbios_mutator.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/mutate.h"
#include "fuzz/smbios_model.h"

namespace fuzz {
namespace {

using Random = std::minstd_rand;
using Structures = std::vector<std::string>;

constexpr std::size_t kLengthPlace = 1;
constexpr std::size_t kHeader = 4;

/// Types that the code under test reads, and two that it passes over.
constexpr std::uint8_t kTypes[] = {0, 1, 2, 9, 9, 9, 9, 11, 11, 41, 126, 127};

/// The lengths of slot records in use, those beside them, and the ends of the byte's range.
constexpr std::uint8_t kLengths[] = {4,  5,  6,  8,  12, 13, 16, 17, 18, 19,  23,  24, 28,
                                     29, 33, 34, 38, 43, 48, 53, 58, 59, 127, 128, 255};

constexpr std::uint8_t kBytes[] = {0, 1, 2, 3, 4, 8, 9, 10, 0x1F, 0x7F, 0x80, 0xF8, 0xFE, 0xFF};

template <std::size_t size>
std::uint8_t OneOf(const std::uint8_t (&bytes)[size], Random& random) {
  return bytes[random() % size];
}

std::size_t LengthOf(const std::string& structure) {
  return static_cast<std::uint8_t>(structure[kLengthPlace]);
}

std::string Changed(std::string text, std::size_t most) {
  const std::size_t size = text.size();
  text.resize(std::max(size, most));
  text.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(text.data()), size, text.size()));
  return text;
}

void ChangeByte(std::string& structure, Random& random) {
  if (LengthOf(structure) == kHeader) return;
  const std::size_t place = kHeader + random() % (LengthOf(structure) - kHeader);
  structure[place] = static_cast<char>(OneOf(kBytes, random));
}

void ChangeFields(std::string& structure, Random& /*random*/) {
  const std::size_t length = LengthOf(structure) - kHeader;
  std::string fields = length == 0 ? "" : Changed(structure.substr(kHeader, length), length);
  fields.resize(length);
  structure.replace(kHeader, length, fields);
}

void ChangeLength(std::string& structure, Random& random) {
  const std::uint8_t length = OneOf(kLengths, random);
  std::string fields = structure.substr(0, LengthOf(structure));
  const std::string strings = structure.substr(fields.size());
  fields.resize(length, static_cast<char>(OneOf(kBytes, random)));
  fields[kLengthPlace] = static_cast<char>(length);
  structure = fields + strings;
}

void ChangeType(std::string& structure, Random& random) {
  structure[0] = static_cast<char>(OneOf(kTypes, random));
}

/// Two zero bytes would end the strings.
void ChangeStrings(std::string& structure, Random& random) {
  const std::size_t place = LengthOf(structure);
  std::string strings = Changed(structure.substr(place), structure.size() - place + 16);
  for (std::size_t i = 1; i < strings.size(); ++i) {
    const bool isEnd = strings[i - 1] == '\0' && strings[i] == '\0';
    if (isEnd) strings[i] = static_cast<char>('A' + random() % 26);
  }
  structure.replace(place, std::string::npos, strings.append(2, '\0'));
}

void ChangeStructure(std::string& structure, Random& random) {
  constexpr void (*kChanges[])(std::string&, Random&) = {
      &ChangeByte, &ChangeByte, &ChangeFields, &ChangeLength, &ChangeType, &ChangeStrings};
  kChanges[random() % std::size(kChanges)](structure, random);
}

void ChangeOrder(Structures& structures, Random& random) {
  const auto any = [&] { return static_cast<std::ptrdiff_t>(random() % structures.size()); };
  switch (random() % 3) {
    case 0:
      structures.insert(structures.begin() + any(), structures[random() % structures.size()]);
      break;
    case 1:
      structures.erase(structures.begin() + any());
      break;
    default:
      std::iter_swap(structures.begin() + any(), structures.begin() + any());
  }
}

std::string ChangedTable(const std::string& table, Random& random) {
  Structures structures = PlainStructures(table);
  std::size_t whole = 0;
  for (const std::string& structure : structures) whole += structure.size();
  if (structures.empty()) structures.emplace_back("\x09\x04\0\0\0\0", 6);
  if (random() % 4 == 0) {
    ChangeOrder(structures, random);
  } else {
    ChangeStructure(structures[random() % structures.size()], random);
  }
  std::string changed;
  for (const std::string& structure : structures) changed += structure;
  return changed + table.substr(whole);
}

}  // namespace

std::size_t MutateTable(std::uint8_t* bytes, std::size_t size, std::size_t most, unsigned seed,
                        std::size_t start) {
  Random random(seed);
  if (start > size || random() % 4 == 0) return LLVMFuzzerMutate(bytes, size, most);
  const std::string changed = ChangedTable(std::string(bytes + start, bytes + size), random);
  const std::size_t length = std::min(changed.size(), most - start);
  std::copy_n(changed.begin(), length, bytes + start);
  return start + length;
}

}  // namespace fuzz
