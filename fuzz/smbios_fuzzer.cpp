// SPDX-License-Identifier: Apache-2.0

// SMBIOS entry points and the walk over the table, by the parsing functions and by files like the
// kernel's. An input is flags, a type, a capacity, the length of an entry point, the entry point,
// and the table.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <numeric>
#include <optional>

#include "framework/exception.h"
#include "framework/smbios.h"
#include "fuzz/fuzz.h"
#include "fuzz/mutate.h"
#include "fuzz/smbios_model.h"
#include "fuzz/smbios_mutator.h"
#include "runtime/bios_id.h"
#include "runtime/file_descriptor.h"
#include "runtime/smbios_access.h"
#include "tests/runtime/temporary_directory.h"

namespace {

using fuzz::Require;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;
using vtq::SmBiosEntryPoint;

constexpr std::uint8_t kAnchorBits = 0x03;
constexpr std::uint8_t kSumBit = 0x04;
constexpr std::uint8_t kFilesBit = 0x08;
constexpr std::array<const char*, 4> kAnchors = {"", "_SM_", "_SM3_", "_DMI_"};

unsigned ByteAt(const std::string& bytes, std::size_t place) {
  return place < bytes.size() ? static_cast<std::uint8_t>(bytes[place]) : 0;
}

unsigned WordAt(const std::string& bytes, std::size_t place) {
  return ByteAt(bytes, place) + 256 * ByteAt(bytes, place + 1);
}

unsigned Sum(const std::string& bytes, std::size_t start, std::size_t length) {
  unsigned sum = 0;
  for (std::size_t i = start; i < start + length; ++i) sum += ByteAt(bytes, i);
  return sum % 256;
}

void Overwrite(std::string& bytes, std::size_t place, std::string_view text) {
  if (bytes.size() >= place + text.size()) bytes.replace(place, text.size(), text);
}

void FixSum(std::string& bytes, std::size_t start, std::size_t length, std::size_t place) {
  if (place >= bytes.size()) return;
  bytes[place] = '\0';
  bytes[place] = static_cast<char>(256 - Sum(bytes, start, length));
}

// Sets correct checksums, which random bytes have only once in 65536 times.
void FixSums(std::string& bytes) {
  if (bytes.starts_with("_SM3_")) FixSum(bytes, 0, ByteAt(bytes, 6), 5);
  if (bytes.starts_with("_DMI_")) FixSum(bytes, 0, 15, 5);
  if (!bytes.starts_with("_SM_")) return;
  Overwrite(bytes, 16, "_DMI_");
  FixSum(bytes, 16, 15, 21);
  FixSum(bytes, 0, ByteAt(bytes, 5), 4);
}

bool HasLengthAndSum(const std::string& bytes, unsigned length, unsigned least) {
  return length >= least && length <= bytes.size() && Sum(bytes, 0, length) == 0;
}

// Returns the content of an entry point (DSP0134, 5.2); nothing if it is not valid.
std::optional<SmBiosEntryPoint> PlainEntryPoint(const std::string& bytes) {
  const auto number = [&](std::size_t place) { return static_cast<int>(ByteAt(bytes, place)); };
  if (bytes.starts_with("_SM3_")) {
    if (!HasLengthAndSum(bytes, ByteAt(bytes, 6), 24)) return {};
    const std::size_t length = WordAt(bytes, 12) + std::size_t{65536} * WordAt(bytes, 14);
    return SmBiosEntryPoint{number(7), number(8), length, 0, true};
  }
  if (bytes.starts_with("_SM_")) {
    if (!HasLengthAndSum(bytes, ByteAt(bytes, 5), 30)) return {};
    if (bytes.compare(16, 5, "_DMI_") != 0) return {};
    if (bytes.size() > 30 && Sum(bytes, 16, 15) != 0) return {};
    return SmBiosEntryPoint{number(6), number(7), WordAt(bytes, 22), WordAt(bytes, 28), false};
  }
  if (!bytes.starts_with("_DMI_") || !HasLengthAndSum(bytes, 15, 15)) return {};
  return SmBiosEntryPoint{number(14) / 16, number(14) % 16, WordAt(bytes, 6), WordAt(bytes, 12),
                          false};
}

std::vector<std::uint8_t> AsBytes(std::string_view text) { return {text.begin(), text.end()}; }

std::optional<SmBiosEntryPoint> Parsed(const std::string& bytes) {
  try {
    return vtq::ParseSmBiosEntryPoint(AsBytes(bytes));
  } catch (const TVTQException& failure) {
    Require(failure.GetStatusCode() == TVTQStatusCode::kCorruptData, "the failure is kCorruptData");
    return {};
  }
}

void CheckEntryPoint(const std::string& bytes) {
  const auto expected = PlainEntryPoint(bytes);
  const auto parsed = Parsed(bytes);
  Require(parsed.has_value() == expected.has_value(),
          "exactly the valid entry points are accepted");
  if (!parsed) return;
  Require(parsed->majorVersion == expected->majorVersion &&
              parsed->minorVersion == expected->minorVersion,
          "the version is read");
  Require(parsed->tableLength == expected->tableLength, "the length is read");
  Require(parsed->structureCount == expected->structureCount, "the count is read");
  Require(parsed->endsAtMarker == expected->endsAtMarker, "the kind of end is read");
}

std::vector<std::string> StructuresOf(const SmBiosEntryPoint& entry, const std::string& table) {
  return fuzz::PlainStructures(std::string_view(table).substr(0, entry.tableLength),
                               entry.structureCount, entry.endsAtMarker);
}

void CheckWalk(const vtq::SmBiosTable& table, const std::vector<std::string>& structures) {
  vtq::SmBiosWalk walk(table);
  for (const std::string& structure : structures) {
    const auto bytes = walk.Next();
    Require(bytes.has_value(), "the walk does not end early");
    Require(
        std::equal(bytes->begin(), bytes->end(), structure.begin(), structure.end(),
                   [](std::uint8_t byte, char c) { return byte == static_cast<std::uint8_t>(c); }),
        "a structure is where the one before ends");
  }
  Require(!walk.Next() && !walk.Next(), "the walk ends, and stays at the end");
}

// Returns the BIOS version of the first structure of type 0: the string whose number is its sixth
// byte.
std::string PlainBiosVersion(const std::vector<std::string>& structures) {
  for (const std::string& structure : structures) {
    if (structure[0] != 0) continue;
    std::size_t place = ByteAt(structure, 1);
    const unsigned number = place > 5 ? ByteAt(structure, 5) : 0;
    for (unsigned i = 1; i < number && structure[place] != 0; ++i) {
      place = structure.find('\0', place) + 1;
    }
    return number == 0 ? "" : structure.substr(place, structure.find('\0', place) - place);
  }
  return "";
}

// A file that is made once and filled for each input, which takes a fraction of the time.
class RefilledFile final {
 public:
  explicit RefilledFile(const std::string& name)
      : file_(open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)) {}

  void Fill(std::string_view bytes) const {
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(ftruncate(file_.Get(), size) == 0 &&
                pwrite(file_.Get(), bytes.data(), bytes.size(), 0) == size,
            "there is room for the tables");
  }

 private:
  vtq::FileDescriptor file_;
};

// The tables as files, like the kernel's.
class Files final {
 public:
  void Write(const std::string& entryPoint, const std::string& table) const {
    entryPoint_.Fill(entryPoint);
    table_.Fill(table);
  }
  const char* Path() const { return directory_.GetPath().c_str(); }

 private:
  vtq::TemporaryDirectory directory_;
  RefilledFile entryPoint_{directory_ / "smbios_entry_point"};
  RefilledFile table_{directory_ / "DMI"};
};

// Checks every structure of the type; one that does not fit is skipped with its own status.
void CheckFetches(void* handle, int type, int capacity,
                  const std::vector<std::string>& structures) {
  const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(capacity));
  auto status = NQZMVTQ20::smBiosGetFirst(handle, type, buffer.get(), &capacity);
  for (const std::string& structure : structures) {
    if (ByteAt(structure, 0) != static_cast<unsigned>(type)) continue;
    const bool fits = structure.size() <= static_cast<std::size_t>(capacity);
    Require(status == (fits ? TVTQStatusCode::kSuccess : TVTQStatusCode::kBufferTooSmall),
            "a structure that fits is handed over");
    Require(!fits || structure.compare(0, structure.size(), buffer.get(), structure.size()) == 0,
            "with all of its bytes");
    status = NQZMVTQ20::smBiosGetNext(handle, buffer.get(), &capacity);
  }
  Require(status == TVTQStatusCode::kNotFound, "the walk ends after the last structure");
}

void CheckFiles(const std::string& entryPoint, const std::string& table, int type, int capacity) {
  static const Files files;
  files.Write(entryPoint, table);
  void* handle = nullptr;
  const auto status = vtq::SmBiosLoadFrom(files.Path(), &handle);
  const auto entry = PlainEntryPoint(entryPoint);
  Require(status == (entry ? TVTQStatusCode::kSuccess : TVTQStatusCode::kCorruptData),
          "exactly the valid entry points are loaded");
  Require((handle != nullptr) == entry.has_value(), "there is a handle when it was loaded");
  if (!entry) return;
  char version[NQZMVTQ20::kSmBiosVersionSize];
  NQZMVTQ20::smBiosGetVersion(handle, version);
  Require(
      version == std::to_string(entry->majorVersion) + "." + std::to_string(entry->minorVersion),
      "the version is returned");
  CheckFetches(handle, type, capacity, StructuresOf(*entry, table));
  NQZMVTQ20::smBiosClose(&handle);
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const std::uint8_t flags = pieces.Byte();
  const std::uint8_t type = pieces.Byte();
  const int capacity = 4 * pieces.Byte();
  std::string entryPoint(pieces.Bytes(pieces.Byte()));
  const std::string table(pieces.Rest());
  Overwrite(entryPoint, 0, kAnchors[flags & kAnchorBits]);
  if (flags & kSumBit) FixSums(entryPoint);
  CheckEntryPoint(entryPoint);
  if (flags & kFilesBit) CheckFiles(entryPoint, table, type, capacity);
  const auto entry = PlainEntryPoint(entryPoint).value_or(SmBiosEntryPoint{3, 0, table.size()});
  const vtq::SmBiosTable whole{entry, AsBytes(table)};
  const std::vector<std::string> structures = StructuresOf(entry, table);
  CheckWalk(whole, structures);
  Require(vtq::BiosVersion(whole) == PlainBiosVersion(structures), "the BIOS version is found");
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* bytes, std::size_t size,
                                               std::size_t most, unsigned seed) {
  constexpr std::size_t kHeader = 4;
  const std::size_t start = size < kHeader ? most : kHeader + bytes[kHeader - 1];
  return fuzz::MutateTable(bytes, size, most, seed, start);
}
