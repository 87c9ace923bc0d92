// bench_machine N FOLDER: writes the capture of a machine with N PCI functions.

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

#include "bench/machine_files.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: bench_machine FUNCTIONS FOLDER\n", stderr);
    return 2;
  }
  try {
    bench::WriteMachine(std::stoul(argv[1]), argv[2]);
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench_machine: no machine of %s functions in %s: %s\n", argv[1], argv[2],
                 failure.what());
    return 1;
  }
}
