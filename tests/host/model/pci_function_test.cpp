// SPDX-License-Identifier: Apache-2.0
#include "host/model/pci_function.h"

#include <gtest/gtest.h>

#include "tests/host/fixed_repository.h"

namespace pciinfo {
namespace {

PciFunction At(std::optional<PciAddress> address, const std::string& location) {
  PciFunction function;
  function.address = address;
  function.location = location;
  return function;
}

TEST(PciFunction, IsReadFromAnInstance) {
  const auto repository = MakeFixedRepository();
  const auto devices = repository->Find("QZMSG_PCIDevice");
  const PciFunction function = ReadFunction(*devices, *devices->GetInstances()[0]);
  EXPECT_EQ(function.kind, "device");
  EXPECT_EQ(AddressText(function), "01:00.0");
  EXPECT_EQ(IdText(function), "10de:1b80");
  EXPECT_EQ(function.description, "VGA compatible controller: NVIDIA Corporation GP104");
}

TEST(PciFunction, DistinguishesBridgesFromDevices) {
  const auto repository = MakeFixedRepository();
  const auto bridges = repository->Find("QZMSG_PCIBridge");
  EXPECT_EQ(ReadFunction(*bridges, *bridges->GetInstances()[0]).kind, "bridge");
}

TEST(PciFunction, MissingIdsShowAsQuestionMarks) { EXPECT_EQ(IdText({}), "????:????"); }

TEST(PciFunction, UsesTheDeviceIdIfThereIsNoLocation) {
  using NQZMVTQ20::TCIMValue;
  const auto devices = MakeEmptyRepository()->Find("QZMSG_PCIDevice");
  const auto instance = devices->CreateInstance({});
  for (const char* key : {"SystemCreationClassName", "SystemName", "CreationClassName"}) {
    instance->SetProperty(key, TCIMValue("x"), {});
  }
  instance->SetProperty("DeviceID", TCIMValue("PCI Bus  3, device   4, function  5"), {});
  instance->Commit({});
  EXPECT_EQ(AddressText(ReadFunction(*devices, *devices->GetInstances()[0])), "03:04.5");
}

TEST(PciFunction, SortingPutsUnreadableLocationsLast) {
  std::vector<PciFunction> functions = {At({}, "b"), At(PciAddress{1, 0, 0}, ""), At({}, "a"),
                                        At(PciAddress{0, 31, 7}, "")};
  SortByAddress(functions);
  EXPECT_EQ(AddressText(functions[0]), "00:1f.7");
  EXPECT_EQ(AddressText(functions[1]), "01:00.0");
  EXPECT_EQ(AddressText(functions[2]), "b");
  EXPECT_EQ(AddressText(functions[3]), "a");
}

}  // namespace
}  // namespace pciinfo
