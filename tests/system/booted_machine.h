#pragma once

#include <map>
#include <string>

#include "tests/system/guest.h"
#include "tests/system/machine.h"

/// The machine that this run of the tests is about, and what the programs in it answered. Set
/// before the first test.
struct BootedMachine {
  SystemMachine machine;
  std::map<std::string, Answer> answers;
};
extern BootedMachine booted;
