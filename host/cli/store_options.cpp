// SPDX-License-Identifier: Apache-2.0
#include "host/cli/store_options.h"

#include <CLI/CLI.hpp>

namespace pciinfo {
namespace {

constexpr const char* kStoreFooter =
    "A machine that is known already changes: what is gone or has another value stays in the "
    "history.\n"
    "Each machine is stored completely or not at all. A JSON file has the lines of \"pciinfo "
    "--format\n"
    "jsonl\", one for each machine, or the document of \"pciinfo --format json\".\n"
    "\n"
    "Every user of this machine can see a password in the address: write it into ~/.pgpass, or "
    "into\n"
    "the file that PGPASSFILE names.\n"
    "\n"
    "Exit status:\n"
    "  0    every machine is stored\n"
    "  1    a machine or a part of it could not be collected or stored; standard error says why\n"
    "  2    the command line is wrong\n"
    "\n"
    "The options of \"pciinfo --help\" can be given here as well.\n";

}  // namespace

void AddStoreOptions(CLI::App& store, Options& options) {
  store
      .add_option("TARGET", options.storeTarget,
                  "An SQLite file, which is made if it is missing, or postgresql://...")
      ->required();
  store
      .add_option("CAPTURE", options.storeSources,
                  "Captures, directories of archives, files of JSON, or - for JSON lines on "
                  "standard input; without one, this machine")
      ->type_name("CAPTURE");
  store.add_flag("--redact", options.redact,
                 "Write digests in the place of UUIDs and machine IDs, and no serial numbers and "
                 "hardware addresses");
  store.footer(kStoreFooter);
}

}  // namespace pciinfo
