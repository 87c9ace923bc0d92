// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/smbios.h"

/// An SMBIOS handle, closed by Close or by the destructor.
class SmBiosHandle {
 public:
  SmBiosHandle() = default;
  SmBiosHandle(const SmBiosHandle&) = delete;
  SmBiosHandle& operator=(const SmBiosHandle&) = delete;
  ~SmBiosHandle() {
    if (handle_ != nullptr) Close();
  }

  /// The status of smBiosLoad; `provider` may be null.
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode Load(
      const NQZMVTQ20::TPluginManagerProvider* provider) {
    return NQZMVTQ20::smBiosLoad(provider, &handle_);
  }

  /// The status of smBiosClose.
  NQZMVTQ20::TVTQStatusCode::EVTQStatusCode Close() {
    const NQZMVTQ20::TVTQStatusCode::EVTQStatusCode status = NQZMVTQ20::smBiosClose(&handle_);
    handle_ = nullptr;
    return status;
  }

  void* Get() const { return handle_; }

 private:
  void* handle_ = nullptr;
};
