// SPDX-License-Identifier: Apache-2.0
#include "tests/system/verbose_lspci.h"

#include <regex>
#include <set>
#include <sstream>
#include <vector>

namespace {

/// A line of lspci, and the names of the facts that its groups hold.
struct LineForm {
  std::regex expression;
  std::vector<const char*> facts;
};

void TakeLine(const std::string& line, const std::vector<LineForm>& forms, Facts* facts) {
  for (const LineForm& form : forms) {
    std::smatch match;
    if (!std::regex_search(line, match, form.expression)) continue;
    for (std::size_t i = 0; i < form.facts.size(); ++i) {
      if (match[i + 1].matched) (*facts)[form.facts[i]] = match[i + 1];
    }
  }
}

const std::vector<LineForm>& FunctionForms() {
  static const std::vector<LineForm> forms{
      {std::regex("^\\S+ (\\w{4}): (\\w{4}:\\w{4})"), {"class", "IDs"}},
      {std::regex("^\\S+ .*\\(rev (\\w\\w)\\)"), {"revision"}},
      {std::regex("^\\S+ .*\\(prog-if (\\w\\w)"), {"interface"}},
      {std::regex("^\tBus: primary=\\w\\w, secondary=(\\w\\w), subordinate=(\\w\\w)"),
       {"secondary", "subordinate"}},
      {std::regex("^\tKernel driver in use: (.*)"), {"driver"}},
      {std::regex("^\tNUMA node: (\\d+)"), {"NUMA node"}},
      {std::regex("^\tCapabilities: .* Express \\(v\\d\\) ([^,(]*[^,( ])"), {"port type"}},
      {std::regex("LnkCap:\tPort #\\d+, Speed (?:unknown|([0-9.]+)GT/s), Width x([1-9]\\d*)"),
       {"most speed", "most width"}},
      {std::regex("LnkSta:\tSpeed (?:unknown|([0-9.]+)GT/s)(?: \\(\\w+\\))?, Width x([1-9]\\d*)"),
       {"speed", "width"}}};
  return forms;
}

const std::vector<LineForm>& PortSlotForms() {
  static const std::vector<LineForm> forms{
      {std::regex("SltCap:.*HotPlug(.) Surprise(.)"), {"hot-plug", "surprise"}},
      {std::regex("^\t\t\tSlot #(\\d+),"), {"number"}},
      {std::regex("Control: AttnInd \\w+, PwrInd (\\w+), Power"), {"power indicator"}},
      {std::regex("SltSta:.*PresDet(.)"), {"present"}}};
  return forms;
}

const std::vector<LineForm>& PhysicalSlotForms() {
  static const std::vector<LineForm> forms{{std::regex("^\tPhysical Slot: (.*)"), {"kernel slot"}}};
  return forms;
}

void DropEmpty(FactsByName* all) {
  std::erase_if(*all, [](const auto& facts) { return facts.second.empty(); });
}

/// Tells properties of an instance in the words of lspci.
class Teller {
 public:
  explicit Teller(const nlohmann::json& properties) : properties_(properties) {}

  void Text(const char* fact, const char* property) {
    if (properties_.contains(property)) facts_[fact] = properties_.at(property);
  }
  void Number(const char* fact, const char* property) {
    if (properties_.contains(property)) facts_[fact] = std::to_string(Get(property));
  }
  void Flag(const char* fact, const char* property, const char* yes, const char* no) {
    if (properties_.contains(property)) facts_[fact] = properties_.at(property) ? yes : no;
  }
  void Speed(const char* fact, const char* property) {
    if (!properties_.contains(property)) return;
    std::ostringstream text;
    text << Get(property) / 1000.0;
    facts_[fact] = text.str();
  }
  std::string Hex(const char* property, int digits) const {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, static_cast<unsigned>(Get(property)));
    return text;
  }
  /// lspci leaves out what is 0.
  void HexUnlessZero(const char* fact, const char* property) {
    if (properties_.contains(property) && Get(property) != 0) facts_[fact] = Hex(property, 2);
  }
  void Set(const char* fact, const std::string& text) { facts_[fact] = text; }
  const Facts& Get() const { return facts_; }

 private:
  int Get(const char* property) const { return properties_.at(property); }

  const nlohmann::json& properties_;
  Facts facts_;
};

Facts TellFunction(const nlohmann::json& properties) {
  static const std::map<std::string, std::string> portTypes{
      {"endpoint", "Endpoint"},
      {"legacy endpoint", "Legacy Endpoint"},
      {"root port", "Root Port"},
      {"switch upstream port", "Upstream Port"},
      {"switch downstream port", "Downstream Port"},
      {"PCI Express to PCI bridge", "PCI-Express to PCI/PCI-X Bridge"},
      {"root complex integrated endpoint", "Root Complex Integrated Endpoint"}};
  Teller tell(properties);
  tell.Set("class", tell.Hex("BaseClass", 2) + tell.Hex("Subclass", 2));
  tell.Set("IDs", tell.Hex("VendorID", 4) + ":" + tell.Hex("DeviceID", 4));
  tell.HexUnlessZero("revision", "Revision");
  // lspci prints the interface 0 of classes that have names for interfaces.
  if (tell.Hex("BaseClass", 2) + tell.Hex("Subclass", 2) == "0604") tell.Set("interface", "00");
  tell.HexUnlessZero("interface", "ProgrammingInterface");
  tell.HexUnlessZero("secondary", "SecondaryBus");
  tell.HexUnlessZero("subordinate", "SubordinateBus");
  tell.Text("driver", "Driver");
  tell.Number("NUMA node", "NumaNode");
  if (properties.contains("PortType")) {
    tell.Set("port type", portTypes.at(properties.at("PortType")));
  }
  tell.Speed("most speed", "MaxLinkTransferRate");
  tell.Number("most width", "MaxLinkWidth");
  tell.Speed("speed", "LinkTransferRate");
  tell.Number("width", "LinkWidth");
  return tell.Get();
}

Facts TellPortSlot(const nlohmann::json& properties) {
  static const std::map<std::string, std::string> indicators{
      {"on", "On"}, {"off", "Off"}, {"blinking", "Blink"}};
  Teller tell(properties);
  tell.Flag("hot-plug", "PortHotPlug", "+", "-");
  tell.Flag("surprise", "PortSurpriseRemoval", "+", "-");
  tell.Flag("present", "PortCardPresent", "+", "-");
  // Zero is what a port holds whose number nobody set.
  tell.Set("number", "0");
  tell.Number("number", "PhysicalSlotNumber");
  if (properties.contains("PowerIndicator")) {
    tell.Set("power indicator", indicators.at(properties.at("PowerIndicator")));
  }
  return tell.Get();
}

Facts TellKernelSlot(const nlohmann::json& properties) {
  static const std::map<std::string, std::string> indicators{
      {"off", "0"}, {"on", "1"}, {"blinking", "2"}};
  Teller tell(properties);
  tell.Flag("adapter", "CardPresent", "1", "0");
  tell.Flag("power", "PowerOn", "1", "0");
  tell.Flag("latch", "LatchOpen", "1", "0");
  if (properties.contains("AttentionIndicator")) {
    tell.Set("attention", indicators.at(properties.at("AttentionIndicator")));
  }
  return tell.Get();
}

template <class Take>
void ForEachOf(const nlohmann::json& instances, const char* className, const Take& take) {
  for (const nlohmann::json& instance : instances.at("instances")) {
    if (instance.at("class") == className) take(instance);
  }
}

}  // namespace

VerboseLspci ReadVerboseLspci(const std::string& listing) {
  VerboseLspci read;
  std::string address;
  std::istringstream stream(listing);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.front() != '\t') address = line.substr(0, line.find(' '));
    TakeLine(line, FunctionForms(), &read.functions[address]);
    TakeLine(line, PortSlotForms(), &read.portSlots[address]);
    TakeLine(line, PhysicalSlotForms(), &read.physicalSlots[address]);
  }
  DropEmpty(&read.portSlots);
  DropEmpty(&read.physicalSlots);
  return read;
}

FactsByName ReadKernelSlots(const std::string& listing) {
  static const std::regex form(".*/([^/]+)/([^/:]+):(.*)");
  static const std::set<std::string> states{"adapter", "power", "attention", "latch"};
  FactsByName slots;
  std::istringstream stream(listing);
  for (std::string line; std::getline(stream, line);) {
    std::smatch match;
    if (!std::regex_match(line, match, form)) continue;
    Facts& slot = slots[match[1]];
    if (states.contains(match[2])) slot[match[2]] = match[3];
  }
  return slots;
}

FactsByName TellFunctions(const nlohmann::json& instances) {
  FactsByName told;
  ForEachOf(instances, "VTQ_PCIFunction", [&](const nlohmann::json& function) {
    const nlohmann::json& properties = function.at("properties");
    told[properties.at("Address")] = TellFunction(properties);
  });
  return told;
}

FactsByName TellPortSlots(const nlohmann::json& instances) {
  FactsByName told;
  ForEachOf(instances, "VTQ_PCISlot", [&](const nlohmann::json& slot) {
    const nlohmann::json& properties = slot.at("properties");
    if (!properties.contains("PortHotPlug")) return;
    told[properties.at("Leads").at(0)] = TellPortSlot(properties);
  });
  return told;
}

FactsByName TellPhysicalSlots(const nlohmann::json& instances) {
  std::map<std::string, std::string> kernelSlots;
  ForEachOf(instances, "VTQ_PCISlot", [&](const nlohmann::json& slot) {
    kernelSlots[slot.at("path")] = slot.at("properties").value("KernelSlot", "");
  });
  FactsByName told;
  ForEachOf(instances, "VTQ_PCIFunctionInSlot", [&](const nlohmann::json& association) {
    const nlohmann::json& properties = association.at("properties");
    const std::string function = properties.at("Dependent");
    const std::size_t first = function.find('"') + 1;
    const std::string& kernelSlot = kernelSlots.at(properties.at("Antecedent"));
    if (kernelSlot.empty()) return;
    told[function.substr(first, function.rfind('"') - first)]["kernel slot"] = kernelSlot;
  });
  return told;
}

FactsByName TellKernelSlots(const nlohmann::json& instances) {
  FactsByName told;
  ForEachOf(instances, "VTQ_PCISlot", [&](const nlohmann::json& slot) {
    const nlohmann::json& properties = slot.at("properties");
    if (properties.contains("KernelSlot")) {
      told[properties.at("KernelSlot")] = TellKernelSlot(properties);
    }
    const auto several = properties.value("KernelSlots", std::vector<std::string>());
    for (const std::string& name : several) told[name] = {};
  });
  return told;
}
