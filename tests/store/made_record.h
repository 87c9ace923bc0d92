// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "host/record/machine_record.h"

inline std::vector<pciinfo::RecordedFunction> MadeFunctions() {
  std::vector<pciinfo::RecordedFunction> functions;
  pciinfo::RecordedFunction port;
  port.address = "0000:00:01.0";
  port.isBridge = true;
  port.vendorId = 0x8086;
  port.deviceId = 0x6f02;
  port.classCode = 0x0604;
  functions.push_back(port);
  pciinfo::RecordedFunction network;
  network.address = "0000:01:00.0";
  network.vendorId = 0x15b3;
  network.deviceId = 0x101d;
  network.classCode = 0x0200;
  network.vendor = "Mellanox";
  network.device = "ConnectX-6 Dx";
  network.parentPort = "0000:00:01.0";
  network.revision = 1;
  network.linkWidth = 8;
  network.maxLinkWidth = 16;
  network.linkSpeed = "8.0 GT/s";
  network.maxLinkSpeed = "16.0 GT/s";
  network.driver = "mlx5_core";
  network.numaNode = 0;
  network.place = "slot";
  network.slot = "PCIe Slot 1";
  network.serialNumber = "MT2042X00001";
  network.systemDevices = {{"network", "eth0", "0c:42:a1:00:00:01", "", "", ""},
                           {"infiniband", "mlx5_0", "", "", "", "22.31.1014"}};
  functions.push_back(network);
  network.address = "0000:01:00.1";
  network.systemDevices = {{"network", "eth1", "0c:42:a1:00:00:02", "", "", ""}};
  functions.push_back(network);
  pciinfo::RecordedFunction disk;
  disk.address = "0000:02:00.0";
  disk.vendorId = 0x144d;
  disk.deviceId = 0xa824;
  disk.classCode = 0x0108;
  disk.parentPort = "0000:00:02.0";
  disk.driver = "nvme";
  disk.systemDevices = {{"nvme", "nvme0", "", "PM1733", "S4YNNE0N", "EPK9CB5Q"}};
  functions.push_back(disk);
  return functions;
}

inline std::vector<pciinfo::RecordedSlot> MadeSlots() {
  std::vector<pciinfo::RecordedSlot> slots;
  pciinfo::RecordedSlot slot;
  slot.name = "PCIe Slot 1";
  slot.state = "occupied";
  slot.width = "x16";
  slot.lanes = 16;
  slot.ports = {"0000:00:01.0"};
  slots.push_back(slot);
  slot.name = "PCIe Slot 2";
  slot.state = "empty";
  slot.ports = {"0000:00:03.0"};
  slots.push_back(slot);
  return slots;
}

/// Returns a machine with a network card of two functions in slot 1, an NVMe disk, a free slot, and
/// a finding; collected at noon of 1 May 2024.
inline pciinfo::MachineRecord MadeRecord() {
  pciinfo::MachineRecord record;
  record.name = "db1";
  record.systemUuid = "4c4c4544-0042-3510-8054-b4c04f4d3132";
  record.machineId = "0123456789abcdef0123456789abcdef";
  record.collected = "2024-05-01T12:00:00Z";
  record.version = "1.0.0";
  record.identity.product = "Server";
  record.identity.biosVersion = "2.1";
  record.functions = MadeFunctions();
  record.slots = MadeSlots();
  record.findings.push_back({"link-width", "warning", "0000:01:00.0", "runs at x8 of x16"});
  return record;
}
