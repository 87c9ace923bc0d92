// SPDX-License-Identifier: Apache-2.0
#include "host/collect/troubles.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>
#include <string_view>

#include "framework/status_code.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::ILogger;
using NQZMVTQ20::TVTQStatusCode;

enum class When { kAlways, kNoPciBus, kLspciWithoutPciBus, kInOtherDomain };

struct RecordRow {
  std::string_view beginning;
  When when;
  Verdict verdict;
  /// The message, with {effect} for what is missing because of it, {record} for the whole record,
  /// {rest} for the part after `beginning`, {domain} for the domain of the function there, and
  /// {why} for the reason that the failing service gave.
  const char* clause;
  /// The text of Finding::ofMany. Its double braces become single ones, which the report fills in.
  const char* ofMany = "";
};

constexpr const char* kNoPciBus =
    "this machine shows no PCI bus (/proc/bus/pci does not exist), so it has no PCI functions";

constexpr const char* kNoFunctions =
    "this machine shows no PCI bus (/sys/bus/pci/devices and /proc/bus/pci are missing or empty), "
    "so "
    "it has no PCI functions";

constexpr const char* kNoTables =
    "this machine has no SMBIOS tables, so {effect}; they come from the firmware of physical "
    "machines and of virtual machines that are set up with SMBIOS slot records";

constexpr const char* kNoSlotRecords =
    "this machine's SMBIOS tables hold no slot records, so {effect}; a firmware update or, for a "
    "virtual machine, SMBIOS type 9 records in its settings can add them";

constexpr const char* kNoSlots = "no slots are known";
constexpr const char* kKernelSlotsOnly = "only the slots that the kernel shows are known";

/// The wording for a capture: the captured machine may have what the capture lacks.
struct CaptureRow {
  std::string_view ofMachine;
  const char* ofCapture;
};

constexpr CaptureRow kCaptureClauses[] = {
    {kNoPciBus, "this capture holds no /proc/bus/pci, so it has no PCI functions"},
    {kNoFunctions,
     "this capture holds no /sys/bus/pci/devices and no /proc/bus/pci, so it has no PCI functions"},
    {kNoTables,
     "this capture holds no SMBIOS tables, so {effect}; on most machines only root can "
     "capture them"},
};

// The first row whose beginning and condition match is used.
constexpr RecordRow kRecords[] = {
    // A progress line that the plug-in writes as an error for every function that is in no slot: on
    // most machines, nearly every function.
    {"Exiting correlateDeviceAndSlot", When::kAlways, Verdict::kNothing, ""},
    {"Could not open PCI devices file.", When::kNoPciBus, Verdict::kNotice, kNoPciBus},
    {"Could not open PCI devices file.", When::kAlways, Verdict::kTrouble,
     "the kernel's list of PCI functions, /proc/bus/pci/devices, could not be opened"},
    // Only very old kernels have /proc/pci.
    {"Could not open PCI description file.", When::kAlways, Verdict::kNothing, ""},
    {"PCI description spawn encountered an error in lspci: ", When::kAlways, Verdict::kTrouble,
     "lspci gave no descriptions: {rest}"},
    {"PCI description buffer is empty", When::kAlways, Verdict::kTrouble,
     "lspci gave no descriptions: it printed nothing"},
    // The kernel's list of functions names no domains.
    {"Could not open PCI file.", When::kInOtherDomain, Verdict::kTrouble,
     "1 function in domain {domain} is not part of these classes (\"pciinfo devices\" shows it)",
     "{{count}} functions in domain {domain} are not part of these classes (\"pciinfo devices\" "
     "shows "
     "them)"},
    {"Could not open PCI file.", When::kAlways, Verdict::kTrouble,
     "{rest} could not be opened; this function is missing",
     "{{count}} functions are missing: {{first}} and {{others}} more could not be opened "
     "(--log-file saves "
     "all names)"},
    {"Could not read PCI file ", When::kAlways, Verdict::kTrouble,
     "{rest} could not be read; this function is missing",
     "{{count}} functions are missing: {{first}} and {{others}} more could not be read (--log-file "
     "saves "
     "all names)"},
    {"Configuration vendor id ", When::kAlways, Verdict::kTrouble,
     "{record} This function is missing."},
    {"Configuration device id ", When::kAlways, Verdict::kTrouble,
     "{record} This function is missing."},
    // lspci fails where there is nothing to list.
    {"PCIInfo plugin threw unknown exception", When::kLspciWithoutPciBus, Verdict::kNotice,
     kNoPciBus},
    {"PCIInfo plugin threw unknown exception", When::kAlways, Verdict::kClassLost,
     "the class could not be collected: {why}"},
    {"PciDevInfo encountered an error generating CIM instances for ", When::kAlways,
     Verdict::kTrouble, "an instance could not be created: {rest}"},
    {"The kernel shows no PCI functions.", When::kAlways, Verdict::kNotice, kNoFunctions},
    {"PCI Slot ID ", When::kAlways, Verdict::kTrouble,
     "a PCI function refers to a slot that does not exist: {record}"},
};

enum class SmBiosStep { kLoad, kFirst };

struct SmbiosRow {
  std::string_view beginning;  // the rest of the record is a status code
  SmBiosStep step;
  const char* effect;
};

constexpr SmbiosRow kSmbiosRecords[] = {
    {"SMBIOS library could not load. Error ", SmBiosStep::kLoad, kNoSlots},
    {"Unable to open SMBIOS library error: ", SmBiosStep::kLoad, kNoSlots},
    {"Return from smBiosGetFirst: Error ", SmBiosStep::kFirst, kNoSlots},
    {"Return from smBiosGetFirst: ", SmBiosStep::kFirst, kNoSlots},
    {"SMBIOS tables not loaded: status ", SmBiosStep::kLoad, kKernelSlotsOnly},
    {"SMBIOS slot records not read: status ", SmBiosStep::kFirst, kKernelSlotsOnly},
};

struct StatusRow {
  SmBiosStep step;
  int code;
  Verdict verdict;
  const char* clause;
};

constexpr StatusRow kStatuses[] = {
    {SmBiosStep::kLoad, TVTQStatusCode::kNotFound, Verdict::kNotice, kNoTables},
    {SmBiosStep::kFirst, TVTQStatusCode::kNotFound, Verdict::kNotice, kNoSlotRecords},
    {SmBiosStep::kLoad, TVTQStatusCode::kAccessDenied, Verdict::kTrouble,
     "this user may not read the SMBIOS tables, so {effect}; run as root"},
    {SmBiosStep::kLoad, TVTQStatusCode::kCorruptData, Verdict::kTrouble,
     "the SMBIOS tables are damaged, so {effect}: {why}"},
    {SmBiosStep::kFirst, TVTQStatusCode::kBufferTooSmall, Verdict::kTrouble,
     "the first SMBIOS slot record is too large, so {effect}"},
};

constexpr const char* kOtherStatus =
    "the SMBIOS tables could not be read (status {rest}), so {effect}: {why}";

constexpr const char* kNoTablesThere = "the captured machine shows no SMBIOS tables, so {effect}";

/// Replaces each run of tabs, which align the text in a log, by one space.
std::string WithoutTabs(std::string_view record) {
  std::string text;
  for (const char c : record) {
    if (c != '\t') {
      text += c;
    } else if (!text.empty() && text.back() != ' ') {
      text += ' ';
    }
  }
  return text;
}

const char* Worded(const char* clause, const Circumstances& circumstances) {
  if (!circumstances.isCapture) return clause;
  if (clause == kNoTables && circumstances.showedNoTables) return kNoTablesThere;
  for (const CaptureRow& row : kCaptureClauses) {
    if (row.ofMachine == clause) return row.ofCapture;
  }
  return clause;
}

/// The domain of a function of /proc/bus/pci; empty unless it is another one than the first.
std::string DomainOf(std::string_view file, const Circumstances& circumstances) {
  constexpr std::string_view kProc = "/proc/bus/pci/";
  if (!circumstances.domainOf || !file.starts_with(kProc)) return "";
  return circumstances.domainOf(std::string(file.substr(kProc.size())));
}

std::string Fill(const char* clause, std::string_view record, std::string_view rest,
                 const Circumstances& circumstances, const char* effect = "") {
  if (*clause == '\0') return {};
  const std::string& failure = circumstances.serviceFailure;
  return fmt::format(fmt::runtime(Worded(clause, circumstances)), fmt::arg("effect", effect),
                     fmt::arg("record", WithoutTabs(record)), fmt::arg("rest", WithoutTabs(rest)),
                     fmt::arg("domain", DomainOf(rest, circumstances)),
                     fmt::arg("why", failure.empty() ? "no reason was given" : failure));
}

std::optional<int> StatusCodeIn(std::string_view text) {
  int code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return code;
}

Finding JudgeStatus(const SmbiosRow& read, std::string_view record,
                    const Circumstances& circumstances) {
  const std::string_view rest = record.substr(read.beginning.size());
  const auto fill = [&](const char* clause) {
    return Fill(clause, record, rest, circumstances, read.effect);
  };
  for (const StatusRow& row : kStatuses) {
    if (row.step != read.step || row.code != StatusCodeIn(rest)) continue;
    return {row.verdict, fill(row.clause)};
  }
  return {Verdict::kTrouble, fill(kOtherStatus)};
}

std::optional<Finding> JudgeSmbios(std::string_view record, const Circumstances& circumstances) {
  for (const SmbiosRow& row : kSmbiosRecords) {
    if (!record.starts_with(row.beginning)) continue;
    return JudgeStatus(row, record, circumstances);
  }
  return std::nullopt;
}

bool Holds(When when, std::string_view rest, const Circumstances& circumstances) {
  if (when == When::kAlways) return true;
  if (when == When::kInOtherDomain) return !DomainOf(rest, circumstances).empty();
  if (circumstances.hasPciBus) return false;
  return when == When::kNoPciBus || circumstances.serviceFailure.find("lspci") != std::string::npos;
}

bool Fits(const RecordRow& row, std::string_view record, const Circumstances& circumstances) {
  return record.starts_with(row.beginning) &&
         Holds(row.when, record.substr(row.beginning.size()), circumstances);
}

Finding JudgeText(std::string_view record, const Circumstances& circumstances) {
  for (const RecordRow& row : kRecords) {
    if (!Fits(row, record, circumstances)) continue;
    const std::string_view rest = record.substr(row.beginning.size());
    const auto fill = [&](const char* text) { return Fill(text, record, rest, circumstances); };
    return {row.verdict, fill(row.clause), fill(row.ofMany), WithoutTabs(rest)};
  }
  return {Verdict::kTrouble, WithoutTabs(record)};
}

}  // namespace

Finding JudgeRecord(ILogger::EVTQLogSeverity severity, const std::string& text,
                    const Circumstances& circumstances) {
  if (severity > ILogger::kStatus) return {};
  if (const std::optional<Finding> finding = JudgeSmbios(text, circumstances)) return *finding;
  return JudgeText(text, circumstances);
}

}  // namespace pciinfo
