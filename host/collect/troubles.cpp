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

enum class When { kAlways, kNoPciBus, kLspciWithoutPciBus };

struct RecordRow {
  std::string_view beginning;
  When when;
  Verdict verdict;
  Subject subject;
  /// The message, with {record} for the whole record, {rest} for the part after `beginning` and
  /// {why} for the reason that the failing service gave.
  const char* clause;
};

constexpr const char* kNoPciBus =
    "this machine shows no PCI bus (/proc/bus/pci does not exist), so it has no PCI functions";

constexpr const char* kNoTables =
    "this machine has no SMBIOS tables, so no slots are known; they come from the firmware of "
    "physical machines and of virtual machines that are set up with SMBIOS slot records";

/// The wording for a capture: the captured machine may have what the capture lacks.
struct CaptureRow {
  std::string_view ofMachine;
  const char* ofCapture;
};

constexpr CaptureRow kCaptureClauses[] = {
    {kNoPciBus, "this capture holds no /proc/bus/pci, so it has no PCI functions"},
    {kNoTables,
     "this capture holds no SMBIOS tables, so no slots are known; on most machines only root can "
     "capture them"},
};

// The first row whose beginning and condition match is used.
constexpr RecordRow kRecords[] = {
    // A progress line that the plug-in writes as an error for every function that is in no slot: on
    // most machines, nearly every function.
    {"Exiting correlateDeviceAndSlot", When::kAlways, Verdict::kNothing, Subject::kSlots, ""},
    {"Could not open PCI devices file.", When::kNoPciBus, Verdict::kNotice, Subject::kFunctions,
     kNoPciBus},
    {"Could not open PCI devices file.", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "the kernel's list of PCI functions, /proc/bus/pci/devices, could not be opened"},
    // Only very old kernels have /proc/pci.
    {"Could not open PCI description file.", When::kAlways, Verdict::kNothing, Subject::kFunctions,
     ""},
    {"PCI description spawn encountered an error in lspci: ", When::kAlways, Verdict::kTrouble,
     Subject::kFunctions, "lspci gave no descriptions: {rest}"},
    {"PCI description buffer is empty", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "lspci gave no descriptions: it printed nothing"},
    {"Could not open PCI file.", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "{rest} could not be opened; this function is missing"},
    {"Could not read PCI file ", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "{rest} could not be read; this function is missing"},
    {"Configuration vendor id ", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "{record} This function is missing."},
    {"Configuration device id ", When::kAlways, Verdict::kTrouble, Subject::kFunctions,
     "{record} This function is missing."},
    // lspci fails where there is nothing to list.
    {"PCIInfo plugin threw unknown exception", When::kLspciWithoutPciBus, Verdict::kNotice,
     Subject::kFunctions, kNoPciBus},
    {"PCIInfo plugin threw unknown exception", When::kAlways, Verdict::kClassLost,
     Subject::kFunctions, "the class could not be collected: {why}"},
    {"PciDevInfo encountered an error generating CIM instances for ", When::kAlways,
     Verdict::kTrouble, Subject::kFunctions, "an instance could not be created: {rest}"},
    {"PCI Slot ID ", When::kAlways, Verdict::kTrouble, Subject::kSlots,
     "a PCI function refers to a slot that does not exist: {record}"},
};

enum class Step { kLoad, kFirst };

struct SmbiosRow {
  std::string_view beginning;  // the rest of the record is a status code
  Step step;
};

constexpr SmbiosRow kSmbiosRecords[] = {
    {"SMBIOS library could not load. Error ", Step::kLoad},
    {"Unable to open SMBIOS library error: ", Step::kLoad},
    {"Return from smBiosGetFirst: Error ", Step::kFirst},
    {"Return from smBiosGetFirst: ", Step::kFirst},
};

struct StatusRow {
  Step step;
  int code;
  Verdict verdict;
  const char* clause;
};

constexpr StatusRow kStatuses[] = {
    {Step::kLoad, TVTQStatusCode::kNotFound, Verdict::kNotice, kNoTables},
    {Step::kFirst, TVTQStatusCode::kNotFound, Verdict::kNotice,
     "this machine's SMBIOS tables hold no slot records, so no slots are known; a firmware update "
     "or, for a virtual machine, SMBIOS type 9 records in its settings can add them"},
    {Step::kLoad, TVTQStatusCode::kAccessDenied, Verdict::kTrouble,
     "this user may not read the SMBIOS tables, so no slots are known; run as root"},
    {Step::kLoad, TVTQStatusCode::kCorruptData, Verdict::kTrouble,
     "the SMBIOS tables are damaged, so no slots are known: {why}"},
    {Step::kFirst, TVTQStatusCode::kBufferTooSmall, Verdict::kTrouble,
     "the first SMBIOS slot record is too large, so no slots are known"},
};

constexpr const char* kOtherStatus =
    "the SMBIOS tables could not be read (status {rest}), so no slots are known: {why}";

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
  for (const CaptureRow& row : kCaptureClauses) {
    if (row.ofMachine == clause) return row.ofCapture;
  }
  return clause;
}

std::string Fill(const char* clause, std::string_view record, std::string_view rest,
                 const Circumstances& circumstances) {
  if (*clause == '\0') return {};
  const std::string& failure = circumstances.serviceFailure;
  return fmt::format(fmt::runtime(Worded(clause, circumstances)),
                     fmt::arg("record", WithoutTabs(record)), fmt::arg("rest", WithoutTabs(rest)),
                     fmt::arg("why", failure.empty() ? "no reason was given" : failure));
}

std::optional<int> StatusCodeIn(std::string_view text) {
  int code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return code;
}

Finding JudgeStatus(Step step, std::string_view record, std::string_view rest,
                    const Circumstances& circumstances) {
  for (const StatusRow& row : kStatuses) {
    if (row.step != step || row.code != StatusCodeIn(rest)) continue;
    return {row.verdict, Subject::kSlots, Fill(row.clause, record, rest, circumstances)};
  }
  return {Verdict::kTrouble, Subject::kSlots, Fill(kOtherStatus, record, rest, circumstances)};
}

std::optional<Finding> JudgeSmbios(std::string_view record, const Circumstances& circumstances) {
  for (const SmbiosRow& row : kSmbiosRecords) {
    if (!record.starts_with(row.beginning)) continue;
    return JudgeStatus(row.step, record, record.substr(row.beginning.size()), circumstances);
  }
  return std::nullopt;
}

bool Holds(When when, const Circumstances& circumstances) {
  if (when == When::kAlways) return true;
  if (circumstances.hasPciBus) return false;
  return when == When::kNoPciBus || circumstances.serviceFailure.find("lspci") != std::string::npos;
}

bool Fits(const RecordRow& row, std::string_view record, const Circumstances& circumstances) {
  return record.starts_with(row.beginning) && Holds(row.when, circumstances);
}

Finding JudgeText(std::string_view record, const Circumstances& circumstances) {
  for (const RecordRow& row : kRecords) {
    if (!Fits(row, record, circumstances)) continue;
    const std::string_view rest = record.substr(row.beginning.size());
    return {row.verdict, row.subject, Fill(row.clause, record, rest, circumstances)};
  }
  return {Verdict::kTrouble, Subject::kFunctions, WithoutTabs(record)};
}

}  // namespace

Finding JudgeRecord(ILogger::EVTQLogSeverity severity, const std::string& text,
                    const Circumstances& circumstances) {
  if (severity > ILogger::kStatus) return {};
  if (const std::optional<Finding> finding = JudgeSmbios(text, circumstances)) return *finding;
  return JudgeText(text, circumstances);
}

}  // namespace pciinfo
