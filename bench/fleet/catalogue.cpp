// SPDX-License-Identifier: Apache-2.0
#include "bench/fleet/catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace bench {
namespace {

/// Cards that differ in nothing but their IDs and names.
struct Family {
  unsigned models = 0;
  CardModel first;
};

const std::array<Family, 11>& Families() {
  using enum CardUse;
  static const std::array<Family, 11> families{{
      {40,
       {0x10de, 0x2230, 0x1459, 0x03, 0x02, "NVIDIA Corporation", "GPU", "3D controller", "nvidia",
        1, 16, 4, kGraphics}},
      {20,
       {0x1002, 0x7408, 0x0c34, 0x03, 0x80, "Advanced Micro Devices, Inc. [AMD/ATI]", "Accelerator",
        "Display controller", "amdgpu", 1, 16, 4, kGraphics}},
      {30,
       {0x8086, 0x1572, 0x0007, 0x02, 0x00, "Intel Corporation", "Ethernet Controller",
        "Ethernet controller", "i40e", 2, 8, 3, kNetwork}},
      {20,
       {0x8086, 0x1591, 0x0002, 0x02, 0x00, "Intel Corporation", "Quad Ethernet Controller",
        "Ethernet controller", "ice", 4, 16, 4, kNetwork}},
      {30,
       {0x15b3, 0x1013, 0x0050, 0x02, 0x07, "Mellanox Technologies", "InfiniBand Adapter",
        "Infiniband controller", "mlx5_core", 2, 16, 4, kInfiniband}},
      {30,
       {0x14e4, 0x16d7, 0x1402, 0x02, 0x00, "Broadcom Inc. and subsidiaries", "Ethernet Adapter",
        "Ethernet controller", "bnxt_en", 4, 8, 3, kNetwork}},
      {30,
       {0x1000, 0x0097, 0x3090, 0x01, 0x07, "Broadcom / LSI", "SAS Controller",
        "Serial Attached SCSI controller", "mpt3sas", 1, 8, 3, kStorage}},
      {20,
       {0x1077, 0x2261, 0x029b, 0x0c, 0x04, "QLogic Corp.", "Fibre Channel Adapter",
        "Fibre Channel", "qla2xxx", 2, 8, 3, kOther}},
      {10,
       {0x10ee, 0x5000, 0x000e, 0x12, 0x00, "Xilinx Corporation", "Accelerator Card",
        "Processing accelerators", "xclmgmt", 2, 16, 3, kOther}},
      {40,
       {0x144d, 0xa808, 0xa801, 0x01, 0x08, "Samsung Electronics Co Ltd", "NVMe SSD Controller",
        "Non-Volatile memory controller", "nvme", 1, 4, 4, kNvme}},
      {30,
       {0x8086, 0x0b60, 0x8d08, 0x01, 0x08, "Intel Corporation", "NVMe Datacenter SSD",
        "Non-Volatile memory controller", "nvme", 1, 4, 4, kNvme}},
  }};
  return families;
}

std::vector<CardModel> MakeCardModels() {
  std::vector<CardModel> models;
  models.reserve(300);
  for (const Family& family : Families()) {
    for (unsigned i = 0; i < family.models; ++i) {
      CardModel model = family.first;
      model.deviceId += i;
      model.device += fmt::format(" {:04X}", model.deviceId);
      models.push_back(std::move(model));
    }
  }
  return models;
}

constexpr std::array kMakers = {"Aldera Systems", "Borealis Computers", "Corvid Servers", "Dunmore",
                                "Estuary Data"};
/// The slots of a small server come first, those of a large one last.
constexpr std::array kSlotLanes = {16U, 8U, 8U, 16U, 4U, 16U, 8U, 16U, 8U, 4U, 16U, 16U};

std::vector<MachineKind> MakeMachineKinds() {
  std::vector<MachineKind> kinds;
  kinds.reserve(40);
  for (unsigned i = 0; i < 40; ++i) {
    const unsigned series = i / static_cast<unsigned>(kMakers.size());
    MachineKind kind;
    kind.maker = kMakers[i % kMakers.size()];
    kind.product = fmt::format("{}{}0 G{}", kind.maker.front(), 32 + i, 1 + series);
    kind.generation = 3 + series / 3;
    kind.slots.assign(kSlotLanes.begin(), kSlotLanes.begin() + 3 + i * 7 % 10);
    kind.bays = i % 4 * 4;
    kinds.push_back(std::move(kind));
  }
  return kinds;
}

}  // namespace

const std::vector<MachineKind>& MachineKinds() {
  static const std::vector<MachineKind> kinds = MakeMachineKinds();
  return kinds;
}

const std::vector<CardModel>& CardModels() {
  static const std::vector<CardModel> models = MakeCardModels();
  return models;
}

std::size_t SlotCardModels() {
  const std::vector<CardModel>& models = CardModels();
  const auto first = std::find_if(models.begin(), models.end(),
                                  [](const CardModel& model) { return model.IsDrive(); });
  return static_cast<std::size_t>(first - models.begin());
}

}  // namespace bench
