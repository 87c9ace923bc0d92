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
#include "host/diff/diff.h"
#include "host/diff/diff_view.h"
#include "host/formats/json_reader.h"
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
  for (const vtq::ClassSchema& schema : declared) {
    for (const vtq::PropertySchema& property : schema.properties) known.insert(property.name);
  }
  for (const std::string& name : ignored) {
    if (known.count(name) != 0) continue;
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

void TellLeftOut(const DiffSide& side, const std::vector<std::string>& classes) {
  if (classes.empty()) return;
  WriteMessage(fmt::format("{0}: not comparing {1}: this side has no instances of them", side.name,
                           fmt::join(classes, ", ")));
}

ExitStatus CompareAndPrint(const Options& options, const Classes& declared, const DiffSide& before,
                           const DiffSide& after, Worker& worker) {
  worker.Confine({});
  worker.Begin({"comparing", true, true});
  const auto oldRepository = ReadSide(before, declared);
  const auto newRepository = ReadSide(after, declared);
  const std::set<std::string> ignored(options.ignored.begin(), options.ignored.end());
  const DiffResult result = Compare({oldRepository.get(), before.isCollected},
                                    {newRepository.get(), after.isCollected}, ignored);
  worker.BeginOutput();
  TellLeftOut(before, result.onlyNew);
  TellLeftOut(after, result.onlyOld);
  if (!result.hasCompared && !(result.onlyOld.empty() && result.onlyNew.empty())) {
    throw std::runtime_error("the two sides have no class in common: there is nothing to compare");
  }
  Output output(STDOUT_FILENO);
  const auto write = options.format == "json" ? &WriteDiffJson : &WriteDiff;
  write(output, {before.name, after.name, ignored}, result);
  output.Flush();
  return static_cast<ExitStatus>(result.changes.empty() ? kSaidSame : kSaidDifferent);
}

ExitStatus AnswerOf(int verdict, bool hasTroubles) {
  if (verdict == kPipeClosed) return kPipeClosed;
  if (hasTroubles || (verdict != kSaidSame && verdict != kSaidDifferent)) return kDiffTrouble;
  return verdict == kSaidSame ? kSidesEqual : kSidesDiffer;
}

ExitStatus CompareSides(const Options& options, const WorkRunner& compare,
                        const CommandRunner& view) {
  CheckSides(options);
  const PluginSet plugins = FindPlugins(options.plugins);
  RequireInventoryClasses(plugins);
  const Classes& declared = plugins.declared.classes;
  CheckIgnored(options.ignored, declared);
  const DiffSide before = ReadDiffSide(options.diffBefore, options, view);
  const DiffSide after = ReadDiffSide(options.diffAfter, options, view);
  const ExitStatus verdict = compare(
      [&](Worker& worker) { return CompareAndPrint(options, declared, before, after, worker); });
  return AnswerOf(verdict, before.hasTroubles || after.hasTroubles);
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
