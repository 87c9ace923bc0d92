// SPDX-License-Identifier: Apache-2.0
#include "tests/host/diff/made_machine.h"

#include "host/base/namespace_name.h"
#include "host/schema/class_file.h"

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

TCIMValue TextsValueOf(const std::vector<std::string>& texts) {
  TCIMValue::TArray elements(texts.begin(), texts.end());
  const auto count = static_cast<std::uint32_t>(elements.size());
  return TCIMValue(TCIMValue::TCIMType(TCIMValue::TCIMType::kString), count, std::move(elements));
}

MadeMachine::MadeMachine() : repository_(vtq::Namespace::Create(pciinfo::kNamespaceName)) {
  for (vtq::ClassSchema& schema : pciinfo::LoadClasses(TOPOLOGY_CLASS_FILE)) {
    repository_->Declare(std::move(schema));
  }
}

void MadeMachine::Create(const char* className, const Properties& properties) {
  const auto instance = std::make_shared<vtq::Instance>(repository_->Find(className));
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
}

TCIMValue MadeMachine::Reference(const char* className, const char* key,
                                 const std::string& value) const {
  return TCIMValue(TCIMReference(repository_->GetName({}), className, {{key, TCIMValue(value)}}));
}

MadeMachine& MadeMachine::Function(const std::string& address, unsigned device, Properties more) {
  more.insert(more.begin(), {{"Address", TCIMValue(address)},
                             {"VendorID", WordValue(0x8086)},
                             {"DeviceID", WordValue(device)}});
  Create("VTQ_PCIFunction", more);
  return *this;
}

MadeMachine& MadeMachine::RootPort(const std::string& address, unsigned bus) {
  return Function(address, 0x2030,
                  {{"HeaderType", ByteValue(1)},
                   {"PortType", TCIMValue("root port")},
                   {"Place", TCIMValue("on board")},
                   {"SecondaryBus", ByteValue(bus)},
                   {"SubordinateBus", ByteValue(bus)}});
}

MadeMachine& MadeMachine::Card(const std::string& address, unsigned device, const std::string& port,
                               Properties more) {
  more.emplace_back("ParentPort", TCIMValue(port));
  return Function(address, device, std::move(more));
}

MadeMachine& MadeMachine::Details(const std::string& address, const Properties& properties) {
  Properties all = {{"Address", TCIMValue(address)}};
  all.insert(all.end(), properties.begin(), properties.end());
  Create("VTQ_PCIFunctionDetails", all);
  return *this;
}

MadeMachine& MadeMachine::Slot(const std::string& name, unsigned id,
                               const std::vector<std::string>& ports, const std::string& state,
                               Properties more) {
  more.insert(more.begin(), {{"Name", TCIMValue(name)},
                             {"Source", TCIMValue("SMBIOS record")},
                             {"State", TCIMValue(state)},
                             {"SlotID", WordValue(id)},
                             {"RecordHandle", WordValue(id)},
                             {"Leads", TextsValueOf(ports)}});
  Create("VTQ_PCISlot", more);
  return *this;
}

MadeMachine& MadeMachine::Put(const std::string& address, const std::string& slot) {
  Create("VTQ_PCIFunctionInSlot", {{"Antecedent", Reference("VTQ_PCISlot", "Name", slot)},
                                   {"Dependent", Reference("VTQ_PCIFunction", "Address", address)},
                                   {"Certainty", TCIMValue("certain")},
                                   {"Evidence", TCIMValue("a test")}});
  const auto function =
      repository_->Find("VTQ_PCIFunction")
          ->Find(Reference("VTQ_PCIFunction", "Address", address).GetReference().ToString());
  function->SetProperty("Place", TCIMValue("slot"), {});
  return *this;
}
