// SPDX-License-Identifier: Apache-2.0
#include "runtime/smbios_access.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "framework/smbios.h"
#include "tests/runtime/observed_failures.h"
#include "tests/runtime/smbios_bytes.h"
#include "tests/runtime/temporary_directory.h"

namespace vtq {
namespace {

using NQZMVTQ20::TVTQStatusCode;

const SmBiosBytes kFirst = MakeStructure(9, {1, 2, 3}, {"PCI 1"});
const SmBiosBytes kLong = MakeStructure(9, {1, 2, 3}, {std::string(200, 'x')});
const SmBiosBytes kLast = MakeStructure(9, {4}, {"PCI 3"});
const SmBiosBytes kOther = MakeStructure(11, {1}, {"OEM"});

std::string_view AsText(const SmBiosBytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// A directory like the kernel's, with a table of slots and one other structure.
class SmBiosAccessTest : public testing::Test {
 protected:
  void TearDown() override {
    if (handle_ != nullptr) NQZMVTQ20::smBiosClose(&handle_);
  }

  void Write(const SmBiosBytes& entry, const SmBiosBytes& table) {
    directory_.Write("smbios_entry_point", AsText(entry));
    directory_.Write("DMI", AsText(table));
  }

  int Load() { return SmBiosLoadFrom(directory_.GetPath().c_str(), &handle_); }

  void WriteSlots() {
    const SmBiosBytes table = Joined({kFirst, kOther, kLong, kLast});
    Write(MakeVersion2Entry(2, 7, table.size(), 4), table);
    ASSERT_EQ(Load(), TVTQStatusCode::kSuccess);
  }

  std::string Version() {
    std::array<char, NQZMVTQ20::kSmBiosVersionSize> version{};
    EXPECT_EQ(NQZMVTQ20::smBiosGetVersion(handle_, version.data()), TVTQStatusCode::kSuccess);
    return version.data();
  }

  bool BufferHolds(const SmBiosBytes& bytes) const {
    return std::equal(bytes.begin(), bytes.end(), buffer_.begin());
  }

  TemporaryDirectory directory_;
  void* handle_ = nullptr;
  std::array<std::uint8_t, 64> buffer_{};
  int size_ = 64;
};

TEST_F(SmBiosAccessTest, DeliversTheStructuresOfOneTypeInOrder) {
  WriteSlots();
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 9, buffer_.data(), &size_),
            TVTQStatusCode::kSuccess);
  EXPECT_TRUE(BufferHolds(kFirst));
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_),
            TVTQStatusCode::kBufferTooSmall);
  EXPECT_TRUE(BufferHolds(kFirst)) << "a structure that does not fit was copied in part";
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_), TVTQStatusCode::kSuccess);
  EXPECT_TRUE(BufferHolds(kLast));
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_), TVTQStatusCode::kNotFound);
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_), TVTQStatusCode::kNotFound);
  EXPECT_EQ(size_, 64);
}

TEST_F(SmBiosAccessTest, AFirstStartsTheWalkAnew) {
  WriteSlots();
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 11, buffer_.data(), &size_),
            TVTQStatusCode::kSuccess);
  EXPECT_TRUE(BufferHolds(kOther));
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 9, buffer_.data(), &size_),
            TVTQStatusCode::kSuccess);
  EXPECT_TRUE(BufferHolds(kFirst));
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 3, buffer_.data(), &size_),
            TVTQStatusCode::kNotFound);
}

TEST_F(SmBiosAccessTest, ANextWithoutAFirstFindsNothing) {
  WriteSlots();
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_), TVTQStatusCode::kNotFound);
}

TEST_F(SmBiosAccessTest, WritesExactlyTheStructureAndNotMore) {
  WriteSlots();
  const auto exact = static_cast<int>(kFirst.size());
  for (int capacity = -1; capacity <= exact; ++capacity) {
    buffer_.fill(0xEE);
    size_ = capacity;
    const int status = NQZMVTQ20::smBiosGetFirst(handle_, 9, buffer_.data(), &size_);
    const bool fits = capacity == exact;
    EXPECT_EQ(status, fits ? TVTQStatusCode::kSuccess : TVTQStatusCode::kBufferTooSmall);
    const auto written = static_cast<std::ptrdiff_t>(fits ? kFirst.size() : 0);
    EXPECT_TRUE(std::all_of(buffer_.begin() + written, buffer_.end(),
                            [](std::uint8_t byte) { return byte == 0xEE; }));
    EXPECT_EQ(size_, capacity);
  }
}

TEST_F(SmBiosAccessTest, TheVersionIsDecimal) {
  Write(MakeVersion2Entry(2, 10, 0, 0), {});
  ASSERT_EQ(Load(), TVTQStatusCode::kSuccess);
  EXPECT_EQ(Version(), "2.10");
  NQZMVTQ20::smBiosClose(&handle_);
  Write(MakeLegacyEntry(0x21, 0, 0), {});
  ASSERT_EQ(Load(), TVTQStatusCode::kSuccess);
  EXPECT_EQ(Version(), "2.1");
  NQZMVTQ20::smBiosClose(&handle_);
  Write(MakeVersion3Entry(255, 255, 0), {});
  ASSERT_EQ(Load(), TVTQStatusCode::kSuccess);
  EXPECT_EQ(Version(), "255.255");
}

TEST_F(SmBiosAccessTest, ATableFileShorterThanStatedIsUsedAsFarAsItGoes) {
  Write(MakeVersion3Entry(3, 1, 1000), Joined({kFirst, CutTo(kLast, 5)}));
  ASSERT_EQ(Load(), TVTQStatusCode::kSuccess);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 9, buffer_.data(), &size_),
            TVTQStatusCode::kSuccess);
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), &size_), TVTQStatusCode::kNotFound);
}

TEST_F(SmBiosAccessTest, AMachineWithoutTablesHasNone) {
  const ObservedFailures observed;
  handle_ = &size_;
  EXPECT_EQ(Load(), TVTQStatusCode::kNotFound);
  EXPECT_EQ(handle_, nullptr);
  ASSERT_EQ(observed.Get().size(), 1U);
  EXPECT_EQ(observed.Get()[0], "cannot use the SMBIOS tables: the file " + directory_.GetPath() +
                                   "/smbios_entry_point cannot be read: No such file or directory");
}

TEST_F(SmBiosAccessTest, AnEntryPointWithoutATableIsNoTable) {
  directory_.Write("smbios_entry_point", AsText(MakeVersion3Entry(3, 0, 9)));
  EXPECT_EQ(Load(), TVTQStatusCode::kNotFound);
}

TEST_F(SmBiosAccessTest, ACorruptEntryPointIsSaidToBe) {
  const ObservedFailures observed;
  Write({'x'}, kFirst);
  EXPECT_EQ(Load(), TVTQStatusCode::kCorruptData);
  ASSERT_EQ(observed.Get().size(), 1U);
  EXPECT_NE(observed.Get()[0].find("a known anchor"), std::string::npos);
}

TEST_F(SmBiosAccessTest, TablesThatThisUserMayNotReadAreSaidToBe) {
  Write(MakeVersion3Entry(3, 0, kFirst.size()), kFirst);
  std::filesystem::permissions(directory_.GetPath() + "/DMI", std::filesystem::perms::none);
  constexpr uid_t kNobody = 65534;
  std::filesystem::permissions(directory_.GetPath(), std::filesystem::perms{0755});
  const bool isRoot = ::geteuid() == 0;
  if (isRoot && ::seteuid(kNobody) != 0) GTEST_FAIL() << "cannot become another user";
  const int status = Load();
  if (isRoot && ::seteuid(0) != 0) GTEST_FAIL() << "cannot become root again";
  EXPECT_EQ(status, TVTQStatusCode::kAccessDenied);
}

TEST_F(SmBiosAccessTest, AnyOtherTroubleIsAFailure) {
  std::filesystem::create_directory(directory_.GetPath() + "/smbios_entry_point");
  EXPECT_EQ(Load(), TVTQStatusCode::kFailure);
}

TEST_F(SmBiosAccessTest, NullPointersAndImpossibleTypesAreInvalid) {
  WriteSlots();
  void* none = nullptr;
  char version[NQZMVTQ20::kSmBiosVersionSize];
  const auto invalid = TVTQStatusCode::kInvalidArgument;
  EXPECT_EQ(NQZMVTQ20::smBiosLoad(nullptr, nullptr), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetVersion(nullptr, version), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetVersion(handle_, nullptr), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(nullptr, 9, buffer_.data(), &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 9, nullptr, &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 9, buffer_.data(), nullptr), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, -1, buffer_.data(), &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetFirst(handle_, 256, buffer_.data(), &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(nullptr, buffer_.data(), &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, nullptr, &size_), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosGetNext(handle_, buffer_.data(), nullptr), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosClose(nullptr), invalid);
  EXPECT_EQ(NQZMVTQ20::smBiosClose(&none), invalid);
}

TEST_F(SmBiosAccessTest, ClosingSetsTheHandleToNull) {
  WriteSlots();
  EXPECT_EQ(NQZMVTQ20::smBiosClose(&handle_), TVTQStatusCode::kSuccess);
  EXPECT_EQ(handle_, nullptr);
}

TEST_F(SmBiosAccessTest, ThePublicCallReadsTheKernelsDirectory) {
  void* other = nullptr;
  EXPECT_EQ(NQZMVTQ20::smBiosLoad(nullptr, &handle_), SmBiosLoadFrom(kSmBiosDirectory, &other));
  EXPECT_EQ(handle_ == nullptr, other == nullptr);
  if (other != nullptr) NQZMVTQ20::smBiosClose(&other);
}

}  // namespace
}  // namespace vtq
