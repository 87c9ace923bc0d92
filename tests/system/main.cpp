// SPDX-License-Identifier: Apache-2.0

// Boots one machine and runs the tests on its output, or starts a shell in it.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tests/system/booted_machine.h"

BootedMachine booted;

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const bool wantsShell = argc == 3 && std::string(argv[1]) == "--shell";
  if (argc != 2 && !wantsShell) {
    std::fprintf(stderr, "usage: %s [--shell] tests/system/machines/NAME.json\n", argv[0]);
    return EXIT_FAILURE;
  }
  try {
    booted.machine = ReadMachine(argv[argc - 1]);
    if (wantsShell) GiveShell(booted.machine);
    booted.answers = Boot(booted.machine);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return EXIT_FAILURE;
  }
  if (booted.machine.expected.is_null()) testing::GTEST_FLAG(filter) = "TopologyTest.*";
  return RUN_ALL_TESTS();
}
