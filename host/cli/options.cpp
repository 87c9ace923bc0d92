// SPDX-License-Identifier: Apache-2.0
#include "host/cli/options.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "host/base/errors.h"
#include "host/cli/command_options.h"
#include "host/cli/option_values.h"
#include "host/cli/suggestion.h"
#include "host/replay/protection.h"

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
  app.footer([] { return FilterHelp() + "\n" + kFooter; });
}

const std::vector<std::string> kOverviewFormats = {"table", "json", "jsonl", "redfish", "netbox"};

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

std::shared_ptr<CLI::App> MakeApp(Options& options, CommandsWithOptions which) {
  auto app = std::make_shared<CLI::App>(
      "Shows the PCI functions and system slots of this machine.\n"
      "Without a command, prints an overview.",
      "pciinfo");
  AddFormat(*app, options.format, kOverviewFormats);
  AddGlobalOptions(*app, options);
  AddCommands(*app, options, which);
  return app;
}

}  // namespace

std::shared_ptr<CLI::App> BuildApp(Options& options) {
  return MakeApp(options, CommandsWithOptions::kAll);
}

std::variant<Options, Answer> ParseOptions(int argc, const char* const* argv) {
  Options options;
  const std::shared_ptr<CLI::App> app = MakeApp(options, CommandsWithOptions::kParsed);
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
