// SPDX-License-Identifier: Apache-2.0
#include "host/machine/names.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <initializer_list>
#include <vector>

#include "host/console/text.h"
#include "host/model/pci_class_names.h"

namespace pciinfo {
namespace {

std::string InLowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

/// What firmware says where nobody has filled in a name.
bool IsPlaceholder(const std::string& name) {
  constexpr std::array<std::string_view, 22> kPlaceholders{"(null string)",
                                                           "null string",
                                                           "(null)",
                                                           "null",
                                                           "to be filled by o.e.m.",
                                                           "to be filled by oem",
                                                           "default string",
                                                           "not specified",
                                                           "not available",
                                                           "not applicable",
                                                           "n/a",
                                                           "o.e.m.",
                                                           "oem",
                                                           "undefined",
                                                           "unknown",
                                                           "none",
                                                           "system manufacturer",
                                                           "system product name",
                                                           "system version",
                                                           "invalid",
                                                           "<bad index>",
                                                           "empty"};
  if (name.find_first_not_of(".-_xX0 ") == std::string::npos) return true;
  constexpr std::size_t kLongest = std::string_view("to be filled by o.e.m.").size();
  return name.size() <= kLongest && std::find(kPlaceholders.begin(), kPlaceholders.end(),
                                              InLowerCase(name)) != kPlaceholders.end();
}

/// Leaves one blank between words, and none around them.
std::string WithSingleBlanks(std::string text) {
  const auto isSurplus = [](char left, char right) { return left == ' ' && right == ' '; };
  text.erase(std::unique(text.begin(), text.end(), isSurplus), text.end());
  if (text.ends_with(' ')) text.pop_back();
  if (text.starts_with(' ')) text.erase(0, 1);
  return text;
}

/// Words at the end of a maker's name that nobody says.
bool IsFormality(std::string_view word) {
  constexpr std::array<std::string_view, 34> kFormalities{"inc",
                                                          "corp",
                                                          "corporation",
                                                          "co",
                                                          "company",
                                                          "ltd",
                                                          "limited",
                                                          "llc",
                                                          "gmbh",
                                                          "ag",
                                                          "sa",
                                                          "bv",
                                                          "plc",
                                                          "pte",
                                                          "group",
                                                          "holdings",
                                                          "technology",
                                                          "technologies",
                                                          "semiconductor",
                                                          "semiconductors",
                                                          "electronics",
                                                          "electronic",
                                                          "microelectronics",
                                                          "international",
                                                          "communications",
                                                          "systems",
                                                          "system",
                                                          "computer",
                                                          "computers",
                                                          "enterprise",
                                                          "incorporated",
                                                          "solutions",
                                                          "subsidiaries",
                                                          "and"};
  std::string plain = InLowerCase(word);
  std::erase_if(plain, [](char c) { return c == '.' || c == ','; });
  return plain.empty() ||
         std::find(kFormalities.begin(), kFormalities.end(), plain) != kFormalities.end();
}

bool StartsWith(std::string_view text, std::string_view start) {
  const auto isSame = [](unsigned char left, unsigned char right) {
    return std::tolower(left) == std::tolower(right);
  };
  return text.size() >= start.size() &&
         std::equal(start.begin(), start.end(), text.begin(), isSame);
}

/// A kind of device, and words that tell it in the name of a model.
struct Kind {
  unsigned firstClass = 0;  ///< base class and subclass
  unsigned lastClass = 0;
  const char* name = "";
  std::initializer_list<std::string_view> words;
};

const Kind* KindOf(const MachineFunction& function) {
  static const std::array<Kind, 15> kKinds{{
      {0x0104, 0x0104, "RAID", {"raid", "smart array"}},
      {0x0105, 0x0106, "SATA", {"sata", "ahci", "ata"}},
      {0x0107, 0x0107, "SAS", {"sas", "raid", "hba", "smart array"}},
      {0x0108, 0x0108, "NVMe", {"nvme", "ssd", "non-volatile", "solid state", "optane"}},
      {0x0100, 0x0109, "storage", {"storage", "scsi", "ide", "raid", "sas"}},
      {0x0207, 0x0207, "InfiniBand", {"infiniband", "connectx", "connect-ib"}},
      {0x0200,
       0x0200,
       "Ethernet",
       {"ethernet", "gigabit", "gbe", "network", "10g", "25g", "40g", "100g", "nic", "connectx",
        "netxtreme", "lan"}},
      {0x0280,
       0x0280,
       "network",
       {"network", "wireless", "wi-fi", "wifi", "wlan", "802.11", "ethernet"}},
      {0x0300,
       0x03FF,
       "graphics",
       {"graphics", "vga", "display", "geforce", "quadro", "radeon", "tesla", "gpu", "firepro",
        "svga", "3d controller", "rtx"}},
      {0x0401, 0x0403, "audio", {"audio", "sound"}},
      {0x0C03, 0x0C03, "USB", {"usb", "xhci", "ehci", "uhci", "ohci", "thunderbolt"}},
      {0x0C04, 0x0C04, "Fibre Channel", {"fibre channel", "fc", "fiber channel"}},
      {0x1000, 0x10FF, "encryption", {"crypto", "encryption", "quickassist", "security", "psp"}},
      {0x1200, 0x12FF, "accelerator", {"accelerator", "gpu", "tesla", "accel"}},
      {0x0D00, 0x0DFF, "wireless", {"wireless", "wi-fi", "802.11"}},
  }};
  if (!function.baseClass || !function.subclass) return nullptr;
  const unsigned code = (*function.baseClass << 8U) | *function.subclass;
  const auto* kind = std::find_if(kKinds.begin(), kKinds.end(), [code](const Kind& row) {
    return code >= row.firstClass && code <= row.lastClass;
  });
  return kind == kKinds.end() ? nullptr : kind;
}

/// The kind of device in parentheses, if the model does not tell it.
std::string KindSuffix(const MachineFunction& function, const std::string& model) {
  const Kind* kind = KindOf(function);
  if (kind == nullptr) return "";
  const std::string lower = InLowerCase(model);
  const bool isTold = std::any_of(
      kind->words.begin(), kind->words.end(),
      [&lower](std::string_view word) { return lower.find(word) != std::string::npos; });
  return isTold ? "" : fmt::format(" ({})", kind->name);
}

}  // namespace

std::string NameIn(std::string_view text) {
  std::string name = WithSingleBlanks(Printable(text));
  if (IsPlaceholder(name)) name.clear();
  return name;
}

std::string ShortMaker(std::string_view name) {
  std::string maker = NameIn(name);
  const std::size_t bracket = maker.rfind('[');
  if (bracket != std::string::npos && bracket != 0 && maker.ends_with(']')) {
    return maker.substr(bracket + 1, maker.size() - bracket - 2);
  }
  for (std::size_t blank = maker.rfind(' ');
       blank != std::string::npos && IsFormality(std::string_view(maker).substr(blank + 1));
       blank = maker.rfind(' ')) {
    maker.resize(blank);
  }
  while (maker.ends_with(',')) maker.pop_back();
  return maker;
}

std::string MakerAndProduct(const std::string& maker, const std::string& product) {
  if (maker.empty() || product.empty()) return maker + product;
  return StartsWith(product, maker) ? product : maker + " " + product;
}

std::string IdText(const MachineFunction& function) {
  const auto id = [](const std::optional<unsigned>& number) {
    return number ? fmt::format("{:04x}", *number) : "????";
  };
  return id(function.vendorId) + ":" + id(function.deviceId);
}

std::string ClassName(const MachineFunction& function) {
  std::string name = NameIn(function.className);
  if (!name.empty()) return name;
  return ClassText({function.baseClass, function.subclass, function.programmingInterface});
}

std::string MakerAndModel(const MachineFunction& function) {
  const std::string model = NameIn(function.deviceName);
  return MakerAndProduct(ShortMaker(function.vendorName), model.empty() ? IdText(function) : model);
}

std::string KindWord(const MachineFunction& function) {
  const Kind* kind = KindOf(function);
  return kind == nullptr ? "" : kind->name;
}

std::string ModelText(const MachineFunction& function) {
  const std::string model = NameIn(function.deviceName);
  if (!model.empty()) return MakerAndModel(function) + KindSuffix(function, model);
  const std::string className = ClassName(function);
  return MakerAndProduct(ShortMaker(function.vendorName),
                         (className.empty() ? "" : className + " ") + IdText(function));
}

}  // namespace pciinfo
