// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/cim_class.h"

namespace fake {

/// Commits the instances of the invented machine for one of the seven classes; none for other
/// classes.
void MakeFixedInstances(NQZMVTQ20::ICIMClass& cimClass);

}  // namespace fake
