// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace topology {

/// The names of PCI IDs, from the text of the file pci.ids. A name that the file lacks is empty.
class PciNames {
 public:
  PciNames() = default;
  /// `text` is the whole file. Reading it takes one pass over its lines; looking a name up reads
  /// the lines of one vendor.
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

  static std::optional<Block> FindIn(std::string_view lines, std::string_view indented);
  const Block* FindVendor(std::uint16_t vendor) const;

  std::string text_;
  Blocks vendors_;
  Blocks classes_;
};

}  // namespace topology
