#include "host/listing_ahead.h"

#include <unistd.h>

#include <algorithm>
#include <array>

#include "host/confinement.h"
#include "host/options.h"
#include "runtime/command_ahead.h"

namespace pciinfo {
namespace {

using Word = std::string_view;

constexpr const char* kListing = "lspci";

/// Commands that show functions.
constexpr std::array<Word, 6> kViews = {"check", "devices", "instances", "show", "slots", "tree"};
/// What stands on every command line that asks for something else, or needs more care.
constexpr std::array<Word, 7> kOtherCommands = {"capture", "classes", "diff",     "schema",
                                                "-h",      "--help",  "--version"};
constexpr std::array<Word, 3> kOtherOptions = {"--memory-limit", "--plugin", "--root"};
/// Classes that no function is needed for.
constexpr std::array<Word, 3> kOtherClasses = {"QZMSG_SystemSlot", "QZMSG_SystemBoard",
                                               "QZMSG_PCIRawData"};

template <class Words>
bool Holds(const Words& words, Word word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

bool IsClass(Word word) { return word.starts_with("QZMSG_"); }

/// "--root CAPTURE" and "--root=CAPTURE".
bool IsOther(Word word) {
  return Holds(kOtherCommands, word) ||
         std::any_of(kOtherOptions.begin(), kOtherOptions.end(),
                     [word](Word option) { return word.starts_with(option); });
}

}  // namespace

bool AsksForFunctions(const std::vector<Word>& words) {
  if (std::any_of(words.begin(), words.end(), &IsOther)) return false;
  if (std::any_of(words.begin(), words.end(), &IsClass)) {
    return std::any_of(words.begin(), words.end(),
                       [](Word word) { return IsClass(word) && !Holds(kOtherClasses, word); });
  }
  const bool isOverview =
      std::all_of(words.begin(), words.end(), [](Word word) { return word.starts_with('-'); });
  return isOverview ||
         std::any_of(words.begin(), words.end(), [](Word word) { return Holds(kViews, word); });
}

void StartListingFor(const std::vector<Word>& words) {
  if (isatty(STDOUT_FILENO) != 0 || !AsksForFunctions(words)) return;
  GiveUpPrivileges();
  if (const auto bytes = BytesOfLimit(kDefaultMemoryLimit)) LimitMemory(*bytes);
  vtq::StartCommandAhead(kListing);
}

void StartListingFor(const std::vector<std::string>& classes) {
  if (Holds(classes, "QZMSG_PCIDevice") || Holds(classes, "QZMSG_PCIBridge")) {
    vtq::StartCommandAhead(kListing);
  }
}

}  // namespace pciinfo
