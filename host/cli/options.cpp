// SPDX-License-Identifier: Apache-2.0
#include "host/cli/options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/base/errors.h"
#include "host/cli/fleet_options.h"
#include "host/cli/option_values.h"
#include "host/cli/store_options.h"
#include "host/cli/suggestion.h"
#include "host/formats/instance_writer.h"
#include "host/replay/protection.h"
#include "host/schema/schema_writer.h"
#include "host/views/devices_view.h"

namespace pciinfo {
namespace {

constexpr const char* kFooter =
    "Formats without a command: table (for people), json, jsonl (everything in one line, for\n"
    "databases), redfish (resources of DSP0268), netbox (rows for its bulk import).\n"
    "\n"
    "Severities: 0 error, 1 warning, 2 status, 3 debug, 4 verbose; records go to standard error.\n"
    "\n"
    "Exit status:\n"
    "  0    everything was collected; hardware that the machine lacks is not an error\n"
    "  1    something could not be collected or written; standard error says what and why\n"
    "  2    the command line is wrong\n"
    "  141  the reader of the output closed the pipe early (there is no message)\n";

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

void AddViewOptions(CLI::App& app, Options& options) {
  app.add_option_function<std::vector<std::string>>(
         "--filter",
         [&options](const std::vector<std::string>& texts) { options.filter = Filter(texts); },
         "Show only functions that match every term; repeat the option to match any of several "
         "filters")
      ->type_name("KEY=VALUE,...")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
  app.add_option("--color", options.terminal.color, "Use colours")
      ->type_name("auto|always|never")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->capture_default_str();
  app.add_flag_callback(
      "--no-pager", [&options] { options.terminal.pager = false; }, "Do not use a pager");
}

void AddFiles(CLI::App& app, const char* name, std::vector<std::string>& files,
              const char* description) {
  app.add_option(name, files, description)
      ->type_name("FILE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
}

void AddGlobalOptions(CLI::App& app, Options& options) {
  // Defined first, and so known when the version is asked for.
  CLI::Option* verbose =
      app.add_flag("--verbose", options.isVerbose,
                   "With --version: say how captures are kept from this machine");
  verbose->needs(app.set_version_flag("--version", "pciinfo " PCIINFO_VERSION));
  AddFiles(app, "--plugin", options.plugins.added, "Also load this plug-in; may be repeated");
  AddFiles(app, "--only-plugin", options.plugins.only,
           "Load this plug-in instead of the installed ones; may be repeated");
  AddFiles(
      app, "--class-file", options.plugins.classFiles,
      "Also declare the classes in this file, which every plug-in is asked for; may be repeated");
  app.add_option("--log-file", options.logFile, "Write every log record to this file")
      ->type_name("FILE");
  app.add_option("--log-level", options.logLevel,
                 "Show log records up to this severity (default: 1)")
      ->type_name("0..4")
      ->check(CLI::Range(0, 4).description(""));
  app.add_option("--timeout", options.timeout,
                 "Stop collecting after this many seconds and print what was collected")
      ->type_name("SECONDS")
      ->check(CLI::Validator(IsTime, ""))
      ->capture_default_str();
  app.add_option("--memory-limit", options.memoryLimit,
                 "Limit the memory of each collecting process to this many MiB; 0: no limit")
      ->type_name("MIB")
      ->check(CLI::Validator(IsNoLimitOrEnough, ""))
      ->capture_default_str();
  app.add_flag("--in-process", options.inProcess,
               "Do everything in one process, for debuggers: a plug-in that crashes or hangs ends "
               "the run");
  CLI::Option* root =
      app.add_option("--root", options.root,
                     "Show a captured machine: a directory, an archive, or - for standard "
                     "input")
          ->type_name("CAPTURE")
          ->check(
              CLI::Validator([](std::string& name) { return name.empty() ? "empty" : ""; }, ""));
  app.add_flag("--live-commands", options.liveCommands,
               "Run commands on the captured files instead of replaying their recorded outputs")
      ->needs(root);
  AddViewOptions(app, options);
  app.footer(FilterHelp() + "\n" + kFooter);
}

CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                     Options& options, Command command) {
  CLI::App* sub = app.add_subcommand(name, description);
  sub->fallthrough();  // global options may follow the command
  sub->footer("The options of \"pciinfo --help\" can be given here as well.\n");
  sub->callback([&options, command] { options.command = command; });
  return sub;
}

const std::vector<std::string> kOverviewFormats = {"table", "json", "jsonl", "redfish", "netbox"};

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

void AddFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats) {
  command.add_option("--format", format, "Output format")
      ->type_name("FORMAT")
      ->check(
          CLI::Validator([formats](std::string& name) { return ElsewhereOnly(name, formats); }, ""))
      ->check(CLI::IsMember(formats))
      ->capture_default_str();
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

void AddCheck(CLI::App& app, Options& options) {
  CLI::App* check = AddCommand(app, "check", "Report what has failed or works worse than it could",
                               options, Command::kCheck);
  check->add_flag("--classes", options.checksClasses,
                  "Check what the seven classes of the inventory say instead of the machine");
  AddSeverity(*check, "--fail-on", options.failOn, "Fail if a finding is at least as grave");
  AddSeverity(*check, "--min-severity", options.findingChoice.least,
              "Leave out findings that are less grave; they do not fail");
  check
      ->add_option("--ignore", options.findingChoice.ignored,
                   "Leave out findings with this code; may be repeated")
      ->type_name("CODE")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false)
      ->check(CLI::Validator(IsFindingCode, ""));
  AddFormat(*check, options.format, {"table", "json"});
  check->footer(kCheckFooter);
}

void AddDiff(CLI::App& app, Options& options) {
  CLI::App* diff =
      AddCommand(app, "diff", "Compare two machines or captures", options, Command::kDiff);
  diff->add_option("A", options.diffBefore, "The old machine: a capture, JSON, - or live")
      ->type_name("CAPTURE")
      ->required();
  diff->add_option("B", options.diffAfter, "The new machine")->type_name("CAPTURE")->required();
  diff->add_option("--ignore", options.ignored, "Ignore changes of this property; may be repeated")
      ->type_name("PROPERTY")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
      ->allow_extra_args(false);
  diff->add_flag("--all", options.showAll,
                 "Compare every property of functions and slots, also regions and interrupts");
  AddFormat(*diff, options.format, {"table", "json"});
  diff->footer(kDiffFooter);
}

void AddStore(CLI::App& app, Options& options) {
  CLI::App* store = AddCommand(app, "store", "Write machines into a database, with their history",
                               options, Command::kStore);
  AddStoreOptions(*store, options);
}

void AddSlots(CLI::App& app, Options& options) {
  CLI::App* slots = AddCommand(app, "slots", "Print the slots, and which card sits in which",
                               options, Command::kSlots);
  AddFormat(*slots, options.format, kListFormats);
  AddColumns(*slots, options, SlotColumns());
  CLI::Option* free = slots->add_flag_callback(
      "--free", [&options] { options.slotChoice = SlotChoice::kFree; },
      "Show only slots that are known to be empty");
  slots
      ->add_flag_callback(
          "--occupied", [&options] { options.slotChoice = SlotChoice::kOccupied; },
          "Show only slots that are known to hold a card")
      ->excludes(free);
}

void AddViews(CLI::App& app, Options& options) {
  CLI::App* devices =
      AddCommand(app, "devices", "Print every PCI function", options, Command::kDevices);
  AddFormat(*devices, options.format, kListFormats);
  AddColumns(*devices, options, DeviceColumns());
  CLI::App* tree = AddCommand(app, "tree", "Print the buses as a tree", options, Command::kTree);
  AddFormat(*tree, options.format, {"table", "json", "svg", "dot"});
  tree->add_flag("--all", options.showAll, "Show every function; do not fold similar ones");
  CLI::App* show =
      AddCommand(app, "show",
                 "Print everything known about a function, slot, network interface or block device",
                 options, Command::kShow);
  show->add_option(
          "NAME", options.target,
          "Address of a function, name or ID of a slot, network interface, block device, or object "
          "path")
      ->required();
  AddFormat(*show, options.format, {"table", "json"});
}

void AddReport(CLI::App& app, Options& options) {
  CLI::App* report = AddCommand(app, "report", "Write a page with a drawing of the machine",
                                options, Command::kReport);
  report
      ->add_option("FILE", options.reportFile,
                   "The page to write, NAME.html, or - for standard output")
      ->required();
  report->add_option("CAPTURE", options.reportCaptures,
                     "Draw these captured machines, or all in a directory (default: this machine)");
  report->footer(kReportFooter);
}

void AddFleet(CLI::App& app, Options& options) {
  CLI::App* fleet =
      AddCommand(app, "fleet", "Ask a database of many machines", options, Command::kFleet);
  AddFleetOptions(*fleet, options.database, options.fleet);
  AddFormat(*fleet, options.format, kListFormats);
}

void AddCommands(CLI::App& app, Options& options) {
  CLI::App* instances = AddCommand(app, "instances", "Print the instances of CIM classes", options,
                                   Command::kInstances);
  CLI::Option* classes = instances->add_option(
      "CLASS", options.classes, "Classes to print (default: those of the inventory)");
  instances->add_flag("--all", options.showAll, "Print every class (see \"pciinfo classes\")")
      ->excludes(classes);
  AddFormat(*instances, options.format, InstanceFormats());
  AddCommand(app, "classes", "Print the plug-ins and the classes that they provide", options,
             Command::kClasses);
  AddSlots(app, options);
  AddViews(app, options);
  AddCheck(app, options);
  AddCommand(app, "metrics", "Print metrics for Prometheus (OpenMetrics text)", options,
             Command::kMetrics);
  AddDiff(app, options);
  AddReport(app, options);
  AddStore(app, options);
  AddFleet(app, options);
  CLI::App* schema =
      AddCommand(app, "schema", "Print the declarations of the classes", options, Command::kSchema);
  AddFormat(*schema, options.schemaFormat, SchemaFormats());
  CLI::App* capture =
      AddCommand(app, "capture", "Save everything that pciinfo reads from this machine to a file",
                 options, Command::kCapture);
  capture
      ->add_option("FILE", options.captureFile,
                   "NAME.tar.zst, NAME.tar.gz, NAME.tar, a new directory, or - for standard output")
      ->required();
  capture->add_flag("--redact", options.redact,
                    "Blank serial numbers, asset tags, UUIDs and the system's name");
  app.require_subcommand(0, 1);
}

/// The message for a first word that is no command; empty if that is not what is wrong.
std::string UnknownCommand(const CLI::App& app) {
  const std::vector<std::string> words = app.remaining();
  if (!app.get_subcommands().empty() || words.empty() || words[0].starts_with('-')) return "";
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  const std::string nearest = NearestOf(words[0], names);
  return fmt::format("there is no command \"{}\"{}", words[0],
                     nearest.empty() ? "" : fmt::format(": did you mean \"{}\"?", nearest));
}

bool CanFilter(Command command) {
  return command != Command::kShow && command != Command::kClasses &&
         command != Command::kCapture && command != Command::kSchema &&
         command != Command::kCheck && command != Command::kMetrics && command != Command::kDiff &&
         command != Command::kReport && command != Command::kStore && command != Command::kFleet;
}

}  // namespace

std::shared_ptr<CLI::App> BuildApp(Options& options) {
  auto app = std::make_shared<CLI::App>(
      "Shows the PCI functions and system slots of this machine.\n"
      "Without a command, prints an overview.",
      "pciinfo");
  AddFormat(*app, options.format, kOverviewFormats);
  AddGlobalOptions(*app, options);
  AddCommands(*app, options);
  return app;
}

std::variant<Options, Answer> ParseOptions(int argc, const char* const* argv) {
  Options options;
  const std::shared_ptr<CLI::App> app = BuildApp(options);
  try {
    app->parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return Answer{false, app->help()};
  } catch (const CLI::CallForVersion& version) {
    return Answer{false, std::string(version.what()) + "\n" +
                             (options.isVerbose ? DescribeProtection() : "")};
  } catch (const CLI::ParseError& error) {
    const std::string unknown = UnknownCommand(*app);
    return Answer{true, (unknown.empty() ? error.what() : unknown) + " (see \"pciinfo --help\")"};
  } catch (const UsageError& error) {
    return Answer{true, std::string(error.what()) + " (see \"pciinfo --help\")"};
  }
  if (!options.filter.IsEmpty() && !CanFilter(options.command)) {
    return Answer{true, "--filter cannot be used with this command"};
  }
  if (options.command == Command::kOverview && !options.filter.IsEmpty() &&
      options.format != "table" && options.format != "json") {
    return Answer{true, fmt::format("--filter cannot be used with --format {}, which tells all of "
                                    "the machine: leave it out, or use json",
                                    options.format)};
  }
  if (!options.columns.empty() && options.format != "table" && options.format != "csv") {
    return Answer{true, fmt::format("--columns cannot be used with {}, which always has all that "
                                    "is known: leave it out, or use csv",
                                    options.format)};
  }
  return options;
}

}  // namespace pciinfo
