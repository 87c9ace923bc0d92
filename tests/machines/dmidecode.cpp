// SPDX-License-Identifier: Apache-2.0
#include "tests/machines/dmidecode.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/machines/process.h"

namespace {

using Blocks = std::vector<std::vector<std::string>>;

// The lines of each structure after its "Handle" line.
Blocks RunDmidecode(const std::vector<std::string>& options) {
  std::vector<std::string> words = {"dmidecode", "-t", "9"};
  words.insert(words.end(), options.begin(), options.end());
  const RunResult run = RunToEnd(words);
  if (run.status != 0) throw std::runtime_error("dmidecode failed: " + run.out + run.err);
  Blocks blocks;
  for (const std::string& line : LinesOf(run.out)) {
    if (line.starts_with("Handle ")) {
      blocks.emplace_back();
    } else if (!blocks.empty()) {
      blocks.back().push_back(line);
    }
  }
  return blocks;
}

DecodedSlot Decode(const std::vector<std::string>& lines) {
  DecodedSlot slot;
  for (const std::string& line : lines) {
    const auto take = [&line](const char* key, std::string& value) {
      const std::string beginning = std::string("\t") + key + ": ";
      if (line.starts_with(beginning)) value = line.substr(beginning.size());
    };
    take("Designation", slot.designation);
    take("Current Usage", slot.usage);
    take("ID", slot.id);
    take("Peer Devices", slot.peers);
    if (line.starts_with("\t\t")) slot.characteristics.push_back(line.substr(2));
  }
  return slot;
}

void AppendHex(const std::string& line, std::vector<std::uint8_t>& bytes) {
  std::istringstream stream(line);
  for (unsigned byte = 0; stream >> std::hex >> byte;) {
    bytes.push_back(static_cast<std::uint8_t>(byte));
  }
}

// Returns the bytes that "dmidecode -u" prints: the formatted area, then each string with its zero
// byte; below each the string is also printed as text.
std::vector<std::uint8_t> BytesOf(const std::vector<std::string>& lines) {
  std::vector<std::uint8_t> bytes;
  bool inStrings = false;
  bool textIsNext = false;
  for (const std::string& line : lines) {
    if (line == "\tStrings:") inStrings = true;
    if (!line.starts_with("\t\t")) continue;
    if (!textIsNext) AppendHex(line, bytes);
    textIsNext = inStrings && !textIsNext && bytes.back() == 0;
  }
  return bytes;
}

}  // namespace

std::vector<DecodedSlot> DecodeSlots() {
  // Without the files, dmidecode would search the tables in the memory of the real machine.
  if (!std::filesystem::exists("/sys/firmware/dmi/tables/smbios_entry_point")) return {};
  const Blocks decoded = RunDmidecode({});
  const Blocks dumped = RunDmidecode({"-u"});
  std::vector<DecodedSlot> slots;
  for (std::size_t i = 0; i < decoded.size(); ++i) {
    slots.push_back(Decode(decoded[i]));
    slots.back().bytes = BytesOf(dumped.at(i));
  }
  return slots;
}
