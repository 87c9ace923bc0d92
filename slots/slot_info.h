// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "framework/cim_value.h"
#include "plugin/collector.h"
#include "plugin/dmi_type9.h"

/// Collector of the system slots in the firmware's SMBIOS tables.
class VTQ_EXPORT TSlotInfo : public TPci {
 public:
  explicit TSlotInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass);
  TSlotInfo(std::shared_ptr<NQZMVTQ20::ICIMClass> cimClass,
            NQZMVTQ20::TPluginManagerProvider* infoHandle);

  ~TSlotInfo() override;
  using TPci::GetCIMInstances;
  std::vector<NQZMVTQ20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// Returns a map for each slot in table order, and one more for each peer group of a slot; empty
  /// if the tables cannot be read.
  std::vector<TPropertyMap> GetSlotInfo();

  /// Adds the properties of one slot to `slotProperties` and takes the next tag. `record` must be
  /// in the buffer of a StructureReader.
  void DumpSlotInfo(const DMIType9* record);

  /// See FindSlotString. Not owned by the caller; valid as long as the record is.
  const char* GetString(int index, const unsigned char* record);
  /// See DataBusWidthInBits.
  std::uint16_t GetSlotDataBusWidth(unsigned char code);
  /// Array values of uint16 and string.
  NQZMVTQ20::TCIMValue GetWordCimValue(std::vector<std::uint16_t> numbers);
  NQZMVTQ20::TCIMValue GetStrCimValue(std::vector<std::string> texts);

  TPropertyMap slotProperties;   ///< of the slot being decoded
  std::int32_t nextSlotTag = 1;  ///< of the next slot that is decoded by this object
};
