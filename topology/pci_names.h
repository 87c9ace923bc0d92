// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace topology {

/// The names of PCI IDs, from the text of the file pci.ids. A name that the file lacks is empty.
class PciNames {
 public:
  PciNames() = default;
  /// `text` is the whole file. Reading it takes one pass over its lines; the first lookup of a
  /// device takes one over the lines of its vendor.
  explicit PciNames(std::string text);

  std::string_view Vendor(std::uint16_t vendor) const;
  std::string_view Device(std::uint16_t vendor, std::uint16_t device) const;
  /// The name of a card with these subsystem IDs. Some makers put IDs of another device there,
  /// whose name it is then.
  std::string_view Subsystem(std::uint16_t vendor, std::uint16_t device,
                             std::uint16_t subsystemVendor, std::uint16_t subsystem) const;
  /// The name of the subclass, else of the base class. `classCode` is 0xBBSSPP.
  std::string_view Class(std::uint32_t classCode) const;
  std::string_view ProgrammingInterface(std::uint32_t classCode) const;

 private:
  struct Block {
    std::string_view name;
    std::string_view lines;  ///< those that are indented below it
  };
  using Blocks = std::map<unsigned, Block>;
  /// IDs of devices, and the offsets of their lines in those of the vendor.
  using Devices = std::vector<std::pair<std::uint16_t, std::uint32_t>>;

  static Devices DevicesIn(std::string_view lines);
  static std::optional<Block> FindIn(std::string_view lines, std::string_view indented);
  const Block* FindVendor(std::uint16_t vendor) const;
  std::optional<Block> FindDevice(std::uint16_t vendor, std::uint16_t device) const;

  std::string text_;
  Blocks vendors_;
  Blocks classes_;
  mutable std::map<unsigned, Devices> devices_;  ///< of the vendors that were asked for
};

}  // namespace topology
