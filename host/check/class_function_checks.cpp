// SPDX-License-Identifier: Apache-2.0

// The checks of published PCI functions, except their regions.

#include <fmt/format.h>

#include <set>

#include "host/check/class_checks.h"
#include "host/check/facts_index.h"

namespace pciinfo {
namespace {

constexpr const char* kList = "/proc/bus/pci/devices";

std::string IdsText(const VendorAndDevice& ids) {
  return fmt::format("{:04x}:{:04x}", ids.vendor, ids.device);
}

std::optional<VendorAndDevice> IdsOf(const ClassFacts& facts, const FullAddress& where) {
  const auto found = facts.functions.find(where);
  return found == facts.functions.end() ? std::nullopt : found->second.ids;
}

bool IsKnown(const ClassFacts& facts, const FullAddress& where) {
  return facts.functions.count(where) != 0;
}

/// The plug-in looks for a function of another domain at the same address in domain 0. If a
/// function with the same identifiers is there, it is mistaken for that one; otherwise it is
/// dropped.
bool IsMistakenForDomainZero(const ClassFacts& facts, const FullAddress& where) {
  const FullAddress sameInDomainZero{0, where.address};
  return IsKnown(facts, sameInDomainZero) && IdsOf(facts, where).has_value() &&
         IdsOf(facts, where) == IdsOf(facts, sameInDomainZero);
}

std::vector<AffectedObject> FunctionsOfOtherDomains(const ClassFacts& facts, bool mistaken) {
  const PublishedIndex published(facts);
  std::vector<AffectedObject> objects;
  for (const auto& [where, function] : facts.functions) {
    if (where.domain == 0 || IsMistakenForDomainZero(facts, where) != mistaken) continue;
    const auto ids = IdsOf(facts, where);
    objects.push_back({FormatFullAddress(where), mistaken ? published.PathOf(where.address) : "",
                       ids ? IdsText(*ids) : ""});
  }
  return objects;
}

std::vector<AffectedObject> MissingOfOtherDomains(const ClassFacts& facts) {
  return FunctionsOfOtherDomains(facts, false);
}

std::vector<AffectedObject> MixedUpOfOtherDomains(const ClassFacts& facts) {
  return FunctionsOfOtherDomains(facts, true);
}

/// The addresses of functions in other domains. A line of the list with such an address may
/// describe any function that has it.
std::set<PciAddress> AddressesOfOtherDomains(const ClassFacts& facts) {
  std::set<PciAddress> addresses;
  for (const auto& [where, function] : facts.functions) {
    if (where.domain != 0) addresses.insert(where.address);
  }
  return addresses;
}

std::vector<AffectedObject> RepeatedInList(const ClassFacts& facts) {
  std::vector<AffectedObject> objects;
  const PublishedIndex published(facts);
  std::set<PciAddress> seen;
  std::set<PciAddress> reported;
  for (const ListedFunction& line : ListOf(facts)) {
    if (seen.insert(line.address).second || !reported.insert(line.address).second) continue;
    objects.push_back({FormatAddress(line.address), published.PathOf(line.address), ""});
  }
  return objects;
}

/// The functions that are certainly in domain 0.
std::set<PciAddress> KnownAddresses(const ClassFacts& facts) {
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

std::string ReasonOfAbsence(const ClassFacts& facts, const KernelIndex& kernel,
                            const PciAddress& address) {
  if (!facts.list) return "the kernel's list cannot be read";
  if (!kernel.IsListed(address)) return "the kernel's list does not name it";
  if (facts.configurations.count(address) == 0) return "its configuration cannot be read";
  return "";
}

std::vector<AffectedObject> UnpublishedFunctions(const ClassFacts& facts) {
  const PublishedIndex published(facts);
  const KernelIndex kernel(facts);
  std::vector<AffectedObject> objects;
  for (const PciAddress& address : KnownAddresses(facts)) {
    if (published.Find(address) != nullptr) continue;
    objects.push_back({FormatAddress(address), "", ReasonOfAbsence(facts, kernel, address)});
  }
  return objects;
}

/// Lists the identifiers of a function in the three sources if they differ; empty if they agree.
std::string Disagreement(const ClassFacts& facts, const ListedFunction& line) {
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

std::vector<AffectedObject> DisagreeingIds(const ClassFacts& facts) {
  const PublishedIndex published(facts);
  const std::set<PciAddress> others = AddressesOfOtherDomains(facts);
  std::vector<AffectedObject> objects;
  for (const ListedFunction& line : ListOf(facts)) {
    if (others.count(line.address) != 0) continue;
    const std::string detail = Disagreement(facts, line);
    if (detail.empty()) continue;
    objects.push_back({FormatAddress(line.address), published.PathOf(line.address), detail});
  }
  return objects;
}

std::vector<AffectedObject> WithoutDescription(const ClassFacts& facts) {
  std::vector<AffectedObject> objects;
  for (const PublishedFunction& published : facts.published) {
    const PciFunction& function = published.function;
    const std::string& text = function.description;
    // The plug-in writes this text for functions without a description.
    if (!text.empty() && !text.starts_with("PCI Vendor ID ")) continue;
    objects.push_back({AddressText(function), function.path, IdText(function)});
  }
  return objects;
}

std::vector<AffectedObject> WithHeaderOnly(const ClassFacts& facts) {
  const PublishedIndex published(facts);
  std::vector<AffectedObject> objects;
  for (const auto& [address, start] : facts.configurations) {
    if (start.isHeaderOnly) {
      objects.push_back({FormatAddress(address), published.PathOf(address), ""});
    }
  }
  return objects;
}

std::vector<AffectedObject> NoListing(const ClassFacts& facts) {
  if (facts.listingFailure.empty()) return {};
  return {{"lspci", "", facts.listingFailure}};
}

std::vector<AffectedObject> NoList(const ClassFacts& facts) {
  if (facts.list || !facts.hasPciBus) return {};
  return {{kList, "", ""}};
}

std::vector<AffectedObject> NoBus(const ClassFacts& facts) {
  if (facts.hasPciBus) return {};
  return {{"/proc/bus/pci", "", facts.isCapture ? "not in this capture" : "not on this machine"}};
}

std::vector<AffectedObject> NoSysfs(const ClassFacts& facts) {
  if (facts.hasSysfs || !facts.hasPciBus) return {};
  return {{"/sys/bus/pci/devices", "",
           facts.isCapture ? "not in this capture" : "not on this machine"}};
}

const std::vector<ClassCheck> kFunctionClassChecks = {
    {"pci-bus-missing", Severity::kNote, "No PCI bus was found.",
     "This is normal on a machine without PCI; a capture must contain proc/bus/pci.", &NoBus},
    {"list-unreadable", Severity::kError,
     "The kernel's list of PCI functions cannot be read, so no function is published.",
     "Allow this user to read /proc/bus/pci/devices, or capture the machine again.", &NoList},
    {"sysfs-missing", Severity::kNote,
     "Without /sys/bus/pci/devices, pciinfo cannot tell whether functions are missing, in PCI "
     "domain 0 or in others.",
     "Make sysfs visible to pciinfo (mount it in the container), or capture the machine again.",
     &NoSysfs},
    {"domain-missing", Severity::kNote,
     "Functions in other PCI domains are missing: the kernel's list does not name the domain, and "
     "domain 0 has no function with the same address and identifiers.",
     "Look these functions up in /sys/bus/pci/devices.", &MissingOfOtherDomains},
    {"domain-mixed-up", Severity::kNote,
     "Functions in other PCI domains are mistaken for the functions with the same address and "
     "identifiers in domain 0; each published instance mixes data of both.",
     "Look both functions up in /sys/bus/pci/devices.", &MixedUpOfOtherDomains},
    {"address-repeated", Severity::kNote,
     "The kernel's list names these addresses more than once, as it does for functions in several "
     "PCI domains; only one function per address is published.",
     "Compare with /sys/bus/pci/devices, which names the domains.", &RepeatedInList},
    {"function-unpublished", Severity::kError,
     "The kernel knows these functions, but they are not published.",
     "See the messages of \"pciinfo instances QZMSG_PCIDevice QZMSG_PCIBridge\".",
     &UnpublishedFunctions},
    {"ids-disagree", Severity::kError,
     "The kernel's list, the configuration space and sysfs name different vendors or devices.",
     "The function may have been replaced or may have failed; rescan the bus or restart the "
     "machine.",
     &DisagreeingIds},
    {"listing-missing", Severity::kWarning,
     "lspci gives no listing, so descriptions and raw listings are missing.",
     "Install the package pciutils, or capture the machine again with it.", &NoListing},
    {"description-missing", Severity::kWarning,
     "No source names these functions; their \"Description\" consists of their IDs.",
     "Install or update the ID database of lspci (update-pciids).", &WithoutDescription},
    {"configuration-short", Severity::kNote,
     "Only the first 64 bytes of these configuration spaces can be read, so raw listings lack "
     "capabilities, links and serial numbers.",
     "Run as root, or capture the machine as root.", &WithHeaderOnly},
};

}  // namespace

const std::vector<ClassCheck>& FunctionClassChecks() { return kFunctionClassChecks; }

}  // namespace pciinfo
