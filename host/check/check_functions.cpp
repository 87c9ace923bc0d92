// What is doubtful about the published PCI functions as such.

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "host/check/checks.h"

namespace pciinfo {
namespace {

constexpr const char* kList = "/proc/bus/pci/devices";

std::string IdsText(const VendorAndDevice& ids) {
  return fmt::format("{:04x}:{:04x}", ids.vendor, ids.device);
}

std::optional<VendorAndDevice> IdsOf(const CheckFacts& facts, const FullAddress& where) {
  const auto found = facts.functions.find(where);
  return found == facts.functions.end() ? std::nullopt : found->second.ids;
}

bool IsKnown(const CheckFacts& facts, const FullAddress& where) {
  return facts.functions.count(where) != 0;
}

/// A function in another domain is looked for at its bus in domain 0: it passes for the one that it
/// finds there when both have the same identifiers, and is dropped otherwise.
bool PassesForAnother(const CheckFacts& facts, const FullAddress& where) {
  const FullAddress twin{0, where.address};
  return IsKnown(facts, twin) && IdsOf(facts, where).has_value() &&
         IdsOf(facts, where) == IdsOf(facts, twin);
}

std::vector<Doubt> OfOtherDomains(const CheckFacts& facts, bool passing) {
  const PublishedIndex published(facts);
  std::vector<Doubt> doubts;
  for (const auto& [where, function] : facts.functions) {
    if (where.domain == 0 || PassesForAnother(facts, where) != passing) continue;
    const auto ids = IdsOf(facts, where);
    doubts.push_back({FormatFullAddress(where), passing ? published.PathOf(where.address) : "",
                      ids ? IdsText(*ids) : ""});
  }
  return doubts;
}

std::vector<Doubt> MissingOfOtherDomains(const CheckFacts& facts) {
  return OfOtherDomains(facts, false);
}

std::vector<Doubt> MixedUpOfOtherDomains(const CheckFacts& facts) {
  return OfOtherDomains(facts, true);
}

/// The addresses that functions of other domains have: a line of the list with one of them may be
/// about any of these.
std::set<PciAddress> AddressesOfOtherDomains(const CheckFacts& facts) {
  std::set<PciAddress> addresses;
  for (const auto& [where, function] : facts.functions) {
    if (where.domain != 0) addresses.insert(where.address);
  }
  return addresses;
}

std::vector<Doubt> RepeatedInList(const CheckFacts& facts) {
  std::vector<Doubt> doubts;
  const PublishedIndex published(facts);
  std::set<PciAddress> seen;
  std::set<PciAddress> told;
  for (const ListedFunction& line : ListOf(facts)) {
    if (seen.insert(line.address).second || !told.insert(line.address).second) continue;
    doubts.push_back({FormatAddress(line.address), published.PathOf(line.address), ""});
  }
  return doubts;
}

/// The functions of domain 0, as far as they can be told from others.
std::set<PciAddress> KnownAddresses(const CheckFacts& facts) {
  const std::set<PciAddress> others = AddressesOfOtherDomains(facts);
  std::set<PciAddress> addresses;
  for (const auto& [where, function] : facts.functions) {
    if (where.domain == 0) addresses.insert(where.address);
  }
  for (const ListedFunction& line : ListOf(facts)) {
    if (others.count(line.address) == 0) addresses.insert(line.address);
  }
  return addresses;
}

std::string ReasonOfAbsence(const CheckFacts& facts, const PciAddress& address) {
  const auto isIt = [&](const ListedFunction& line) { return line.address == address; };
  if (!facts.list) return "the kernel's list cannot be read";
  if (std::none_of(facts.list->begin(), facts.list->end(), isIt)) {
    return "the kernel's list does not name it";
  }
  if (facts.configurations.count(address) == 0) return "its configuration cannot be read";
  return "";
}

std::vector<Doubt> UnpublishedFunctions(const CheckFacts& facts) {
  const PublishedIndex published(facts);
  std::vector<Doubt> doubts;
  for (const PciAddress& address : KnownAddresses(facts)) {
    if (published.Find(address) != nullptr) continue;
    doubts.push_back({FormatAddress(address), "", ReasonOfAbsence(facts, address)});
  }
  return doubts;
}

/// What the three sources say of a function, where one of them says something else; empty where
/// they agree.
std::string Disagreement(const CheckFacts& facts, const ListedFunction& line) {
  bool doAgree = true;
  std::string text = "list " + IdsText(line.ids);
  const auto add = [&](const char* source, const VendorAndDevice& ids) {
    doAgree = doAgree && ids == line.ids;
    text += source + IdsText(ids);
  };
  const auto start = facts.configurations.find(line.address);
  if (start != facts.configurations.end()) add(", configuration ", start->second.ids);
  if (const auto inSysfs = IdsOf(facts, {0, line.address})) add(", sysfs ", *inSysfs);
  return doAgree ? "" : text;
}

std::vector<Doubt> DisagreeingIds(const CheckFacts& facts) {
  const PublishedIndex published(facts);
  const std::set<PciAddress> others = AddressesOfOtherDomains(facts);
  std::vector<Doubt> doubts;
  for (const ListedFunction& line : ListOf(facts)) {
    if (others.count(line.address) != 0) continue;
    const std::string detail = Disagreement(facts, line);
    if (detail.empty()) continue;
    doubts.push_back({FormatAddress(line.address), published.PathOf(line.address), detail});
  }
  return doubts;
}

std::vector<Doubt> WithoutDescription(const CheckFacts& facts) {
  std::vector<Doubt> doubts;
  for (const PublishedFunction& published : facts.published) {
    const PciFunction& function = published.function;
    const std::string& text = function.description;
    // What the plug-in writes where nobody describes the function.
    if (!text.empty() && !text.starts_with("PCI Vendor ID ")) continue;
    doubts.push_back({AddressText(function), function.path, IdText(function)});
  }
  return doubts;
}

std::vector<Doubt> WithHeaderOnly(const CheckFacts& facts) {
  const PublishedIndex published(facts);
  std::vector<Doubt> doubts;
  for (const auto& [address, start] : facts.configurations) {
    if (start.isHeaderOnly) {
      doubts.push_back({FormatAddress(address), published.PathOf(address), ""});
    }
  }
  return doubts;
}

std::vector<Doubt> NoListing(const CheckFacts& facts) {
  if (facts.listingFailure.empty()) return {};
  return {{"lspci", "", facts.listingFailure}};
}

std::vector<Doubt> NoList(const CheckFacts& facts) {
  if (facts.list || !facts.hasPciBus) return {};
  return {{kList, "", ""}};
}

std::vector<Doubt> NoBus(const CheckFacts& facts) {
  if (facts.hasPciBus) return {};
  return {{"/proc/bus/pci", "", facts.isCapture ? "not in this capture" : "not on this machine"}};
}

std::vector<Doubt> NoSysfs(const CheckFacts& facts) {
  if (facts.hasSysfs || !facts.hasPciBus) return {};
  return {{"/sys/bus/pci/devices", "",
           facts.isCapture ? "not in this capture" : "not on this machine"}};
}

const std::vector<Check> kFunctionChecks = {
    {"pci-bus-missing", Severity::kNote, "There is no PCI bus to be seen.",
     "Nothing is wrong on a machine without PCI; a capture must hold proc/bus/pci.", &NoBus},
    {"list-unreadable", Severity::kError,
     "The kernel's list of PCI functions cannot be read: none of them is published.",
     "Give this user the right to read /proc/bus/pci/devices, or capture the machine again.",
     &NoList},
    {"sysfs-missing", Severity::kNote,
     "Without /sys/bus/pci/devices it cannot be told whether functions of other PCI domains, or "
     "of this one, are missing.",
     "Show sysfs to the program (mount it in the container), or capture the machine again.",
     &NoSysfs},
    {"domain-missing", Severity::kError,
     "Functions in other PCI domains are missing: the kernel's list gives no domain, and in "
     "domain 0 there is no such function.",
     "Take these functions from /sys/bus/pci/devices.", &MissingOfOtherDomains},
    {"domain-mixed-up", Severity::kError,
     "Functions in other PCI domains are published as the ones with the same address and "
     "identifiers in domain 0; what is published there mixes both.",
     "Take both functions from /sys/bus/pci/devices.", &MixedUpOfOtherDomains},
    {"address-repeated", Severity::kWarning,
     "The kernel's list names these addresses more than once, which is how functions of several "
     "PCI domains look in it; one of them is published.",
     "Compare with /sys/bus/pci/devices, which names the domains.", &RepeatedInList},
    {"function-unpublished", Severity::kError,
     "The kernel knows these functions, and they are "
     "not published.",
     "See the messages of \"pciinfo instances QZMSG_PCIDevice QZMSG_PCIBridge\".", &UnpublishedFunctions},
    {"ids-disagree", Severity::kError,
     "The kernel's list, the configuration and sysfs name different vendors or devices.",
     "The function may have been exchanged, or have failed; rescan the bus or restart the "
     "machine.",
     &DisagreeingIds},
    {"listing-missing", Severity::kWarning,
     "lspci gives no listing: there are no descriptions and no raw listings.",
     "Install the package pciutils, or capture the machine again with it.", &NoListing},
    {"description-missing", Severity::kWarning,
     "Nothing describes these functions; their \"Description\" is made of their numbers.",
     "Install or update the names that lspci knows (update-pciids).", &WithoutDescription},
    {"configuration-short", Severity::kNote,
     "Only the first 64 bytes of these configurations can be read: raw listings lack "
     "capabilities, links and serial numbers.",
     "Run as root, or capture the machine as root.", &WithHeaderOnly},
};

}  // namespace

const std::vector<Check>& FunctionChecks() { return kFunctionChecks; }

}  // namespace pciinfo
