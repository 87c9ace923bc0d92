// SPDX-License-Identifier: Apache-2.0
#include "host/check/machine_facts.h"

#include "host/machine/property_reader.h"

namespace pciinfo {
namespace {

FunctionFacts ReadFunctionFacts(const PropertyReader& reader, const vtq::Instance& instance) {
  const auto count = [&](const char* total, const char* kinds) {
    return ErrorCount{reader.LongNumber(instance, total), reader.Texts(instance, kinds)};
  };
  FunctionFacts facts;
  facts.corrected = count("CorrectableErrorCount", "CorrectableErrorCounters");
  facts.nonFatal = count("NonFatalErrorCount", "NonFatalErrorCounters");
  facts.fatal = count("FatalErrorCount", "FatalErrorCounters");
  facts.powerState = reader.Text(instance, "PowerState");
  facts.modules = reader.Texts(instance, "DriverModules");
  facts.regions = ReadRegions(reader, instance);
  facts.serialNumber = reader.Text(instance, "SerialNumber");
  facts.productName = reader.Text(instance, "ProductName");
  facts.partNumber = reader.Text(instance, "ProductPartNumber");
  facts.productSerialNumber = reader.Text(instance, "ProductSerialNumber");
  facts.systemDevices = ReadSystemDevices(reader, instance);
  return facts;
}

}  // namespace

MachineFacts ReadMachineFacts(const vtq::Namespace& repository) {
  MachineFacts facts{ReadMachine(repository), {}};
  facts.functions.resize(facts.machine.functions.size());
  const std::shared_ptr<vtq::Class> cimClass = repository.Find(kDetailsClass);
  if (cimClass == nullptr) return facts;
  const PropertyReader reader(*cimClass);
  for (const auto& instance : cimClass->GetInstances()) {
    const auto address = ParseDomainAddress(reader.Text(*instance, "Address"));
    const MachineFunction* function = address ? facts.machine.Find(*address) : nullptr;
    if (function == nullptr) continue;
    const auto place = static_cast<std::size_t>(function - facts.machine.functions.data());
    facts.functions[place] = ReadFunctionFacts(reader, *instance);
  }
  return facts;
}

}  // namespace pciinfo
