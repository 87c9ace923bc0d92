// SPDX-License-Identifier: Apache-2.0
#include "tests/host/report/read_machine.h"

#include "host/formats/json_reader.h"
#include "tests/host/fixed_repository.h"
#include "tests/host/run_program.h"

pciinfo::MachineModel MachineOfCapture(const std::string& capture) {
  std::vector<std::string> words = {"instances", "--format", "json", "--root", capture};
  const std::vector<std::string> classes = pciinfo::MachineClasses();
  words.insert(words.end(), classes.begin(), classes.end());
  const auto repository = MakeEmptyTopologyRepository();
  pciinfo::ReadInstances(RunPciinfo(words).out, *repository);
  return pciinfo::ReadMachine(*repository);
}
