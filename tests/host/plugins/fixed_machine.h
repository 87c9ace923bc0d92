#pragma once

#include "framework/cim_class.h"

namespace fake {

/// Commits what the made-up machine has of one of the seven classes; nothing for other classes.
void MakeFixedInstances(NQZMVTQ20::ICIMClass& cimClass);

}  // namespace fake
