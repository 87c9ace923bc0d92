// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/cim_class.h"

namespace fake {

/// Creates the invented machine's instances of a class of the topology; nothing for other classes.
/// PCIEX16_1 holds a graphics card on a narrow link, PCIEX4_1 and PCIEX4_2 share a port with a
/// network card of two functions and a virtual one, PCIEX1 is empty, "To Be Filled By O.E.M." leads
/// nowhere, M2_1 contradicts itself, and a drive sits behind a port that nobody names.
void MakeTopologyInstances(NQZMVTQ20::ICIMClass& cimClass);

}  // namespace fake
