// SPDX-License-Identifier: Apache-2.0
#include "runtime/host_name.h"

#include <gtest/gtest.h>

#include <sstream>

namespace vtq {
namespace {

std::string Qualified(const std::string& host, const std::string& hostsText) {
  std::istringstream hostsFile(hostsText);
  return QualifiedHostName(host, hostsFile);
}

TEST(HostNameTest, ANameWithADomainStaysAsItIs) {
  EXPECT_EQ(Qualified("box.example.org", "10.0.0.1 box.example.org.other box.example.org\n"),
            "box.example.org");
}

TEST(HostNameTest, TheDomainComesFromTheLineThatListsTheName) {
  EXPECT_EQ(Qualified("box", "127.0.0.1 localhost\n127.0.1.1\tbox.example.org box\n"),
            "box.example.org");
  EXPECT_EQ(Qualified("box", "# a comment\n\n10.0.0.1 box.example.org www box # box.other"),
            "box.example.org");
}

TEST(HostNameTest, OnlyALineThatListsTheNameAndBeginsWithItCounts) {
  EXPECT_EQ(Qualified("box", "10.0.0.1 box.example.org\n"), "box");
  EXPECT_EQ(Qualified("box", "10.0.0.1 other.example.org box\n"), "box");
  EXPECT_EQ(Qualified("box", "10.0.0.1 boxer.example.org box\n"), "box");
  EXPECT_EQ(Qualified("box", "#10.0.0.1 box.example.org box\n"), "box");
  EXPECT_EQ(Qualified("box", "box.example.org box\n"), "box");
  EXPECT_EQ(Qualified("box", "10.0.0.1 box\n10.0.0.2 box.example.org box\n"), "box.example.org");
}

TEST(HostNameTest, NamesThatStandForNoNameStayAsTheyAre) {
  EXPECT_EQ(Qualified("localhost", "127.0.0.1 localhost.localdomain localhost\n"), "localhost");
  EXPECT_EQ(Qualified("(none)", "127.0.0.1 localhost\n"), "(none)");
  EXPECT_EQ(Qualified("", "127.0.0.1 localhost\n"), "");
}

TEST(HostNameTest, WithoutAHostsFileTheNameStays) { EXPECT_EQ(Qualified("box", ""), "box"); }

}  // namespace
}  // namespace vtq
