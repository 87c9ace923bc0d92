// SPDX-License-Identifier: Apache-2.0
#include "board/system_board.h"

#include <utility>

#include "framework/exception.h"
#include "plugin/class_names.h"
#include "plugin/system_keys.h"
#include "plugin/values.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TPluginManagerProvider;
using NQZMVTQ20::TVTQException;

TSysBrd::TSysBrd(std::shared_ptr<ICIMClass> cimClass) : TPci(std::move(cimClass)) {}

TSysBrd::TSysBrd(std::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* infoHandle)
    : TPci(std::move(cimClass), infoHandle) {}

TSysBrd::~TSysBrd() = default;

std::vector<ICIMInstance*> TSysBrd::GetCIMInstances(std::string className) {
  std::vector<TPropertyMap> maps;
  if (className == kSystemBoardClass) maps = PopulateSysbrdProperties();
  if (className == kOnBoardDeviceClass) maps = MakeDeviceBoardAssociation();

  std::vector<ICIMInstance*> instances;
  for (const TPropertyMap& map : maps) {
    try {
      instances.push_back(MakeInstance(map, className));
    } catch (const TVTQException& failure) {
      // Log readers match the whole line, including the nine tabs.
      WriteStatus(
          "Logical System Board info encountered an error\t\t\t\t\t\t\t\t\t"
          "generating CIM instances. Error Code: " +
          dataToString<const char*>(failure.what()));
    }
  }
  return instances;
}

std::vector<TPropertyMap> TSysBrd::PopulateSysbrdProperties() {
  TPropertyMap board;
  InsertSystemKeys(GetCIMClass(), &board);
  InsertProperty(&board, "DeviceID", TCIMValue("SystemBoard1"));
  InsertProperty(&board, "ElementName", TCIMValue("SystemBoard1"));
  InsertProperty(&board, "CreationClassName", TCIMValue(kSystemBoardClass));
  InsertProperty(&board, "SlotDesignation", TCIMValue("Onboard"));
  InsertProperty(&board, "SlotAllInfo", TCIMValue("Onboard"));
  return {board};
}
