// SPDX-License-Identifier: Apache-2.0
#include "pci/listing_index.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

namespace {

// Searches the lines one after another, each from its start.
std::string SearchPlainly(const std::string& listing, const std::string& key) {
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t place = line.find(key);
    if (line.empty() || place == std::string::npos) continue;
    const std::size_t rest = place + key.size() + 1;
    if (rest < line.size()) return line.substr(rest);
  }
  return "";
}

std::string Find(const std::string& listing, const std::string& key) {
  const ListingIndex index(listing);
  return std::string(index.Find(key));
}

template <std::size_t Count>
std::string Join(const char* const (&pieces)[Count], std::size_t length, std::mt19937* random) {
  std::string text;
  for (; length > 0; --length) text += pieces[(*random)() % Count];
  return text;
}

}  // namespace

TEST(ListingIndex, RestOfTheLineFollowsKeyAndOneCharacter) {
  const char* listing = "00:00.0 Host bridge: A\n00:1f.2 SATA controller: Example device\n";
  EXPECT_EQ(Find(listing, "00:1f.2"), "SATA controller: Example device");
}

TEST(ListingIndex, TheSkippedCharacterMayBeAnything) {
  EXPECT_EQ(Find("00:1f.2xSATA\n", "00:1f.2"), "SATA");
  EXPECT_EQ(Find("00:1f.2  SATA\n", "00:1f.2"), " SATA");
}

TEST(ListingIndex, KeyIsFoundAnywhereInTheLine) {
  EXPECT_EQ(Find("0000:00:1f.2 SATA\n", "00:1f.2"), "SATA");
  EXPECT_EQ(Find("device at 00:1f.2 SATA\n", "00:1f.2"), "SATA");
}

TEST(ListingIndex, FirstLineWins) {
  EXPECT_EQ(Find("00:1f.2 first\n00:1f.2 second\n", "00:1f.2"), "first");
}

TEST(ListingIndex, FirstOccurrenceInTheLineWins) {
  EXPECT_EQ(Find("00:1f.2 a 00:1f.2 b\n", "00:1f.2"), "a 00:1f.2 b");
}

TEST(ListingIndex, LineWithOneCharacterBehindTheKeyDoesNotMatch) {
  EXPECT_EQ(Find("00:1f.2 \n00:1f.2 second\n", "00:1f.2"), "second");
  EXPECT_EQ(Find("00:1f.2 \n", "00:1f.2"), "");
}

TEST(ListingIndex, LineThatEndsWithTheKeyDoesNotMatch) {
  EXPECT_EQ(Find("00:1f.2\n00:1f.2 second\n", "00:1f.2"), "second");
  EXPECT_EQ(Find("00:1f.2", "00:1f.2"), "");
}

TEST(ListingIndex, LastLineNeedsNoLineEnd) { EXPECT_EQ(Find("00:1f.2 SATA", "00:1f.2"), "SATA"); }

TEST(ListingIndex, UnknownKeyFindsNothing) { EXPECT_EQ(Find("00:1f.2 SATA\n", "00:1f.3"), ""); }

TEST(ListingIndex, LetterCaseMatters) {
  EXPECT_EQ(Find("00:1F.2 SATA\n", "00:1f.2"), "");
  EXPECT_EQ(Find("00:1F.2 SATA\n", "00:1F.2"), "SATA");
}

TEST(ListingIndex, KeyOfAnyOtherFormIsFoundToo) {
  EXPECT_EQ(Find("a line\nanother key here\n", "key"), "here");
  EXPECT_EQ(Find("10000:e1:00.0 NVMe\n", "10000:e1:00.0"), "NVMe");
  EXPECT_EQ(Find("00:1f.2 SATA\n", "00:1f.2 "), "ATA");
}

TEST(ListingIndex, OnlyTheEmptyListingIsEmpty) {
  EXPECT_TRUE(ListingIndex().IsEmpty());
  EXPECT_TRUE(ListingIndex("").IsEmpty());
  EXPECT_FALSE(ListingIndex("\n").IsEmpty());
  EXPECT_EQ(Find("", "00:1f.2"), "");
}

TEST(ListingIndex, AgreesWithAPlainSearchInAnyListing) {
  constexpr const char* kPieces[] = {"00:1f.2", "00:00.0", "0a:1f.2", "0000:", "0", "1f",
                                     ":",       ".2",      ".0",      " ",     " ", "\n",
                                     "\n",      "x",       "A0:00.0", "00:1f"};
  constexpr const char* kKeys[] = {"00:1f.2",  "00:00.0", "0a:1f.2", "1f:1f.2", "0000:00:1f.2",
                                   "A0:00.0",  "00:1f",   ":",       "x",       " ",
                                   "00:1f.2 ", "0"};
  std::mt19937 random(1);
  int found = 0;
  for (int round = 0; round < 5000; ++round) {
    const std::string listing = Join(kPieces, random() % 40, &random);
    const ListingIndex index(listing);
    for (const char* key : kKeys) {
      ASSERT_EQ(index.Find(key), SearchPlainly(listing, key)) << listing << "\nkey: " << key;
      if (!index.Find(key).empty()) ++found;
    }
    const std::string key = Join(kPieces, 1 + random() % 3, &random);
    if (key.find('\n') != std::string::npos) continue;
    ASSERT_EQ(index.Find(key), SearchPlainly(listing, key)) << listing << "\nkey: " << key;
  }
  EXPECT_GT(found, 10000) << "the listings hold the keys";
}

TEST(ListingIndex, AgreesWithAPlainSearchForRandomAddresses) {
  std::mt19937 random(2);
  const auto address = [&] {
    char text[16];
    std::snprintf(text, sizeof text, "%02x:%02x.%x", static_cast<unsigned>(random() % 3),
                  static_cast<unsigned>(random() % 4), static_cast<unsigned>(random() % 3));
    return std::string(text);
  };
  for (int round = 0; round < 2000; ++round) {
    std::string listing;
    for (std::size_t lines = random() % 30; lines > 0; --lines) {
      listing +=
          address() + std::string(random() % 4, ' ') + (random() % 2 ? address() : "") + "\n";
    }
    const ListingIndex index(listing);
    for (int look = 0; look < 20; ++look) {
      const std::string key = address();
      ASSERT_EQ(index.Find(key), SearchPlainly(listing, key)) << listing << "\nkey: " << key;
    }
  }
}
