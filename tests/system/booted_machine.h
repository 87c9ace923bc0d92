// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

#include "tests/system/guest.h"
#include "tests/system/machine.h"

/// The machine of this run of the tests, and the output of the programs in it. Set before the first
/// test.
struct BootedMachine {
  SystemMachine machine;
  std::map<std::string, Answer> answers;
};
extern BootedMachine booted;
