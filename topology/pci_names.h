// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace topology {

/// The names of PCI IDs, from the text of the file pci.ids. A name that the file lacks is empty.
class PciNames {
 public:
  /// `text` is the whole file. Reading it takes one pass that finds vendors and classes.
  explicit PciNames(std::string text = {});
  PciNames(PciNames&&) = default;
  PciNames& operator=(PciNames&&) = default;

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
  /// Where the block of a vendor or base class stands in the text.
  struct Place {
    unsigned id;
    std::size_t begin;
    std::size_t end;
  };

  static std::optional<Block> FindIn(std::string_view lines, std::string_view indented);
  std::optional<Block> FindTop(unsigned id) const;
  std::optional<Block> FindDevice(std::uint16_t vendor, std::uint16_t device) const;
  std::optional<Block> FindSubclass(std::uint32_t classCode) const;

  std::string text_;
  std::vector<Place> places_;  ///< in the order of their IDs
};

}  // namespace topology
