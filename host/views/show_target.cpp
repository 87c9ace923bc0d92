// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_target.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/base/errors.h"
#include "host/collect/query_order.h"
#include "host/formats/path_reader.h"
#include "host/model/slot_name.h"

namespace pciinfo {
namespace {

bool IsPath(const std::string& name) { return name.starts_with('/'); }

/// "/root/cimv2:CLASS.KEY=..."
std::string ClassOfPath(const std::string& path) {
  const std::size_t start = std::min(path.find(':'), path.size() - 1) + 1;
  return path.substr(start, path.find('.', start) - start);
}

bool HasPath(const std::vector<PciFunction>& functions, const std::string& path) {
  return std::any_of(functions.begin(), functions.end(),
                     [&path](const PciFunction& function) { return function.path == path; });
}

/// Adds the function and slot that belong to an instance, if it is a function or a slot.
Shown WithFunctionAndSlot(const vtq::Namespace& repository, std::shared_ptr<vtq::Class> cimClass,
                          std::shared_ptr<vtq::Instance> instance) {
  const SlotsModel model = ReadSlots(repository);
  const std::string& className = cimClass->GetSchema().name;
  const std::string path = instance->GetPath();
  Shown shown;
  if (className == "QZMSG_PCIDevice" || className == "QZMSG_PCIBridge") {
    shown.function = ReadFunction(*cimClass, *instance);
    shown.isOnBoard = HasPath(model.onBoard, path);
  }
  for (const Slot& slot : model.slots) {
    if (slot.path == path || HasPath(slot.functions, path)) shown.slot = slot;
  }
  shown.cimClass = std::move(cimClass);
  shown.instance = std::move(instance);
  return shown;
}

Shown FindPath(const vtq::Namespace& repository, const std::string& path) {
  try {
    const NQZMVTQ20::TCIMReference reference = ReadPath(path, repository);
    const auto cimClass = repository.Find(reference.GetClassName());
    if (auto instance = cimClass->Find(reference.ToString())) {
      return WithFunctionAndSlot(repository, cimClass, std::move(instance));
    }
  } catch (const PathError& error) {
    throw UsageError(fmt::format("{} is not an object path: {}", path, error.what()));
  }
  throw NotFound(
      fmt::format("there is no instance {} (\"pciinfo instances {} --format jsonl\" "
                  "prints all paths)",
                  path, ClassOfPath(path)));
}

Shown FindFunction(const vtq::Namespace& repository, const WrittenAddress& written) {
  const std::string name = FormatAddress(written.address);
  if (written.domain.value_or(0) != 0) {
    throw NotFound(
        fmt::format("there is no function {:04x}:{}: only functions of PCI domain 0000 "
                    "are known (\"pciinfo devices\" lists them)",
                    *written.domain, name));
  }
  for (const PciFunction& function : ReadFunctions(repository)) {
    if (function.address != written.address) continue;
    const auto cimClass =
        repository.Find(function.kind == "bridge" ? "QZMSG_PCIBridge" : "QZMSG_PCIDevice");
    return WithFunctionAndSlot(repository, cimClass, cimClass->Find(function.path));
  }
  throw NotFound(fmt::format("there is no function {} (\"pciinfo devices\" lists all)", name));
}

Shown FindSlot(const vtq::Namespace& repository, const std::string& name) {
  std::vector<std::string> matches;
  std::string path;
  for (const Slot& slot : ReadSlots(repository).slots) {
    if (!IsNamed(slot, name)) continue;
    matches.push_back(fmt::format("{} ({})", slot.tag, SlotName(slot)));
    path = slot.path;
  }
  if (matches.empty()) {
    throw NotFound(
        fmt::format("there is no function or slot \"{}\": \"pciinfo devices\" lists "
                    "the addresses, \"pciinfo slots\" the slot IDs, designations and "
                    "tags",
                    name));
  }
  if (matches.size() > 1) {
    throw UsageError(fmt::format("several slots are called \"{}\": {}; use the tag", name,
                                 fmt::join(matches, ", ")));
  }
  const auto cimClass = repository.Find("QZMSG_SystemSlot");
  return WithFunctionAndSlot(repository, cimClass, cimClass->Find(path));
}

}  // namespace

std::vector<std::string> ClassesToFind(const std::vector<vtq::ClassSchema>& declared,
                                       const std::string& name) {
  std::vector<std::string> classes = {"QZMSG_DeviceInSlot", "QZMSG_OnBoardDevice"};
  if (IsPath(name)) classes.push_back(ClassOfPath(name));
  return PlanQuery(declared, classes).collect;
}

Shown FindNamed(const vtq::Namespace& repository, const std::string& name) {
  if (IsPath(name)) return FindPath(repository, name);
  if (const auto written = ParseAddress(name)) return FindFunction(repository, *written);
  return FindSlot(repository, name);
}

}  // namespace pciinfo
