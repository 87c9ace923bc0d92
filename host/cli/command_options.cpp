// SPDX-License-Identifier: Apache-2.0
#include "host/cli/command_options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>

#include "host/cli/fleet_options.h"
#include "host/cli/option_values.h"
#include "host/cli/store_options.h"
#include "host/formats/instance_writer.h"
#include "host/schema/schema_writer.h"
#include "host/views/devices_view.h"

namespace pciinfo {
namespace {

constexpr const char* kCheckFooter =
    "Severities of findings: error (something has failed), warning (it works worse than it could, "
    "or\n"
    "may have failed), note (worth knowing before work on the machine). What is not known is no\n"
    "finding.\n"
    "\n"
    "Exit status:\n"
    "  0    no finding is as grave as --fail-on says; a machine without PCI has none\n"
    "  1    there is such a finding, or something could not be collected or written\n"
    "  2    the command line is wrong\n"
    "\n"
    "The options of \"pciinfo --help\" can be given here as well.\n";

constexpr const char* kDiffFooter =
    "A side is a capture (a directory or an archive), a JSON file that \"pciinfo instances\"\n"
    "printed, - to read either of them from standard input, or \"live\" for this machine.\n"
    "--timeout and --memory-limit apply to each side.\n"
    "\n"
    "What only one side tells is no difference; standard error says what that is. Files that\n"
    "\"instances\" printed without --all are compared instance by instance.\n"
    "\n"
    "Exit status (unlike other commands):\n"
    "  0    no differences\n"
    "  1    differences\n"
    "  2    the command line is wrong, or something could not be collected, read or written\n"
    "\n"
    "The options of \"pciinfo --help\" can be given here as well.\n";

constexpr const char* kReportFooter =
    "Two captures are compared, the first as the old machine.\n"
    "The page is one file of HTML that loads nothing. Only its owner may read it. It replaces an\n"
    "older file of that name; a directory or device of that name is refused.\n"
    "\n"
    "The options of \"pciinfo --help\" can be given here as well.\n";

/// Formats of lists: `devices` and `slots`.
const std::vector<std::string> kListFormats = {"table", "json", "jsonl", "csv", "yaml"};

/// Refuses a format that only other commands have, and says what has it; empty for other words.
std::string ElsewhereOnly(const std::string& format, const std::vector<std::string>& formats) {
  const std::vector<std::string> all = InstanceFormats();
  const auto isOf = [&format](const std::vector<std::string>& some) {
    return std::find(some.begin(), some.end(), format) != some.end();
  };
  if (!isOf(all) || isOf(formats)) return "";
  const bool isOfLists = isOf(kListFormats);
  const bool hasJson = std::find(formats.begin(), formats.end(), "json") != formats.end();
  return fmt::format("this command has no {}: use {}, or \"pciinfo {} --format {}\" for {}", format,
                     hasJson ? "json" : formats.back(),
                     isOfLists ? "devices" : "instances VTQ_PCIFunction", format,
                     isOfLists ? "a list of the functions" : "instances");
}

void AddColumns(CLI::App& command, Options& options, const std::vector<std::string>& columns) {
  command
      .add_option("--columns", options.columns,
                  "With table and csv: show these columns, in this order")
      ->type_name("NAME,...")
      ->delimiter(',')
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false)
      ->check(CLI::IsMember(columns));
}

void AddSeverity(CLI::App& command, const char* name, Severity& severity, const char* description) {
  const std::vector<std::string> names = {"note", "warning", "error"};
  command
      .add_option_function<std::string>(
          name, [&severity](const std::string& text) { severity = SeverityOf(text); }, description)
      ->type_name("SEVERITY")
      ->check(CLI::IsMember(names))
      ->default_str(SeverityText(severity));
}

void AddInstancesOptions(CLI::App& instances, Options& options) {
  CLI::Option* classes = instances.add_option("CLASS", options.classes,
                                              "Classes to print (default: those of the inventory)");
  instances.add_flag("--all", options.showAll, "Print every class (see \"pciinfo classes\")")
      ->excludes(classes);
  AddFormat(instances, options.format, InstanceFormats());
}

void AddCheckOptions(CLI::App& check, Options& options) {
  check.add_flag("--classes", options.checksClasses,
                 "Check what the seven classes of the inventory say instead of the machine");
  AddSeverity(check, "--fail-on", options.failOn, "Fail if a finding is at least as grave");
  AddSeverity(check, "--min-severity", options.findingChoice.least,
              "Leave out findings that are less grave; they do not fail");
  check
      .add_option("--ignore", options.findingChoice.ignored,
                  "Leave out findings with this code; may be repeated")
      ->type_name("CODE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false)
      ->check(CLI::Validator(IsFindingCode, ""));
  AddFormat(check, options.format, {"table", "json"});
  check.footer(kCheckFooter);
}

void AddDiffOptions(CLI::App& diff, Options& options) {
  diff.add_option("A", options.diffBefore, "The old machine: a capture, JSON, - or live")
      ->type_name("CAPTURE")
      ->required();
  diff.add_option("B", options.diffAfter, "The new machine")->type_name("CAPTURE")->required();
  diff.add_option("--ignore", options.ignored, "Ignore changes of this property; may be repeated")
      ->type_name("PROPERTY")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
  diff.add_flag("--all", options.showAll,
                "Compare every property of functions and slots, also regions and interrupts");
  AddFormat(diff, options.format, {"table", "json"});
  diff.footer(kDiffFooter);
}

void AddSlotsOptions(CLI::App& slots, Options& options) {
  AddFormat(slots, options.format, kListFormats);
  AddColumns(slots, options, SlotColumns());
  CLI::Option* free = slots.add_flag_callback(
      "--free", [&options] { options.slotChoice = SlotChoice::kFree; },
      "Show only slots that are known to be empty");
  slots
      .add_flag_callback(
          "--occupied", [&options] { options.slotChoice = SlotChoice::kOccupied; },
          "Show only slots that are known to hold a card")
      ->excludes(free);
}

void AddDevicesOptions(CLI::App& devices, Options& options) {
  AddFormat(devices, options.format, kListFormats);
  AddColumns(devices, options, DeviceColumns());
}

void AddTreeOptions(CLI::App& tree, Options& options) {
  AddFormat(tree, options.format, {"table", "json", "svg", "dot"});
  tree.add_flag("--all", options.showAll, "Show every function; do not fold similar ones");
}

void AddShowOptions(CLI::App& show, Options& options) {
  show.add_option(
          "NAME", options.target,
          "Address of a function, name or ID of a slot, network interface, block device, or object "
          "path")
      ->required();
  AddFormat(show, options.format, {"table", "json"});
}

void AddReportOptions(CLI::App& report, Options& options) {
  report
      .add_option("FILE", options.reportFile,
                  "The page to write, NAME.html, or - for standard output")
      ->required();
  report.add_option("CAPTURE", options.reportCaptures,
                    "Draw these captured machines, or all in a directory (default: this machine)");
  report.footer(kReportFooter);
}

void AddFleetCommandOptions(CLI::App& fleet, Options& options) {
  AddFleetOptions(fleet, options.database, options.fleet);
  AddFormat(fleet, options.format, kListFormats);
}

void AddSchemaOptions(CLI::App& schema, Options& options) {
  AddFormat(schema, options.schemaFormat, SchemaFormats());
}

void AddCaptureOptions(CLI::App& capture, Options& options) {
  capture
      .add_option("FILE", options.captureFile,
                  "NAME.tar.zst, NAME.tar.gz, NAME.tar, a new directory, or - for standard output")
      ->required();
  capture.add_flag("--redact", options.redact,
                   "Blank serial numbers, asset tags, UUIDs and the system's name");
}

struct CommandDefinition {
  const char* name;
  const char* description;
  Command command;
  void (*addOptions)(CLI::App& command, Options& options);  ///< null: it has none of its own
};

/// In the order in which the help shows them.
constexpr CommandDefinition kCommands[] = {
    {"instances", "Print the instances of CIM classes", Command::kInstances, AddInstancesOptions},
    {"classes", "Print the plug-ins and the classes that they provide", Command::kClasses, nullptr},
    {"slots", "Print the slots, and which card sits in which", Command::kSlots, AddSlotsOptions},
    {"devices", "Print every PCI function", Command::kDevices, AddDevicesOptions},
    {"tree", "Print the buses as a tree", Command::kTree, AddTreeOptions},
    {"show", "Print everything known about a function, slot, network interface or block device",
     Command::kShow, AddShowOptions},
    {"check", "Report what has failed or works worse than it could", Command::kCheck,
     AddCheckOptions},
    {"metrics", "Print metrics for Prometheus (OpenMetrics text)", Command::kMetrics, nullptr},
    {"diff", "Compare two machines or captures", Command::kDiff, AddDiffOptions},
    {"report", "Write a page with a drawing of the machine", Command::kReport, AddReportOptions},
    {"store", "Write machines into a database, with their history", Command::kStore,
     AddStoreOptions},
    {"fleet", "Ask a database of many machines", Command::kFleet, AddFleetCommandOptions},
    {"schema", "Print the declarations of the classes", Command::kSchema, AddSchemaOptions},
    {"capture", "Save everything that pciinfo reads from this machine to a file", Command::kCapture,
     AddCaptureOptions},
};

void AddCommand(CLI::App& app, const CommandDefinition& definition, Options& options,
                CommandsWithOptions which) {
  CLI::App* command = app.add_subcommand(definition.name, definition.description);
  command->fallthrough();  // global options may follow the command
  command->footer("The options of \"pciinfo --help\" can be given here as well.\n");
  command->callback([&options, &definition] { options.command = definition.command; });
  if (definition.addOptions == nullptr) return;
  if (which == CommandsWithOptions::kAll) return definition.addOptions(*command, options);
  command->preparse_callback([command, &definition, &options](std::size_t /*words*/) {
    definition.addOptions(*command, options);
  });
}

}  // namespace

void AddFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats) {
  command.add_option("--format", format, "Output format")
      ->type_name("FORMAT")
      ->check(
          CLI::Validator([formats](std::string& name) { return ElsewhereOnly(name, formats); }, ""))
      ->check(CLI::IsMember(formats))
      ->capture_default_str();
}

void AddCommands(CLI::App& app, Options& options, CommandsWithOptions which) {
  for (const CommandDefinition& definition : kCommands) {
    AddCommand(app, definition, options, which);
  }
  app.require_subcommand(0, 1);
}

}  // namespace pciinfo
