// SPDX-License-Identifier: Apache-2.0
#include "host/model/pci_class_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace pciinfo {
namespace {

struct NamedCode {
  unsigned code;
  const char* text;
};

constexpr NamedCode kBaseClasses[] = {
    {0x00, "Unclassified device"},
    {0x01, "Mass storage controller"},
    {0x02, "Network controller"},
    {0x03, "Display controller"},
    {0x04, "Multimedia device"},
    {0x05, "Memory controller"},
    {0x06, "Bridge"},
    {0x07, "Communication controller"},
    {0x08, "System peripheral"},
    {0x09, "Input device controller"},
    {0x0A, "Docking station"},
    {0x0B, "Processor"},
    {0x0C, "Serial bus controller"},
    {0x0D, "Wireless controller"},
    {0x0E, "Intelligent controller"},
    {0x0F, "Satellite communication controller"},
    {0x10, "Encryption controller"},
    {0x11, "Signal processing controller"},
    {0x12, "Processing accelerator"},
    {0x13, "Non-essential instrumentation"},
    {0x40, "Co-processor"},
    {0xFF, "Unassigned class"},
};

// Base class and subclass.
constexpr NamedCode kSubclasses[] = {
    {0x0000, "Non-VGA unclassified device"},
    {0x0001, "VGA compatible unclassified device"},
    {0x0100, "SCSI storage controller"},
    {0x0101, "IDE interface"},
    {0x0102, "Floppy disk controller"},
    {0x0103, "IPI bus controller"},
    {0x0104, "RAID bus controller"},
    {0x0105, "ATA controller"},
    {0x0106, "SATA controller"},
    {0x0107, "Serial attached SCSI controller"},
    {0x0108, "Non-volatile memory controller"},
    {0x0109, "Universal flash storage controller"},
    {0x0200, "Ethernet controller"},
    {0x0201, "Token ring network controller"},
    {0x0202, "FDDI network controller"},
    {0x0203, "ATM network controller"},
    {0x0204, "ISDN controller"},
    {0x0206, "PICMG 2.14 multicomputing controller"},
    {0x0207, "InfiniBand controller"},
    {0x0208, "Host fabric controller"},
    {0x0300, "VGA compatible controller"},
    {0x0301, "XGA compatible controller"},
    {0x0302, "3D controller"},
    {0x0400, "Video device"},
    {0x0401, "Audio device (legacy)"},
    {0x0402, "Computer telephony device"},
    {0x0403, "High definition audio device"},
    {0x0500, "RAM"},
    {0x0501, "Flash memory"},
    {0x0502, "CXL memory device"},
    {0x0600, "Host bridge"},
    {0x0601, "ISA bridge"},
    {0x0602, "EISA bridge"},
    {0x0603, "MicroChannel bridge"},
    {0x0604, "PCI-to-PCI bridge"},
    {0x0605, "PCMCIA bridge"},
    {0x0606, "NuBus bridge"},
    {0x0607, "CardBus bridge"},
    {0x0608, "RACEway bridge"},
    {0x0609, "Semi-transparent PCI-to-PCI bridge"},
    {0x060A, "InfiniBand-to-PCI host bridge"},
    {0x060B, "Advanced Switching to PCI host bridge"},
    {0x0700, "Serial controller"},
    {0x0701, "Parallel controller"},
    {0x0702, "Multiport serial controller"},
    {0x0703, "Modem"},
    {0x0704, "GPIB controller"},
    {0x0705, "Smart card controller"},
    {0x0800, "Interrupt controller"},
    {0x0801, "DMA controller"},
    {0x0802, "Timer"},
    {0x0803, "Real-time clock"},
    {0x0804, "PCI hot-plug controller"},
    {0x0805, "SD host controller"},
    {0x0806, "IOMMU"},
    {0x0807, "Root complex event collector"},
    {0x0900, "Keyboard controller"},
    {0x0901, "Digitizer pen"},
    {0x0902, "Mouse controller"},
    {0x0903, "Scanner controller"},
    {0x0904, "Gameport controller"},
    {0x0B40, "Co-processor"},
    {0x0C00, "FireWire (IEEE 1394) controller"},
    {0x0C01, "ACCESS bus controller"},
    {0x0C02, "SSA controller"},
    {0x0C03, "USB controller"},
    {0x0C04, "Fibre Channel controller"},
    {0x0C05, "SMBus controller"},
    {0x0C06, "InfiniBand controller"},
    {0x0C07, "IPMI interface"},
    {0x0C08, "SERCOS interface"},
    {0x0C09, "CAN bus controller"},
    {0x0C0A, "MIPI I3C host controller"},
    {0x0D00, "IrDA controller"},
    {0x0D01, "Consumer infrared controller"},
    {0x0D10, "Radio frequency controller"},
    {0x0D11, "Bluetooth controller"},
    {0x0D12, "Broadband controller"},
    {0x0D20, "802.11a controller"},
    {0x0D21, "802.11b controller"},
    {0x0D40, "Cellular controller"},
    {0x0E00, "I2O controller"},
    {0x0F01, "Satellite TV controller"},
    {0x0F02, "Satellite audio controller"},
    {0x0F03, "Satellite voice controller"},
    {0x0F04, "Satellite data controller"},
    {0x1000, "Network and computing encryption controller"},
    {0x1010, "Entertainment encryption controller"},
    {0x1100, "DPIO module"},
    {0x1101, "Performance counters"},
    {0x1110, "Communication synchronizer"},
    {0x1120, "Signal processing management card"},
};

// Base class, subclass and programming interface.
constexpr NamedCode kInterfaces[] = {
    {0x010601, "SATA controller, AHCI"},
    {0x010802, "Non-volatile memory controller, NVMe"},
    {0x060401, "PCI-to-PCI bridge, subtractive decode"},
    {0x080010, "Interrupt controller, I/O APIC"},
    {0x080020, "Interrupt controller, I/O(x) APIC"},
    {0x0C0010, "FireWire (IEEE 1394) controller, OHCI"},
    {0x0C0300, "USB controller, UHCI (USB 1)"},
    {0x0C0310, "USB controller, OHCI (USB 1)"},
    {0x0C0320, "USB controller, EHCI (USB 2)"},
    {0x0C0330, "USB controller, xHCI (USB 3)"},
    {0x0C0340, "USB4 host interface"},
    {0x0C03FE, "USB device"},
};

template <std::size_t size>
const char* Find(const NamedCode (&table)[size], unsigned code) {
  const auto* row = std::find_if(std::begin(table), std::end(table),
                                 [code](const NamedCode& entry) { return entry.code == code; });
  return row == std::end(table) ? nullptr : row->text;
}

}  // namespace

std::string BaseClassText(unsigned baseClass) {
  const char* text = Find(kBaseClasses, baseClass);
  return text != nullptr ? text : fmt::format("class {:02x}", baseClass);
}

std::string ClassText(const ClassCode& code) {
  if (!code.baseClass) return "";
  if (!code.subclass) return BaseClassText(*code.baseClass);
  const unsigned number = (*code.baseClass << 8U) | *code.subclass;
  if (code.programmingInterface) {
    const char* text = Find(kInterfaces, (number << 8U) | *code.programmingInterface);
    if (text != nullptr) return text;
  }
  const char* text = Find(kSubclasses, number);
  return text != nullptr ? text : BaseClassText(*code.baseClass);
}

}  // namespace pciinfo
