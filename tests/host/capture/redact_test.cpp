// SPDX-License-Identifier: Apache-2.0
#include "host/capture/redact.h"

#include <gtest/gtest.h>

#include "tests/runtime/smbios_bytes.h"

namespace pciinfo {
namespace {

std::string TextOf(const vtq::SmBiosBytes& bytes) { return {bytes.begin(), bytes.end()}; }

const std::string kEntryPoint = "sys/firmware/dmi/tables/smbios_entry_point";
const std::string kTable = "sys/firmware/dmi/tables/DMI";

/// A vendor's structure of one byte and one string of six characters.
std::string VendorStructure(char byte, const std::string& text) {
  return std::string("\xC8\x05\x34\x12", 4) + byte + text + std::string(2, '\0');
}

/// A configuration space with only a serial number, at 100.
std::string ConfigSpace() {
  std::string bytes(0x110, '\x55');
  bytes.replace(0x100, 4, std::string("\x03\0\x01\0", 4));
  return bytes;
}

std::string Redacted(const std::string& path, const std::string& content) {
  Redactor redactor;
  CapturePart part{path, content, ""};
  redactor.Redact(part);
  return part.content;
}

TEST(Redactor, AllConfigurationSpacesAreRedacted) {
  for (const char* path : {"proc/bus/pci/00/1f.2", "proc/bus/pci/10000:00/02.0",
                           "sys/bus/pci/devices/0000:00:1f.2/config"}) {
    EXPECT_NE(Redacted(path, ConfigSpace()), ConfigSpace()) << path;
  }
  for (const char* path : {"proc/bus/pci/devices", "sys/bus/pci/devices/0000:00:1f.2/resource"}) {
    EXPECT_EQ(Redacted(path, ConfigSpace()), ConfigSpace()) << path;
  }
}

TEST(Redactor, ListingsAreRedacted) {
  const std::string line = "\tDevice Serial Number 12";
  EXPECT_EQ(Redacted("commands/lspci -vvv", line), "\tDevice Serial Number XX");
  EXPECT_EQ(Redacted("commands/lspci", line), line);
}

TEST(Redactor, SerialNumbersAndAddressesInTheKernelsFilesAreRedacted) {
  const std::string function = "sys/bus/pci/devices/0000:01:00.0/";
  EXPECT_EQ(Redacted(function + "nvme/nvme0/serial", "S12 34  \n"), "XXX XX  \n");
  EXPECT_EQ(Redacted(function + "virtio0/net/eth0/address", "52:54:00:12:34:56\n"),
            "XX:XX:XX:XX:XX:XX\n");
  EXPECT_EQ(Redacted("etc/machine-id", "01ab\n"), "XXXX\n");
  EXPECT_EQ(Redacted(function + "nvme/nvme0/model", "Fast disk\n"), "Fast disk\n");
  EXPECT_EQ(Redacted("sys/bus/pci/slots/3/address", "0000:03:00\n"), "0000:03:00\n");
  EXPECT_EQ(Redacted(function + "vpd", "\xFF\xFF"), std::string(2, '\0'));
  EXPECT_THROW(Redacted(function + "net/enx525400123456/address", "52:54:00:12:34:56\n"),
               CannotRedact);
}

TEST(Redactor, TheTableUsesTheEntryPointBeforeIt) {
  const std::string table = VendorStructure(1, "SECRET");
  Redactor redactor;
  CapturePart entry{kEntryPoint, TextOf(vtq::MakeVersion3Entry(3, 0, table.size())), ""};
  const std::string before = entry.content;
  redactor.Redact(entry);
  EXPECT_EQ(entry.content, before);
  CapturePart part{kTable, table, ""};
  redactor.Redact(part);
  EXPECT_EQ(part.content, VendorStructure(0, "XXXXXX"));
}

TEST(Redactor, ATableWithoutAnEntryPointIsRefused) {
  EXPECT_THROW(Redacted(kTable, "SECRET"), CannotRedact);
}

TEST(Redact, AManifestLosesTheSystemsName) {
  Manifest manifest;
  manifest.systemName = "box";
  manifest.kernelRelease = "6.1";
  Redact(manifest);
  EXPECT_EQ(manifest.systemName, "");
  EXPECT_EQ(manifest.kernelRelease, "6.1");
  EXPECT_TRUE(manifest.redacted);
}

}  // namespace
}  // namespace pciinfo
