// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

#include "tests/pci/pci_fixture.h"

inline NQZMVTQ20::TCIMValue Byte(unsigned value) {
  return NQZMVTQ20::TCIMValue(static_cast<unsigned char>(value));
}
inline NQZMVTQ20::TCIMValue Word(unsigned value) {
  return NQZMVTQ20::TCIMValue(static_cast<unsigned short>(value));
}

/// 00:1f.3, with a different number in each reported byte of the header.
inline FakeFunction Audio() {
  FakeFunction function;
  function.device = 31;
  function.function = 3;
  function.vendorId = 0x8086;
  function.deviceId = 0x1234;
  std::vector<unsigned char> header = Header(function);
  header[0x08] = 0x11;
  header[0x09] = 0x12;
  header[0x0A] = 0x03;
  header[0x0B] = 0x04;
  header[0x2C] = 0xA5;
  header[0x2D] = 0xF1;
  header[0x2E] = 0xFE;
  header[0x2F] = 0xCA;
  function.header = header;
  return function;
}

/// Properties of one function, initially Audio(), which the listing describes.
class PropertiesTest : public PciTest {
 protected:
  PropertiesTest() {
    Fake().commands["lspci"] = [] { return std::string("00:1f.3 Audio device: Example\n"); };
    Put(Audio());
  }

  void Put(const FakeFunction& function) { records = {Record(function)}; }
  sPciDevices& TheRecord() { return records[0]; }

  std::vector<sPciDevices> records;
};
