// SPDX-License-Identifier: Apache-2.0
#include "host/cli/diff_command.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <set>
#include <stdexcept>
#include <tuple>

#include "host/base/errors.h"
#include "host/base/namespace_name.h"
#include "host/cli/jobs.h"
#include "host/console/output.h"
#include "host/diff/identity_facts.h"
#include "host/diff/machine_diff.h"
#include "host/diff/machine_diff_view.h"
#include "host/formats/json_reader.h"
#include "host/instance_diff/instance_diff.h"
#include "host/instance_diff/instance_diff_view.h"
#include "host/process/guarded_run.h"

namespace pciinfo {
namespace {

using Classes = std::vector<vtq::ClassSchema>;

/// Exit statuses of the process that compares. They differ from those of failures, so that the
/// waiting process can distinguish a difference from a failure.
enum Verdict : int { kSaidSame = 0, kSaidDifferent = 10 };

void CheckSides(const Options& options) {
  const auto& [before, after] = std::tie(options.diffBefore, options.diffAfter);
  if (before == "live" && after == "live") {
    throw UsageError(
        "both sides are this machine: compare it with a capture or a JSON file (write \"./live\" "
        "for a file named \"live\")");
  }
  if (before == "-" && after == "-") throw UsageError("only one side can be standard input");
  if (before.empty() || after.empty()) throw UsageError("the name of a side is empty");
  if (!options.root.empty()) {
    throw UsageError(
        "diff takes captures as its sides: leave out --root and name the capture as a side");
  }
  if (!options.logFile.empty()) {
    throw UsageError("diff does not take --log-file: use it with another command for one side");
  }
}

void CheckIgnored(const std::vector<std::string>& ignored, const Classes& declared) {
  std::set<std::string> known(DerivedProperties().begin(), DerivedProperties().end());
  for (std::string& name : DerivedMachineProperties()) known.insert(std::move(name));
  for (const vtq::ClassSchema& schema : declared) {
    for (const vtq::PropertySchema& property : schema.properties) known.insert(property.name);
  }
  for (const std::string& name : ignored) {
    if (known.contains(name)) continue;
    throw UsageError(fmt::format("--ignore: there is no property \"{}\"; the properties are {}",
                                 name, fmt::join(known, ", ")));
  }
}

std::shared_ptr<vtq::Namespace> ReadSide(const DiffSide& side, const Classes& declared) {
  std::shared_ptr<vtq::Namespace> repository = vtq::Namespace::Create(kNamespaceName);
  for (const vtq::ClassSchema& schema : declared) repository->Declare(schema);
  try {
    ReadInstances(side.json, *repository);
  } catch (const JsonInputError& error) {
    throw std::runtime_error(side.name + ": " + error.what());
  }
  return repository;
}

void TellLeftOut(const std::string& side, const std::vector<std::string>& classes) {
  if (classes.empty()) return;
  WriteMessage(fmt::format("{}: not comparing {}: this side has no instances of them", side,
                           fmt::join(classes, ", ")));
}

/// What is written, and how.
struct DiffOutput {
  DiffHeading heading;
  bool asJson = false;
  bool all = false;
};

bool PrintInstanceDiff(const DiffOutput& form, const InstanceDiffInput& before,
                       const InstanceDiffInput& after, Output& output) {
  const InstanceDiff diff = CompareInstances(before, after, form.heading.ignored);
  TellLeftOut(form.heading.before, diff.onlyNew);
  TellLeftOut(form.heading.after, diff.onlyOld);
  if (!diff.hasCompared && !(diff.onlyOld.empty() && diff.onlyNew.empty())) {
    throw std::runtime_error("the two sides have no class in common: there is nothing to compare");
  }
  const auto write = form.asJson ? &WriteInstanceDiffJson : &WriteInstanceDiff;
  write(output, form.heading, diff);
  return diff.changes.empty();
}

bool PrintMachineDiff(const DiffOutput& form, const MachineState& before, const MachineState& after,
                      Output& output) {
  const MachineDiff diff = CompareMachines(before, after, {form.all, form.heading.ignored});
  for (const std::string& line : NotComparedLines(form.heading, diff)) WriteMessage(line);
  if (form.asJson) {
    WriteMachineDiffJson(output, form.heading, diff);
  } else {
    const bool hasDomains = before.model.HasDomains() || after.model.HasDomains();
    WriteMachineDiff(output, form.heading, diff, hasDomains);
  }
  return diff.changes.empty();
}

MachineState StateOf(const DiffSide& side, const vtq::Namespace& repository) {
  if (side.identity.empty()) return ReadState(repository, std::nullopt);
  return ReadState(repository, ReadIdentityLine(side.identity));
}

/// The two sides of a comparison.
struct SidePair {
  Compared compared = Compared::kMachines;
  DiffSide before;
  DiffSide after;
};

DiffOutput OutputFor(const Options& options) {
  return {{options.diffBefore, options.diffAfter, {options.ignored.begin(), options.ignored.end()}},
          options.format == "json",
          options.showAll};
}

ExitStatus CompareAndPrint(const Options& options, const Classes& declared, const SidePair& sides,
                           Worker& worker) {
  worker.Confine({});
  worker.Begin({"comparing", true, true});
  const auto before = ReadSide(sides.before, declared);
  const auto after = ReadSide(sides.after, declared);
  worker.BeginOutput();
  Output output(STDOUT_FILENO);
  const DiffOutput form = OutputFor(options);
  const bool areSame = sides.compared == Compared::kMachines
                           ? PrintMachineDiff(form, StateOf(sides.before, *before),
                                              StateOf(sides.after, *after), output)
                           : PrintInstanceDiff(form, {before.get(), sides.before.isCollected},
                                               {after.get(), sides.after.isCollected}, output);
  output.Flush();
  return static_cast<ExitStatus>(areSame ? kSaidSame : kSaidDifferent);
}

ExitStatus AnswerOf(int verdict, bool hasTroubles) {
  if (verdict == kPipeClosed) return kPipeClosed;
  if (hasTroubles || (verdict != kSaidSame && verdict != kSaidDifferent)) return kDiffTrouble;
  return verdict == kSaidSame ? kSidesEqual : kSidesDiffer;
}

/// Machines are compared unless a file of saved instances does not tell of its machine.
Compared ComparedIn(const DiffSource& before, const DiffSource& after) {
  if (before.TellsMachine() && after.TellsMachine()) return Compared::kMachines;
  for (const auto& [source, other] : {std::tie(before, after), std::tie(after, before)}) {
    if (source.TellsMachine() || !other.TellsMachine()) continue;
    WriteMessage(fmt::format(
        "{}: comparing instances, because this file has neither {} nor {} (\"pciinfo instances "
        "--all\" saves them)",
        source.name, kFunctionClass, kSlotClass));
  }
  return Compared::kInstances;
}

SidePair ReadSides(const Options& options, const PluginSet& plugins, const CommandRunner& view) {
  DiffSource before = OpenDiffSource(options.diffBefore, options);
  DiffSource after = OpenDiffSource(options.diffAfter, options);
  const Compared compared = ComparedIn(before, after);
  compared == Compared::kMachines ? RequireMachineClasses(plugins)
                                  : RequireInventoryClasses(plugins);
  DiffSide old = ReadDiffSide(std::move(before), compared, options, view);
  return {compared, std::move(old), ReadDiffSide(std::move(after), compared, options, view)};
}

ExitStatus CompareSides(const Options& options, const WorkRunner& compare,
                        const CommandRunner& view) {
  CheckSides(options);
  const PluginSet plugins = FindPlugins(options.plugins);
  const Classes& declared = plugins.declared.classes;
  CheckIgnored(options.ignored, declared);
  const SidePair sides = ReadSides(options, plugins, view);
  const ExitStatus verdict =
      compare([&](Worker& worker) { return CompareAndPrint(options, declared, sides, worker); });
  return AnswerOf(verdict, sides.before.hasTroubles || sides.after.hasTroubles);
}

}  // namespace

ExitStatus RunDiff(const Options& options, const WorkRunner& compare, const CommandRunner& view) {
  std::optional<ExitStatus> answer;
  const ExitStatus status = RunGuarded([&] {
    answer = CompareSides(options, compare, view);
    return *answer;
  });
  if (answer) return *answer;
  return status == kPipeClosed ? kPipeClosed : kDiffTrouble;  // the comparison threw
}

}  // namespace pciinfo
