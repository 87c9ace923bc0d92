// SPDX-License-Identifier: Apache-2.0
#include "host/model/pci_class_names.h"

#include <gtest/gtest.h>

namespace pciinfo {
namespace {

std::string Words(std::optional<unsigned> base, std::optional<unsigned> subclass = {},
                  std::optional<unsigned> interface = {}) {
  return ClassText({base, subclass, interface});
}

TEST(PciClassNames, GiveTheMostSpecificName) {
  EXPECT_EQ(Words(0x0C, 0x03, 0x30), "USB controller, xHCI (USB 3)");
  EXPECT_EQ(Words(0x0C, 0x03, 0x77), "USB controller");
  EXPECT_EQ(Words(0x0C, 0x03), "USB controller");
  EXPECT_EQ(Words(0x0C, 0x77, 0x30), "Serial bus controller");
  EXPECT_EQ(Words(0x0C), "Serial bus controller");
}

TEST(PciClassNames, UnnamedClassesAreNumbers) {
  EXPECT_EQ(Words(0x7E, 0x01, 0x02), "class 7e");
  EXPECT_EQ(BaseClassText(0x7E), "class 7e");
  EXPECT_EQ(BaseClassText(0x02), "Network controller");
}

TEST(PciClassNames, OfAnUnknownClassIsEmpty) { EXPECT_EQ(Words({}), ""); }

}  // namespace
}  // namespace pciinfo
