// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "host/machine/machine_model.h"

/// Runs the program on a capture and reads the machine from what it prints.
pciinfo::MachineModel MachineOfCapture(const std::string& capture);
