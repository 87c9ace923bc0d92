// SPDX-License-Identifier: Apache-2.0
#include "pci/dev_info.h"

#include <utility>

#include "framework/exception.h"
#include "pci/process_state.h"
#include "plugin/class_names.h"
#include "plugin/constants.h"
#include "plugin/values.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TPluginManagerProvider;
using NQZMVTQ20::TVTQException;

constinit PciProcessState processState;

TPciDevInfo::TPciDevInfo(std::shared_ptr<ICIMClass> cimClass) : TPci(std::move(cimClass)) {}

TPciDevInfo::TPciDevInfo(std::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* infoHandle)
    : TPci(std::move(cimClass), infoHandle) {
  if (processState.slotDataLoaded) return;
  processState.slotDataLoaded = true;
  processState.slotIDRetrievalType = static_cast<unsigned>(GetSlotIDRetrievalType());
  if (processState.slotIDRetrievalType == 0) return;
  if (readPCISlotLocation(&slotLocationVect) != 0) return;
  readPCIConfigForSlots(&slotLocationVect, &slotBusCollectionVect);
}

TPciDevInfo::~TPciDevInfo() = default;

std::vector<ICIMInstance*> TPciDevInfo::GetCIMInstances(std::string className) {
  PciProcessState& state = processState;
  if ((className == kPciBridgeClass || className == kPciDeviceClass) && !state.pciInfoCollected) {
    GetPciInfo(&state.pciBridgePropsVect, &state.pciDevicePropsVect);
    state.pciInfoCollected = true;
  }

  std::vector<ICIMInstance*> instances;
  if (className == kPciBridgeClass) {
    AppendInstances(&instances, state.pciBridgePropsVect, className);
  } else if (className == kPciDeviceClass) {
    AppendInstances(&instances, state.pciDevicePropsVect, className);
  } else if (className == kDeviceInSlotClass) {
    GeneratePciInstances(&instances, MakeDeviceSlotAssociation(), className);
  } else if (className == kPciRawDataClass) {
    for (const std::string& command : {kListHexCommand, kListVerboseCommand}) {
      std::vector<TPropertyMap> maps;
      GetPciRawData(&maps, command);
      GeneratePciInstances(&instances, std::move(maps), className);
    }
  }
  return instances;
}

void TPciDevInfo::GeneratePciInstances(std::vector<ICIMInstance*>* instances,
                                       std::vector<TPropertyMap> maps, std::string className) {
  AppendInstances(instances, maps, className);
}

void TPciDevInfo::AppendInstances(std::vector<ICIMInstance*>* instances,
                                  const std::vector<TPropertyMap>& maps,
                                  const std::string& className) {
  for (const TPropertyMap& map : maps) {
    try {
      instances->push_back(MakeInstance(map, className));
    } catch (const TVTQException& failure) {
      WriteStatus("PciDevInfo encountered an error generating CIM instances for " + className +
                  " Error Code: " + dataToString<const char*>(failure.what()));
    }
  }
}
