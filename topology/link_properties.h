// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "topology/config_facts.h"
#include "topology/properties.h"

namespace topology {

/// Sets speed and width of a link, now and at most. A width of 0 means that there is no link.
inline void SetLink(const Express& express, PropertyWriter& writer) {
  if (express.most.width != 0) {
    writer.Set("MaxLinkSpeed", SpeedText(express.most.speed));
    writer.Set("MaxLinkWidth", express.most.width);
  }
  if (express.now.width != 0) {
    writer.Set("LinkSpeed", SpeedText(express.now.speed));
    writer.Set("LinkWidth", express.now.width);
  }
}

}  // namespace topology
