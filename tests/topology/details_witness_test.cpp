// SPDX-License-Identifier: Apache-2.0

// "lspci -vvv" decodes the same registers, and the kernel's `resource` files list the same regions:
// what they tell must be equal, in both directions.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "tests/fakes/run_process.h"
#include "tests/runtime/temporary_directory.h"
#include "tests/topology/captured_trees.h"

namespace {

namespace fs = std::filesystem;

using nlohmann::json;
/// A fact in words, by its name.
using Facts = std::map<std::string, std::string>;
/// The facts of each function by its address.
using FactsOfAll = std::map<std::string, Facts>;

/// A line of "lspci -vvv", and the names of what its groups hold. A name that begins with "+" is
/// told "yes" for "+" and "no" for "-".
struct LineForm {
  const char* expression;
  std::vector<const char*> names;
};

const std::vector<LineForm>& LineForms() {
  static const std::vector<LineForm> forms = {
      {"Interrupt: pin ([A-D]) ", {"pin"}},
      {"Interrupt: pin [A-D?] routed to IRQ (\\d+)", {"irq"}},
      {"MSI: Enable([+-]) Count=(\\d+)/(\\d+)", {"+msi", "msi count", "msi most"}},
      {"MSI-X: Enable([+-]) Count=(\\d+)", {"+msix", "msix most"}},
      {"LnkCap:\tPort #\\d+, Speed (?:unknown|([0-9.]+)GT/s), Width x([1-9]\\d*)",
       {"most speed", "most width"}},
      {"LnkSta:\tSpeed (?:unknown|([0-9.]+)GT/s)(?: \\([^)]*\\))?, Width x([1-9]\\d*)",
       {"speed", "width"}},
      {"DevCtl2: .* ARIFwd([+-])", {"+forwards"}},
      {"Device Serial Number ([0-9a-f-]+)", {"serial"}},
      {"IOVCtl:\tEnable([+-])", {"+vf enabled"}},
      {"Total VFs: (\\d+), Number of VFs: (\\d+)", {"vf total", "vf number"}},
      {"VF offset: (\\d+), stride: (\\d+), Device ID: ([0-9a-f]{4})",
       {"vf offset", "vf stride", "vf device"}},
      {"ARICap:\t.*Next Function: (\\d+)", {"next function"}},
      {"IOMMU group: (\\d+)", {"iommu group"}},
  };
  return forms;
}

/// Whether the line holds the plain text that the expression begins with. Few lines do, and the
/// search for an expression takes long: with sanitizers a minute for all captures.
bool MayMatch(const std::string& line, std::string_view expression) {
  return line.find(expression.substr(0, expression.find_first_of("\\.([*+?"))) != std::string::npos;
}

void TakeForms(const std::string& line, Facts& facts) {
  static const std::vector<std::regex> expressions = [] {
    std::vector<std::regex> made;
    for (const LineForm& form : LineForms()) made.emplace_back(form.expression);
    return made;
  }();
  for (std::size_t i = 0; i < expressions.size(); ++i) {
    std::smatch match;
    if (!MayMatch(line, LineForms()[i].expression)) continue;
    if (!std::regex_search(line, match, expressions[i])) continue;
    const std::vector<const char*>& names = LineForms()[i].names;
    for (std::size_t group = 0; group < names.size(); ++group) {
      const std::string text = match[group + 1];
      if (!match[group + 1].matched) continue;
      const bool isFlag = names[group][0] == '+';
      facts[names[group] + (isFlag ? 1 : 0)] = !isFlag ? text : text == "+" ? "yes" : "no";
    }
  }
}

/// The names of a line such as "UESta: DLP- CmpltTO+" that end with "+".
void TakeErrors(const std::string& line, Facts& facts) {
  for (const char* kind : {"UESta:", "CESta:"}) {
    if (line.find(kind) == std::string::npos) continue;
    std::istringstream words(line.substr(line.find(kind) + 6));
    std::string& names = facts[kind];
    for (std::string word; words >> word;) {
      if (word.ends_with("+")) names += word.substr(0, word.size() - 1) + " ";
    }
  }
}

/// "BAR 1: current size: 16GB, supported: 64MB 128MB".
void TakeResizable(const std::string& line, Facts& facts) {
  if (!MayMatch(line, "BAR ")) return;
  static const std::regex expression("BAR (\\d+): current size: (\\S+), supported: (.*)");
  std::smatch match;
  if (!std::regex_search(line, match, expression)) return;
  std::string sizes = match[3];
  sizes.erase(sizes.find_last_not_of(' ') + 1);
  facts["resizable " + match[1].str()] = match[2].str() + " of " + sizes;
}

/// "Region 0: Memory at fc000000 (64-bit, prefetchable) [size=16M]", without the size, which is
/// compared with the kernel's. Regions without an address are not listed by the kernel.
void TakeRegion(const std::string& line, Facts& facts) {
  if (!MayMatch(line, "Region ")) return;
  static const std::regex expression(
      "Region (\\d): (Memory|I/O ports) at ([0-9a-f]+) (?:\\((\\d+)-bit, (non-)?prefetchable\\) )?"
      ".*\\[size=");
  std::smatch match;
  if (!std::regex_search(line, match, expression)) return;
  facts["region " + match[1].str()] =
      (match[2] == "Memory" ? "memory" : "I/O") + (" " + match[3].str()) +
      (match[4] == "64" ? " wide" : "") +
      (match[4].matched && !match[5].matched ? " prefetchable" : "");
}

FactsOfAll AskLspciVerbosely(const std::string& root) {
  const RunResult run = RunProcess(
      {"lspci", "-A", "linux-sysfs", "-O", "sysfs.path=" + root + "/sys/bus/pci", "-vvv", "-D"});
  EXPECT_EQ(run.status, 0) << run.err;
  static const std::regex head("^([0-9a-f]{4,}:[0-9a-f]{2}:[0-9a-f]{2}\\.[0-7]) ");
  FactsOfAll all;
  std::string address;
  for (const std::string& line : LinesOf(run.out)) {
    std::smatch match;
    if (!line.starts_with('\t') && std::regex_search(line, match, head)) address = match[1];
    Facts& facts = all[address];
    TakeForms(line, facts);
    TakeErrors(line, facts);
    TakeResizable(line, facts);
    TakeRegion(line, facts);
  }
  return all;
}

/// The lines of a `resource` file that are regions, by their number: first byte and size.
Facts ReadResourceFile(const std::string& path) {
  Facts facts;
  std::ifstream file(path);
  std::string line;
  for (unsigned number = 0; std::getline(file, line); ++number) {
    unsigned long long first = 0, last = 0, flags = 0;
    if (std::sscanf(line.c_str(), "%llx %llx %llx", &first, &last, &flags) != 3) continue;
    if (first == 0 && last == 0 && flags == 0) continue;
    facts[std::to_string(number)] = std::to_string(first) + "+" + std::to_string(last - first + 1);
  }
  return facts;
}

/// Tells what the plug-in's instances say in the words of lspci.
class Told {
 public:
  explicit Told(const json& properties) : properties_(properties) {}

  Facts TakeFacts() {
    SetNumber("InterruptNumber", "irq");
    const int pin = Get<int>("InterruptPin");
    if (pin != 0) facts_["pin"] = std::string(1, static_cast<char>('A' + pin - 1));
    SetMessages();
    SetNumber("MaxLinkWidth", "most width");
    SetNumber("LinkWidth", "width");
    SetRate("MaxLinkTransferRate", "most speed");
    SetRate("LinkTransferRate", "speed");
    SetFlag("ForwardsAlternativeRoutingID", "forwards");
    if (Has("SerialNumber")) facts_["serial"] = Get<std::string>("SerialNumber");
    SetNumber("NextFunction", "next function");
    SetNumber("IommuGroup", "iommu group");
    SetVirtualFunctions();
    SetErrors();
    SetResizable();
    return std::move(facts_);
  }

  Facts Resources() const {
    Facts facts;
    for (std::size_t i = 0; Has("RegionNumber") && i < List("RegionNumber").size(); ++i) {
      facts[std::to_string(Element<unsigned>("RegionNumber", i))] =
          std::to_string(Element<std::uint64_t>("RegionStart", i)) + "+" +
          std::to_string(Element<std::uint64_t>("RegionSize", i));
    }
    return facts;
  }

  std::string RegionText(std::size_t i) const {
    std::array<char, 20> start{};
    std::snprintf(start.data(), start.size(), "%0*llx",
                  Element<std::string>("RegionKind", i) == "I/O" ? 4 : 8,
                  static_cast<unsigned long long>(Element<std::uint64_t>("RegionStart", i)));
    const std::string text = Element<std::string>("RegionKind", i) + " " + start.data();
    return text + (Element<bool>("Region64Bit", i) ? " wide" : "") +
           (Element<bool>("RegionPrefetchable", i) ? " prefetchable" : "");
  }

 private:
  bool Has(const char* name) const { return properties_.contains(name); }
  const json& List(const char* name) const { return properties_.at(name); }
  template <class Value>
  Value Get(const char* name) const {
    return properties_.at(name).get<Value>();
  }
  template <class Value>
  Value Element(const char* name, std::size_t i) const {
    return properties_.at(name).at(i).get<Value>();
  }
  void SetNumber(const char* property, const char* fact) {
    if (Has(property)) facts_[fact] = std::to_string(Get<unsigned>(property));
  }
  void SetFlag(const char* property, const char* fact) {
    if (Has(property)) facts_[fact] = Get<bool>(property) ? "yes" : "no";
  }
  void SetRate(const char* property, const char* fact) {
    if (!Has(property)) return;
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%g", Get<unsigned>(property) / 1000.0);
    facts_[fact] = text.data();
  }
  void SetMessages() {
    SetNumber("MsiVectors", "msi most");
    SetNumber("MsixVectors", "msix most");
    if (Has("MsiVectors")) {
      facts_["msi"] = Get<int>("EnabledMsiVectors") != 0 ? "yes" : "no";
      SetNumber("EnabledMsiVectors", "msi count");
    }
    if (Has("MsixVectors")) facts_["msix"] = Get<int>("EnabledMsixVectors") != 0 ? "yes" : "no";
  }
  void SetVirtualFunctions() {
    SetNumber("TotalVirtualFunctions", "vf total");
    SetNumber("EnabledVirtualFunctions", "vf number");
    SetNumber("VirtualFunctionOffset", "vf offset");
    SetNumber("VirtualFunctionStride", "vf stride");
    if (!Has("VirtualFunctionDeviceID")) return;
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%04x", Get<unsigned>("VirtualFunctionDeviceID"));
    facts_["vf device"] = text.data();
    facts_["vf enabled"] = Get<int>("EnabledVirtualFunctions") != 0 ? "yes" : "no";
  }
  /// lspci 3.9 knows fewer errors, and names one otherwise.
  void SetErrors() {
    if (!Has("ErrorReporting") || !Get<bool>("ErrorReporting")) return;
    static const std::string known =
        " DLP SDES TLP FCP CmpltTO CmpltAbrt UnxCmplt RxOF MalfTLP ECRC UnsupReq ACSViol "
        "RxErr BadTLP BadDLLP Rollover Timeout AdvNonFatalErr ";
    for (const auto& [property, fact] :
         {std::pair("UncorrectableErrors", "UESta:"), std::pair("CorrectableErrors", "CESta:")}) {
      std::string& names = facts_[fact];
      for (std::size_t i = 0; Has(property) && i < List(property).size(); ++i) {
        std::string name = Element<std::string>(property, i);
        if (name == "NonFatalErr") name = "AdvNonFatalErr";
        if (known.find(" " + name + " ") != std::string::npos) names += name + " ";
      }
    }
  }
  void SetResizable() {
    for (std::size_t i = 0;
         Has("ResizableRegionNumber") && i < List("ResizableRegionNumber").size(); ++i) {
      std::string text = SizeOf(Element<std::uint64_t>("ResizableRegionSize", i)) + " of " +
                         Element<std::string>("ResizableRegionSizes", i);
      text = std::regex_replace(text, std::regex(" ([MGT])iB,?"), "$1B");
      facts_["resizable " + std::to_string(Element<unsigned>("ResizableRegionNumber", i))] = text;
    }
  }
  static std::string SizeOf(std::uint64_t bytes) {
    const std::uint64_t mebibytes = bytes >> 20;
    return mebibytes < 1024 ? std::to_string(mebibytes) + "MB"
                            : std::to_string(mebibytes >> 10) + "GB";
  }

  const json& properties_;
  Facts facts_;
};

/// The properties of both classes of functions, together, by address.
std::map<std::string, json> AskPluginForAll(const std::string& root) {
  std::vector<std::string> words{PCIINFO_PROGRAM};
  if (root != "/") words.insert(words.end(), {"--root", root});
  words.insert(words.end(), {"instances", "VTQ_PCIFunction", "VTQ_PCIFunctionDetails",
                             "--only-plugin", TOPOLOGY_PLUGIN, "--format", "json"});
  const RunResult run = RunProcess(words);
  EXPECT_EQ(run.status, 0) << run.err;
  std::map<std::string, json> all;
  const json document = json::parse(run.out);
  for (const json& instance : document.at("instances")) {
    const json& properties = instance.at("properties");
    all[properties.at("Address")].update(properties);
  }
  return all;
}

/// Regions that lspci tells, against the same ones of the plug-in.
void ExpectSameRegions(Facts& listed, const json& properties, const std::string& where) {
  const Told told(properties);
  const std::size_t count =
      properties.contains("RegionNumber") ? properties.at("RegionNumber").size() : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto found = listed.find(
        "region " + std::to_string(properties.at("RegionNumber").at(i).get<unsigned>()));
    if (found == listed.end()) continue;
    EXPECT_EQ(told.RegionText(i), found->second) << where;
    listed.erase(found);
  }
  for (const auto& [fact, value] : listed) {
    EXPECT_FALSE(fact.starts_with("region")) << where << ": no " << fact << ": " << value;
  }
}

/// What the plug-in says of the other end of a link is what lspci says of the port above.
void ExpectSameOtherEnd(const FactsOfAll& listed, const json& properties,
                        const std::string& where) {
  if (!properties.contains("PortMaxLinkWidth")) return;
  const Facts& port = listed.at(properties.at("ParentPort"));
  EXPECT_EQ(std::to_string(properties.at("PortMaxLinkWidth").get<unsigned>()),
            port.at("most width"))
      << where;
  EXPECT_EQ(properties.contains("PortLinkWidth"), port.contains("width")) << where;
  if (!properties.contains("PortLinkWidth")) return;
  EXPECT_EQ(std::to_string(properties.at("PortLinkWidth").get<unsigned>()), port.at("width"))
      << where;
  EXPECT_EQ(properties.contains("PortLinkTransferRate"), port.contains("speed")) << where;
  if (!properties.contains("PortLinkTransferRate")) return;
  EXPECT_EQ(properties.at("PortLinkTransferRate").get<unsigned>() / 1000.0,
            std::stod(port.at("speed")))
      << where;
}

/// lspci names some facts in more cases than it decodes them; those that mean nothing go.
void LeaveOutWhatIsNoFact(Facts& facts, const json& properties) {
  // The speed of a link that does not exist.
  if (!facts.contains("width")) facts.erase("speed");
  if (!facts.contains("most width")) facts.erase("most speed");
  // Only ports forward to a device below.
  if (!properties.contains("ForwardsAlternativeRoutingID")) facts.erase("forwards");
  // Counts of messages that are not enabled.
  if (facts.contains("msi") && facts["msi"] == "no") facts["msi count"] = "0";
  if (facts.contains("vf enabled") && facts["vf enabled"] == "no") facts["vf number"] = "0";
}

/// The number of functions that were compared.
std::size_t CompareDetails(const std::string& root) {
  FactsOfAll listed = AskLspciVerbosely(root);
  const std::map<std::string, json> told = AskPluginForAll(root);
  EXPECT_EQ(told.size(), listed.size()) << root;
  for (const auto& [address, properties] : told) {
    const std::string where = root + " " + address;
    Facts facts = listed[address];
    ExpectSameRegions(facts, properties, where);
    LeaveOutWhatIsNoFact(facts, properties);
    Facts said = Told(properties).TakeFacts();
    // lspci is silent about the interrupt of a function without a pin.
    if (!facts.contains("irq")) said.erase("irq");
    EXPECT_EQ(said, facts) << where;
    ExpectSameOtherEnd(listed, properties, where);
    EXPECT_EQ(Told(properties).Resources(),
              ReadResourceFile(root + "/sys/bus/pci/devices/" + address + "/resource"))
        << where;
  }
  return told.size();
}

TEST(DetailsWitness, LspciTellsTheSameOfThisMachine) {
  if (!fs::exists("/sys/bus/pci/devices")) GTEST_SKIP() << "this machine has no PCI bus";
  EXPECT_GT(CompareDetails("/"), 0U);
}

TEST(DetailsWitness, LspciTellsTheSameOfAGeneratedServer) {
  const vtq::TemporaryDirectory directory;
  const std::string root = directory / "machine";
  ASSERT_EQ(RunProcess({BENCH_MACHINE, "64", root}).status, 0);
  EXPECT_EQ(CompareDetails(root), 64U);
}

#ifdef PCIINFO_MACHINES

TEST(DetailsWitness, LspciTellsTheSameOfCapturedMachines) {
  EXPECT_GT(CompareCaptures(PCIINFO_MACHINES, &CompareDetails), 0U);
}

#endif

}  // namespace
