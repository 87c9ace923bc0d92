// SPDX-License-Identifier: Apache-2.0
#include "tests/host/fixed_repository.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/base/namespace_name.h"
#include "tests/fakes/pci_schema.h"
#include "tests/host/plugins/fixed_machine.h"
#include "tests/host/plugins/fixed_topology.h"

std::shared_ptr<vtq::Namespace> MakeEmptyRepository() {
  auto repository = vtq::Namespace::Create(pciinfo::kNamespaceName);
  for (vtq::ClassSchema& schema : pciinfo::PciSchema()) repository->Declare(std::move(schema));
  return repository;
}

std::shared_ptr<vtq::Namespace> MakeFixedRepository() {
  auto repository = MakeEmptyRepository();
  for (const auto& cimClass : repository->GetClasses()) fake::MakeFixedInstances(*cimClass);
  return repository;
}

std::shared_ptr<vtq::Namespace> MakeEmptyTopologyRepository() {
  auto repository = vtq::Namespace::Create(pciinfo::kNamespaceName);
  for (vtq::ClassSchema& schema : pciinfo::LoadClasses(TOPOLOGY_CLASS_FILE)) {
    repository->Declare(std::move(schema));
  }
  return repository;
}

std::shared_ptr<vtq::Namespace> MakeTopologyRepository() {
  auto repository = MakeEmptyTopologyRepository();
  for (const auto& cimClass : repository->GetClasses()) fake::MakeTopologyInstances(*cimClass);
  return repository;
}

OutputToText::OutputToText() : descriptor_(memfd_create("output", 0)), output_(descriptor_) {}

OutputToText::~OutputToText() { close(descriptor_); }

std::string OutputToText::Text() {
  output_.Flush();
  struct stat status {};
  if (fstat(descriptor_, &status) != 0) return "no text";
  std::string text(static_cast<std::size_t>(status.st_size), '\0');
  const ssize_t count = pread(descriptor_, text.data(), text.size(), 0);
  text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return text;
}
