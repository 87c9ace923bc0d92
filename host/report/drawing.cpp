// SPDX-License-Identifier: Apache-2.0
#include "host/report/drawing.h"

namespace pciinfo {

// drawing.css has the same sizes.
Font FontOf(TextKind kind) {
  switch (kind) {
    case TextKind::kTitle:
      return {Face::kBold, 14};
    case TextKind::kName:
      return {Face::kSans, 13};
    case TextKind::kSlot:
      return {Face::kBold, 12};
    case TextKind::kDevice:
    case TextKind::kState:
    case TextKind::kNote:
      return {Face::kSans, 12};
    case TextKind::kAddress:
      return {Face::kMono, 11};
    case TextKind::kRemark:
    case TextKind::kNarrow:
      return {Face::kBold, 11};
    case TextKind::kLink:
      break;
  }
  return {Face::kSans, 11};
}

}  // namespace pciinfo
