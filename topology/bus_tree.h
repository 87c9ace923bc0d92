// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "topology/machine.h"

namespace topology {

/// Which bridge leads to which function. Functions are meant by their place in the vector that the
/// tree was made of, which must outlive it and be sorted by address.
class BusTree {
 public:
  explicit BusTree(const std::vector<Function>& functions);

  /// The bridge whose secondary bus the function is on; nothing for functions on a root bus. For a
  /// bus that no bridge begins, as virtual functions may use, the innermost bridge whose range
  /// holds it. A parent always stands on a bus with a lower number, so there are no circles.
  std::optional<std::size_t> GetParent(std::size_t function) const { return parents_[function]; }

  /// The functions whose parent this bridge is, in the order of their addresses.
  const std::vector<std::size_t>& GetChildren(std::size_t bridge) const {
    return children_[bridge];
  }
  /// The functions on root buses.
  const std::vector<std::size_t>& GetRoots() const { return roots_; }

  std::optional<std::size_t> Find(const Address& address) const;
  /// The functions of the device that the address is of: [first, last).
  std::pair<std::size_t, std::size_t> FindDevice(const Address& address) const;
  /// The functions on a bus: [first, last).
  std::pair<std::size_t, std::size_t> FindBus(std::uint32_t domain, std::uint8_t bus) const;
  /// The bridge whose secondary bus this is.
  std::optional<std::size_t> FindBridgeTo(std::uint32_t domain, std::uint8_t bus) const;
  bool HasDomain(std::uint32_t domain) const;

  const Function& At(std::size_t function) const { return functions_[function]; }

 private:
  std::optional<std::size_t> FindParent(const Address& address) const;

  const std::vector<Function>& functions_;
  std::map<std::uint64_t, std::size_t> bridgeTo_;  // by the domain and number of its secondary bus
  std::vector<std::optional<std::size_t>> parents_;
  std::vector<std::vector<std::size_t>> children_;
  std::vector<std::size_t> roots_;
};

}  // namespace topology
