// SPDX-License-Identifier: Apache-2.0
#include "bench/report.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace bench {
namespace {

constexpr unsigned kLarge = 4096;
constexpr unsigned kSmall = 64;
constexpr unsigned kLargest = 16384;

const std::vector<double>* Find(const Results& results, unsigned functions,
                                const std::string& name) {
  const auto machine = results.find(functions);
  if (machine == results.end()) return nullptr;
  const auto measures = machine->second.find(name);
  return measures == machine->second.end() ? nullptr : &measures->second;
}

std::string Milliseconds(double seconds) {
  const double milliseconds = seconds * 1000;
  return fmt::format("{:.{}f}", milliseconds, milliseconds < 100 ? 1 : 0);
}

std::string MebiBytes(double bytes) { return fmt::format("{:.1f}", bytes / (1 << 20)); }

struct TimeRow {
  const char* what;
  const char* name;
};

constexpr TimeRow kTimeRows[] = {
    {"`lspci`", "lspci"},
    {"**`pciinfo`, devices and bridges**", "list"},
    {"`lspci -xxxx`", "lspci -xxxx"},
    {"`lspci -vvv`", "lspci -vvv"},
    {"**`pciinfo`, all seven classes**", "all"},
    {"**`pciinfo`, raw data**", "raw"},
    {"`lspci -D`", "lspci -D"},
    {"**`pciinfo`, functions with their slots**", "places"},
    {"**`pciinfo`, everything about each function**", "details"},
    {"`lspci`, beside the views", "lspci beside views"},
    {"`lspci -D`, beside the views", "lspci -D beside views"},
    {"**`pciinfo`**, the overview", "overview"},
    {"**`pciinfo devices`**", "devices"},
    {"**`pciinfo slots`**", "slots"},
    {"`lshw -json`", "lshw -json"},
    {"`hwinfo --pci`", "hwinfo --pci"},
};

std::string TimesOf(const Results& results, unsigned functions) {
  std::string table = fmt::format(
      "\n{} functions:\n\n| | wall ms, least | median | CPU ms, least | median | peak MiB | output "
      "MiB |\n|---|---:|---:|---:|---:|---:|---:|\n",
      functions);
  for (const TimeRow& row : kTimeRows) {
    const std::string name = row.name;
    const std::vector<double>* wall = Find(results, functions, name + " wall");
    if (wall == nullptr) continue;
    const Measures& measures = results.at(functions);
    const std::vector<double>& cpu = measures.at(name + " cpu");
    const char* stopped = measures.contains(name + " stopped") ? ", stopped after a minute" : "";
    table += fmt::format("| {}{} | {} | {} | {} | {} | {} | {} |\n", row.what, stopped,
                         Milliseconds(Least(*wall)), Milliseconds(Median(*wall)),
                         Milliseconds(Least(cpu)), Milliseconds(Median(cpu)),
                         MebiBytes(Least(measures.at(name + " peak"))),
                         MebiBytes(Least(measures.at(name + " output"))));
  }
  if (const auto* own = Find(results, functions, "own cpu")) {
    table += fmt::format("| of this `pciinfo`'s own, devices and bridges | | | {} | {} | | |\n",
                         Milliseconds(Least(*own)), Milliseconds(Median(*own)));
  }
  return table;
}

constexpr unsigned kEverySize = 0;

struct TargetRow {
  unsigned functions;   ///< of the machine, or kEverySize
  const char* measure;  ///< the ratios of the rounds
  const char* part;     ///< what is divided
  const char* whole;    ///< by what
  const char* what;
  bool atMost;
  double target;
};

constexpr TargetRow kTargets[] = {
    {kLarge, "list/lspci wall", "list wall", "lspci wall",
     "devices and bridges: wall time, in that of `lspci`", true, 1.50},
    {kLarge, "all/listings wall", "all wall", "three listings wall",
     "all seven classes: wall time, in that of `lspci`, `lspci -xxxx` and `lspci -vvv` together",
     true, 1.25},
    {kLarge, "raw memory/text", "raw memory above", "raw text",
     "raw data: peak memory above 32 MiB, in bytes a byte of text", true, 3.0},
    {kSmall, "list/lspci wall", "list wall", "lspci wall",
     "devices and bridges: wall time, in that of `lspci`", true, 1.60},
    {kEverySize, "places/lspci wall", "places wall", "lspci -D wall",
     "functions with their slots: wall time, in that of `lspci -D`", true, 0.60},
    {kEverySize, "details/lspci wall", "details wall", "lspci -vvv again wall",
     "everything about each function: wall time, in that of `lspci -vvv`", true, 0.50},
    {kSmall, "overview/lspci wall", "overview wall", "lspci beside views wall",
     "the overview: wall time, in that of `lspci`", true, 1.00},
    {kSmall, "devices/lspci wall", "devices wall", "lspci beside views wall",
     "`devices`: wall time, in that of `lspci`", true, 1.00},
    {kSmall, "slots/lspci wall", "slots wall", "lspci beside views wall",
     "`slots`: wall time, in that of `lspci`", true, 1.00},
    {kLarge, "overview/lspci -D wall", "overview wall", "lspci -D beside views wall",
     "the overview: wall time, in that of `lspci -D`", true, 0.60},
    {kLarge, "devices/lspci -D wall", "devices wall", "lspci -D beside views wall",
     "`devices`: wall time, in that of `lspci -D`", true, 0.60},
    {kLarge, "slots/lspci -D wall", "slots wall", "lspci -D beside views wall",
     "`slots`: wall time, in that of `lspci -D`", true, 0.60},
};

std::string TargetLine(const std::string& machine, const TargetRow& row, double least,
                       double median) {
  const bool reached = row.atMost ? median <= row.target : median >= row.target;
  const char* verdict = reached ? "yes" : "no";
  if (!reached && (row.atMost ? least <= row.target : least >= row.target)) verdict = "at best";
  return fmt::format("| {} | {} | {} {:g} | {:.2f} | {:.2f} | {} |\n", machine, row.what,
                     row.atMost ? "at most" : "at least", row.target, least, median, verdict);
}

std::string Growth(const Results& results) {
  const auto* few = Find(results, kSmall, "instructions");
  const auto* many = Find(results, kLargest, "instructions");
  if (few == nullptr || many == nullptr) return "";
  const double growth = many->front() / kLargest / (few->front() / kSmall);
  const TargetRow row{kEverySize,
                      "",
                      "",
                      "",
                      "devices and bridges: growth of own instructions, in that of functions",
                      true,
                      1.15};
  return TargetLine(fmt::format("{} to {}", kSmall, kLargest), row, growth, growth);
}

std::string Targets(const Results& results) {
  std::string table =
      "\n| functions | what | target | of the least | median | reached "
      "|\n|---:|---|---|---:|---:|---|\n";
  for (const TargetRow& row : kTargets) {
    for (const auto& [functions, measures] : results) {
      if (row.functions != kEverySize && row.functions != functions) continue;
      const auto* ratios = Find(results, functions, row.measure);
      if (ratios == nullptr) continue;
      const double least = Least(measures.at(row.part)) / Least(measures.at(row.whole));
      table += TargetLine(std::to_string(functions), row, least, Median(*ratios));
    }
  }
  return table + Growth(results);
}

std::string Instructions(const Results& results) {
  std::string table =
      "\n| functions | instructions, millions | thousands a function |\n|---:|---:|---:|\n";
  for (const auto& [functions, measures] : results) {
    const auto* counted = Find(results, functions, "instructions");
    if (counted == nullptr) continue;
    table += fmt::format("| {} | {:.1f} | {:.1f} |\n", functions, counted->front() / 1e6,
                         counted->front() / 1e3 / functions);
  }
  return table;
}

}  // namespace

std::string MakeTables(const Results& results, const std::string& circumstances) {
  std::string text = circumstances + "\n" + Targets(results);
  for (const auto& [functions, measures] : results) text += TimesOf(results, functions);
  return text + "\nInstructions of the program itself for devices and bridges, without `lspci`:\n" +
         Instructions(results);
}

void ReplaceBetweenMarkers(const std::string& file, const std::string& text) {
  std::ifstream in(file);
  const std::string old(std::istreambuf_iterator<char>(in), {});
  const std::size_t begin = old.find('\n', old.find("<!-- bench/run"));
  const std::size_t end = old.find("<!-- end -->");
  if (begin == std::string::npos || end == std::string::npos || end < begin) {
    throw std::runtime_error(file +
                             " has no lines \"<!-- bench/run ... -->\" and \"<!-- end -->\"");
  }
  std::ofstream out(file);
  out << old.substr(0, begin + 1) << '\n' << text << '\n' << old.substr(end) << std::flush;
  if (!out) throw std::runtime_error(file + " cannot be written");
}

}  // namespace bench
