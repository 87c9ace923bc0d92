// SPDX-License-Identifier: Apache-2.0
#pragma once

// The CIM classes that the plug-in provides.
inline constexpr const char* kPciDeviceClass = "QZMSG_PCIDevice";
inline constexpr const char* kPciBridgeClass = "QZMSG_PCIBridge";
inline constexpr const char* kDeviceInSlotClass = "QZMSG_DeviceInSlot";
inline constexpr const char* kPciRawDataClass = "QZMSG_PCIRawData";
inline constexpr const char* kSystemSlotClass = "QZMSG_SystemSlot";
inline constexpr const char* kSystemBoardClass = "QZMSG_SystemBoard";
inline constexpr const char* kOnBoardDeviceClass = "QZMSG_OnBoardDevice";
