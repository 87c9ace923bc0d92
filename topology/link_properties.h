// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>

#include "topology/config_facts.h"
#include "topology/properties.h"

namespace topology {

/// Million transfers a second on each lane; nothing for reserved codes of speed, of which nobody
/// knows what they mean, and for a width of 0, which means that there is no link.
inline std::optional<std::uint32_t> RateOf(const Link& link) {
  const std::uint32_t rate = TransferRate(link.speed);
  return link.width != 0 && rate != 0 ? std::optional(rate) : std::nullopt;
}

/// Sets speed, as words and as a number, and width that a link can have.
inline void SetMaxLink(const Express& express, PropertyWriter& writer) {
  if (express.most.width == 0) return;
  writer.Set("MaxLinkSpeed", SpeedText(express.most.speed));
  writer.Set("MaxLinkTransferRate", RateOf(express.most));
  writer.Set("MaxLinkWidth", express.most.width);
}

/// Sets speed and width that it has now.
inline void SetLinkNow(const Express& express, PropertyWriter& writer) {
  if (express.now.width == 0) return;
  writer.Set("LinkSpeed", SpeedText(express.now.speed));
  writer.Set("LinkTransferRate", RateOf(express.now));
  writer.Set("LinkWidth", express.now.width);
}

}  // namespace topology
