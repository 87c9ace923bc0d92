// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace topology {

/// Sizes of configuration space in bytes: of conventional PCI, and of PCI Express.
inline constexpr std::size_t kConventionalSize = 0x100;
inline constexpr std::size_t kExtendedSize = 0x1000;

/// A capability of a function (PCI Local Bus 3.0, 6.7) or an extended one (PCI Express 5.0, 7.6.3).
struct Capability {
  std::uint16_t id = 0;
  std::uint16_t offset = 0;  ///< of its first byte in configuration space
};

/// The configuration space of one function, or the front part of it that could be read: 64 bytes
/// for users without privileges, 256 for conventional functions, 4096 for PCI Express.
class ConfigSpace {
 public:
  ConfigSpace() = default;
  explicit ConfigSpace(std::string bytes) : bytes_(std::move(bytes)) {}

  std::size_t GetSize() const noexcept { return bytes_.size(); }
  const std::string& GetBytes() const noexcept { return bytes_; }

  /// Little-endian numbers; nothing where the bytes were not read.
  std::optional<std::uint8_t> Byte(std::size_t offset) const noexcept;
  std::optional<std::uint16_t> Word(std::size_t offset) const noexcept;
  std::optional<std::uint32_t> Dword(std::size_t offset) const noexcept;

  /// The capabilities in the order of their list; empty when there is no list or it was not read.
  /// A list that leads back to itself or outside ends there.
  std::vector<Capability> GetCapabilities() const;
  /// The same for the extended capabilities from offset 0x100 on.
  std::vector<Capability> GetExtendedCapabilities() const;
  /// Whether the bytes reach far enough to hold capabilities.
  bool HoldsCapabilities() const noexcept { return bytes_.size() >= kConventionalSize; }

 private:
  std::uint32_t At(std::size_t offset) const noexcept {
    return static_cast<unsigned char>(bytes_[offset]);
  }

  std::string bytes_;
};

/// The offset of the first capability with that identifier.
std::optional<std::uint16_t> FindCapability(const std::vector<Capability>& list, std::uint16_t id);

}  // namespace topology
