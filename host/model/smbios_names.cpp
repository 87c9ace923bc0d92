// SPDX-License-Identifier: Apache-2.0
#include "host/model/smbios_names.h"

#include <algorithm>
#include <iterator>

namespace pciinfo {
namespace {

struct CodeText {
  unsigned code;
  const char* text;
};

// Slot types, DSP0134 7.10.1.
constexpr CodeText kConnectorTypes[] = {
    {0x01, "Other"},
    {0x02, "Unknown"},
    {0x03, "ISA"},
    {0x04, "MCA"},
    {0x05, "EISA"},
    {0x06, "PCI"},
    {0x07, "PC Card (PCMCIA)"},
    {0x08, "VL-VESA"},
    {0x09, "Proprietary"},
    {0x0A, "Processor card slot"},
    {0x0B, "Proprietary memory card slot"},
    {0x0C, "I/O riser card slot"},
    {0x0D, "NuBus"},
    {0x0E, "PCI 66 MHz"},
    {0x0F, "AGP"},
    {0x10, "AGP 2X"},
    {0x11, "AGP 4X"},
    {0x12, "PCI-X"},
    {0x13, "AGP 8X"},
    {0x14, "M.2 socket 1-DP (key A)"},
    {0x15, "M.2 socket 1-SD (key E)"},
    {0x16, "M.2 socket 2 (key B)"},
    {0x17, "M.2 socket 3 (key M)"},
    {0x18, "MXM type I"},
    {0x19, "MXM type II"},
    {0x1A, "MXM type III (standard)"},
    {0x1B, "MXM type III (HE)"},
    {0x1C, "MXM type IV"},
    {0x1D, "MXM 3.0 type A"},
    {0x1E, "MXM 3.0 type B"},
    {0x1F, "PCIe 2 SFF-8639 (U.2)"},
    {0x20, "PCIe 3 SFF-8639 (U.2)"},
    {0x21, "PCIe Mini 52-pin, keep-outs"},
    {0x22, "PCIe Mini 52-pin"},
    {0x23, "PCIe Mini 76-pin"},
    {0x24, "PCIe 4 SFF-8639 (U.2)"},
    {0x25, "PCIe 5 SFF-8639 (U.2)"},
    {0x26, "OCP NIC 3.0 small (SFF)"},
    {0x27, "OCP NIC 3.0 large (LFF)"},
    {0x28, "OCP NIC before 3.0"},
    {0x30, "CXL Flexbus 1.0"},
    {0xA0, "PC-98/C20"},
    {0xA1, "PC-98/C24"},
    {0xA2, "PC-98/E"},
    {0xA3, "PC-98/Local Bus"},
    {0xA4, "PC-98/Card"},
    {0xA5, "PCI Express"},
    {0xA6, "PCI Express x1"},
    {0xA7, "PCI Express x2"},
    {0xA8, "PCI Express x4"},
    {0xA9, "PCI Express x8"},
    {0xAA, "PCI Express x16"},
    {0xAB, "PCI Express 2"},
    {0xAC, "PCI Express 2 x1"},
    {0xAD, "PCI Express 2 x2"},
    {0xAE, "PCI Express 2 x4"},
    {0xAF, "PCI Express 2 x8"},
    {0xB0, "PCI Express 2 x16"},
    {0xB1, "PCI Express 3"},
    {0xB2, "PCI Express 3 x1"},
    {0xB3, "PCI Express 3 x2"},
    {0xB4, "PCI Express 3 x4"},
    {0xB5, "PCI Express 3 x8"},
    {0xB6, "PCI Express 3 x16"},
    {0xB8, "PCI Express 4"},
    {0xB9, "PCI Express 4 x1"},
    {0xBA, "PCI Express 4 x2"},
    {0xBB, "PCI Express 4 x4"},
    {0xBC, "PCI Express 4 x8"},
    {0xBD, "PCI Express 4 x16"},
    {0xBE, "PCI Express 5"},
    {0xBF, "PCI Express 5 x1"},
    {0xC0, "PCI Express 5 x2"},
    {0xC1, "PCI Express 5 x4"},
    {0xC2, "PCI Express 5 x8"},
    {0xC3, "PCI Express 5 x16"},
    {0xC4, "PCI Express 6 or later"},
    {0xC5, "EDSFF E1 (E1.S, E1.L)"},
    {0xC6, "EDSFF E3 (E3.S, E3.L)"},
};

// clang-format off

// Slot data bus widths, DSP0134 7.10.2.
constexpr CodeText kWidths[] = {
    {0x01, "Other"},
    {0x02, "Unknown"},
    {0x03, "8 bit"},
    {0x04, "16 bit"},
    {0x05, "32 bit"},
    {0x06, "64 bit"},
    {0x07, "128 bit"},
    {0x08, "x1"},
    {0x09, "x2"},
    {0x0A, "x4"},
    {0x0B, "x8"},
    {0x0C, "x12"},
    {0x0D, "x16"},
    {0x0E, "x32"},
};

// Current usage, DSP0134 7.10.3.
constexpr CodeText kUsages[] = {
    {0x01, "Other"},
    {0x02, "Unknown"},
    {0x03, "Available"},
    {0x04, "In use"},
    {0x05, "Unavailable"},
};

// Slot lengths, DSP0134 7.10.4.
constexpr CodeText kLengths[] = {
    {0x01, "Other"},
    {0x02, "Unknown"},
    {0x03, "Short length"},
    {0x04, "Long length"},
    {0x05, "2.5\" drive form factor"},
    {0x06, "3.5\" drive form factor"},
};

// clang-format on

template <std::size_t size>
std::string TextOf(const CodeText (&table)[size], unsigned code) {
  const auto* row = std::find_if(std::begin(table), std::end(table),
                                 [code](const CodeText& entry) { return entry.code == code; });
  return row == std::end(table) ? std::to_string(code) : row->text;
}

}  // namespace

std::string ConnectorTypeText(unsigned code) { return TextOf(kConnectorTypes, code); }

std::string SlotWidthText(unsigned code) { return TextOf(kWidths, code); }

std::optional<unsigned> LanesOfWidth(unsigned code) {
  constexpr unsigned kFirst = 0x08;
  constexpr unsigned kLanes[] = {1, 2, 4, 8, 12, 16, 32};
  if (code < kFirst || code - kFirst >= std::size(kLanes)) return std::nullopt;
  return kLanes[code - kFirst];
}

std::string SlotUsageText(unsigned code) { return TextOf(kUsages, code); }

std::string SlotLengthText(unsigned code) { return TextOf(kLengths, code); }

}  // namespace pciinfo
