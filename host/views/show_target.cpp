// SPDX-License-Identifier: Apache-2.0
#include "host/views/show_target.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/base/errors.h"
#include "host/collect/query_order.h"
#include "host/formats/path_reader.h"
#include "host/machine/machine_filter.h"
#include "host/views/place_texts.h"

namespace pciinfo {
namespace {

bool IsPath(const std::string& name) { return name.starts_with('/'); }

/// "/root/cimv2:CLASS.KEY=..."
std::string ClassOfPath(const std::string& path) {
  const std::size_t start = std::min(path.find(':'), path.size() - 1) + 1;
  return path.substr(start, path.find('.', start) - start);
}

void FindPath(const vtq::Namespace& repository, const std::string& path, Shown& shown) {
  try {
    const NQZMVTQ20::TCIMReference reference = ReadPath(path, repository);
    shown.cimClass = repository.Find(reference.GetClassName());
    shown.instance = shown.cimClass->Find(reference.ToString());
  } catch (const PathError& error) {
    throw UsageError(fmt::format("{} is not an object path: {}", path, error.what()));
  }
  if (shown.instance != nullptr) return;
  throw NotFound(
      fmt::format("there is no instance {} (\"pciinfo instances {} --format jsonl\" "
                  "prints all paths)",
                  path, ClassOfPath(path)));
}

/// Returns the only one of several matches, or null if there is none.
template <class Match, class ToText>
const Match* Only(const std::vector<const Match*>& matches, const std::string& name,
                  const ToText& toText) {
  if (matches.empty()) return nullptr;
  if (matches.size() == 1) return matches.front();
  std::vector<std::string> texts;
  texts.reserve(matches.size());
  for (const Match* match : matches) texts.push_back(toText(*match));
  throw UsageError(fmt::format("\"{}\" stands for several things: {}; name one of them", name,
                               fmt::join(texts, ", ")));
}

std::string FullAddress(const MachineFunction& function) { return FormatAddress(function.address); }

const MachineFunction* FindAddress(const MachineModel& machine, const WrittenAddress& written,
                                   const std::string& name) {
  FunctionList matches;
  for (const MachineFunction& function : machine.functions) {
    const unsigned domain = written.domain.value_or(function.address.domain);
    if (function.address == DomainAddress{domain, written.address}) matches.push_back(&function);
  }
  const MachineFunction* function = Only(matches, name, FullAddress);
  if (function != nullptr) return function;
  throw NotFound(fmt::format("there is no function {} (\"pciinfo devices\" lists all)", name));
}

const MachineSlot* FindSlot(const MachineModel& machine, const std::string& name) {
  std::vector<const MachineSlot*> matches;
  for (const MachineSlot& slot : machine.slots) {
    if (IsNamed(slot, name)) matches.push_back(&slot);
  }
  return Only(matches, name,
              [&](const MachineSlot& slot) { return "\"" + NameOf(slot, machine) + "\""; });
}

const MachineFunction* FindDevice(const vtq::Namespace& repository, const MachineModel& machine,
                                  const std::string& name) {
  FunctionList matches;
  for (const DomainAddress& address : FunctionsWithDevice(repository, name)) {
    if (const MachineFunction* function = machine.Find(address)) matches.push_back(function);
  }
  return Only(matches, name, FullAddress);
}

void FindInMachine(const vtq::Namespace& repository, const std::string& name, Shown& shown) {
  if (const auto written = ParseAddress(name)) {
    shown.function = FindAddress(shown.machine, *written, name);
    return;
  }
  shown.slot = FindSlot(shown.machine, name);
  if (shown.slot != nullptr) return;
  shown.function = FindDevice(repository, shown.machine, name);
  if (shown.function != nullptr) return;
  throw NotFound(
      fmt::format("there is no function, slot or device \"{}\": \"pciinfo devices\" lists the "
                  "addresses, \"pciinfo slots\" the slots",
                  name));
}

}  // namespace

std::vector<std::string> ClassesToFind(const std::vector<vtq::ClassSchema>& declared,
                                       const std::string& name) {
  if (IsPath(name)) return PlanQuery(declared, {ClassOfPath(name)}).collect;
  std::vector<std::string> classes = MachineClasses();
  const bool hasDetails =
      std::any_of(declared.begin(), declared.end(),
                  [](const vtq::ClassSchema& schema) { return schema.name == kDetailsClass; });
  if (hasDetails) classes.emplace_back(kDetailsClass);
  return PlanQuery(declared, classes).collect;
}

std::unique_ptr<Shown> FindNamed(const vtq::Namespace& repository, const std::string& name) {
  auto shown = std::make_unique<Shown>();
  if (IsPath(name)) {
    FindPath(repository, name, *shown);
    return shown;
  }
  shown->machine = ReadMachine(repository);
  FindInMachine(repository, name, *shown);
  if (shown->function != nullptr) {
    shown->details = ReadDetails(repository, shown->function->address);
  }
  return shown;
}

}  // namespace pciinfo
