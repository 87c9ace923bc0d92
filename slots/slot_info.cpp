// SPDX-License-Identifier: Apache-2.0
#include "slots/slot_info.h"

#include <utility>

#include "framework/exception.h"
#include "plugin/array_value.h"
#include "plugin/class_names.h"
#include "plugin/smbios_handle.h"
#include "plugin/structure_reader.h"
#include "plugin/values.h"
#include "slots/type9.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TPluginManagerProvider;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

using Status = TVTQStatusCode::EVTQStatusCode;

TSlotInfo::TSlotInfo(std::shared_ptr<ICIMClass> cimClass) : TPci(std::move(cimClass)) {}

TSlotInfo::TSlotInfo(std::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* infoHandle)
    : TPci(std::move(cimClass), infoHandle) {}

TSlotInfo::~TSlotInfo() = default;

std::vector<ICIMInstance*> TSlotInfo::GetCIMInstances(std::string className) {
  std::vector<ICIMInstance*> instances;
  for (const TPropertyMap& slot : GetSlotInfo()) {
    try {
      instances.push_back(MakeInstance(slot, className));
    } catch (const TVTQException& failure) {
      // Log readers match the whole line, including the eight tabs.
      WriteStatus(
          "PCI Slot info encountered an error\t\t\t\t\t\t\t\t"
          " generating CIM instances. Error Code: " +
          dataToString<const char*>(failure.what()));
    }
  }
  return instances;
}

std::vector<TPropertyMap> TSlotInfo::GetSlotInfo() {
  std::vector<TPropertyMap> slots;
  SmBiosHandle smBios;
  Status status = smBios.Load(GetInfoHandle());
  if (status != 0) {
    WriteStatus("SMBIOS library could not load. Error " + dataToString<Status>(status));
    return slots;
  }
  StructureReader structures(smBios.Get());
  status = structures.First(kSystemSlotsType);
  if (status != 0) {
    WriteStatus("Return from smBiosGetFirst: Error " + dataToString<Status>(status));
    return slots;
  }
  for (; status == 0; status = structures.Next()) {
    const DMIType9& record = structures.AsSlot();
    if (record.type != kSystemSlotsType) continue;
    for (int count = CountOfSlot(record); count > 0; --count) {
      DumpSlotInfo(&record);
      slots.push_back(std::exchange(slotProperties, {}));
    }
  }
  status = smBios.Close();
  if (status != 0) {
    WriteStatus("Return from smBiosClose: Error " + dataToString<Status>(status));
  }
  return slots;
}

void TSlotInfo::DumpSlotInfo(const DMIType9* record) {
  const auto insert = [this](const char* name, TCIMValue value) {
    InsertProperty(&slotProperties, name, std::move(value));
  };
  const auto insertWord = [&](const char* name, std::uint16_t number) {
    insert(name, TCIMValue(number));
  };
  const std::string tag = "Tag " + dataToString<int>(nextSlotTag);
  const SlotStatus slotStatus = StatusOfUsage(record->currentUsage);

  insertWord("Number", record->slotId.Value());
  insert("CreationClassName", TCIMValue(kSystemSlotClass));
  insert("Tag", TCIMValue(tag));
  ++nextSlotTag;
  insert("Description", TCIMValue("System Slot"));
  insertWord("CurrentUsage", record->currentUsage);
  insert("SlotLength", TCIMValue(record->slotLength));
  insert("OperationalStatus", GetWordCimValue({slotStatus.operationalStatus}));
  insert("StatusDescriptions", GetStrCimValue({slotStatus.description}));
  insert("ConnectorType", GetWordCimValue({record->slotType}));
  insertWord("MaxDataWidth", record->dataBusWidth);
  insert("PMESignal", TCIMValue((record->characteristics2 & 0x01) != 0));
  insert("Shared", TCIMValue((record->characteristics1 & 0x08) != 0));
  if (record->designation != 0) {
    const std::string designation =
        GetString(record->designation, reinterpret_cast<const unsigned char*>(record));
    insert("SlotDesignation", TCIMValue(designation));
    insert("SlotAllInfo", TCIMValue(AllInfo(designation, tag)));
  }
  insert("SupportsHotPlug", TCIMValue((record->characteristics2 & 0x02) != 0));
  insert("VccMixedVoltageSupport", GetWordCimValue(VoltagesOf(record->characteristics1)));
}

const char* TSlotInfo::GetString(int index, const unsigned char* record) {
  return FindSlotString(index, record);
}

std::uint16_t TSlotInfo::GetSlotDataBusWidth(unsigned char code) {
  return DataBusWidthInBits(code);
}

TCIMValue TSlotInfo::GetWordCimValue(std::vector<std::uint16_t> numbers) {
  return MakeArrayValue(TCIMValue::TCIMType::kUint16, std::move(numbers));
}

TCIMValue TSlotInfo::GetStrCimValue(std::vector<std::string> texts) {
  return MakeArrayValue(TCIMValue::TCIMType::kString, std::move(texts));
}
