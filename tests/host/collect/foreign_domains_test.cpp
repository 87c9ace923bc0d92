// SPDX-License-Identifier: Apache-2.0
#include "host/collect/foreign_domains.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/runtime/temporary_directory.h"

namespace pciinfo {
namespace {

TEST(ForeignDomains, AreThoseOfFunctionsThatTheFirstDomainLacks) {
  const vtq::TemporaryDirectory directory;
  for (const char* name : {"0000:00:04.0", "10000:00:04.0", "10000:01:1f.7", "not a function",
                           "{x}:05:00.0", "0001:06:00.0", "0002:06:00.0", "0001:07:00.0"}) {
    std::filesystem::create_directory(directory / name);
  }
  std::filesystem::create_symlink("nowhere", directory / "0000:07:00.0");
  const auto domainOf = MakeDomainLookup(directory.GetPath());
  EXPECT_EQ(domainOf("01/1f.7"), "10000");
  EXPECT_EQ(domainOf("00/04.0"), "");
  EXPECT_EQ(domainOf("02/00.0"), "");
  EXPECT_EQ(domainOf("05/00.0"), "");
  EXPECT_EQ(domainOf("06/00.0"), "") << "two domains have it";
  EXPECT_EQ(domainOf("07/00.0"), "") << "as links of the kernel, which captures do not resolve";
  EXPECT_EQ(MakeDomainLookup(directory / "nowhere")("01/1f.7"), "");
}

}  // namespace
}  // namespace pciinfo
