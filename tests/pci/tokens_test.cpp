// SPDX-License-Identifier: Apache-2.0
#include "pci/tokens.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using Tokens = std::vector<std::string>;

template <class Delimiters>
Tokens Split(const std::string& text, Delimiters delimiters) {
  Tokens tokens;
  ForEachToken(text, delimiters, [&](std::string_view token) {
    tokens.emplace_back(token);
    return true;
  });
  return tokens;
}

// One character at a time.
Tokens SplitPlainly(const std::string& text, const std::string& delimiters) {
  Tokens tokens;
  std::string token;
  for (const char c : text + delimiters[0]) {
    if (delimiters.find(c) == std::string::npos) {
      token += c;
    } else if (!token.empty()) {
      tokens.push_back(token);
      token.clear();
    }
  }
  return tokens;
}

}  // namespace

TEST(ForEachToken, RunsOfDelimitersAndTrailingOnesGiveNoEmptyTokens) {
  EXPECT_EQ(Split("a\t\tb\t", "\t"), (Tokens{"a", "b"}));
}

TEST(ForEachToken, LeadingDelimitersGiveNoEmptyToken) {
  EXPECT_EQ(Split("\t\ta\tb", "\t"), (Tokens{"a", "b"}));
}

TEST(ForEachToken, EmptyTextHasNoTokens) { EXPECT_EQ(Split("", "\t"), Tokens{}); }

TEST(ForEachToken, DelimitersAloneHaveNoTokens) { EXPECT_EQ(Split("\t\t\t", "\t"), Tokens{}); }

TEST(ForEachToken, TextWithoutDelimitersIsTheOneToken) {
  EXPECT_EQ(Split("abc", " "), Tokens{"abc"});
}

TEST(ForEachToken, AnyOfTheDelimitersEndsAToken) {
  EXPECT_EQ(Split("a b,c, d", " ,"), (Tokens{"a", "b", "c", "d"}));
}

TEST(ForEachToken, StopsWhenToldTo) {
  Tokens tokens;
  ForEachToken("a b c", " ", [&](std::string_view token) {
    tokens.emplace_back(token);
    return tokens.size() < 2;
  });
  EXPECT_EQ(tokens, (Tokens{"a", "b"}));
}

TEST(ForEachToken, AgreesWithSplittingCharacterByCharacter) {
  std::mt19937 random(1);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 12; length > 0; --length) text += "ab\t ,"[random() % 5];
    for (const char* delimiters : {"\t", " ", "\t ,"}) {
      ASSERT_EQ(Split(text, delimiters), SplitPlainly(text, delimiters)) << text;
    }
    ASSERT_EQ(Split(text, '\t'), SplitPlainly(text, "\t")) << text;
  }
}
