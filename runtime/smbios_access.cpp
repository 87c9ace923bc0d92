// SPDX-License-Identifier: Apache-2.0
#include "runtime/smbios_access.h"

#include <cstdio>
#include <cstring>

#include "framework/exception.h"
#include "framework/smbios.h"
#include "runtime/files.h"
#include "runtime/service_failures.h"

namespace vtq {

using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;

namespace {

constexpr int kHighestType = 255;
constexpr int kNoType = -1;

struct Handle {
  explicit Handle(SmBiosTable loaded) : table(std::move(loaded)), walk(table) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SmBiosTable table;
  SmBiosWalk walk;
  int type = kNoType;
};

std::vector<std::uint8_t> ReadBytes(const std::string& path) {
  const std::string content = ReadFile(path);
  return {content.begin(), content.end()};
}

TVTQStatusCode::EVTQStatusCode CopyNext(Handle& handle, void* buffer, int capacity) noexcept {
  while (const std::optional<std::span<const std::uint8_t>> structure = handle.walk.Next()) {
    if ((*structure)[0] != handle.type) continue;
    if (capacity < 0 || structure->size() > static_cast<std::size_t>(capacity)) {
      return TVTQStatusCode::kBufferTooSmall;
    }
    std::memcpy(buffer, structure->data(), structure->size());
    return TVTQStatusCode::kSuccess;
  }
  return TVTQStatusCode::kNotFound;
}

}  // namespace

SmBiosTable LoadSmBiosTable(const std::string& directory) {
  try {
    const SmBiosEntryPoint entryPoint =
        ParseSmBiosEntryPoint(ReadBytes(directory + "/smbios_entry_point"));
    return {entryPoint, ReadBytes(directory + "/DMI")};
  } catch (const TVTQException& failure) {
    FailService(std::string("cannot use the SMBIOS tables: ") + failure.what(),
                failure.GetStatusCode());
  }
}

TVTQStatusCode::EVTQStatusCode SmBiosLoadFrom(const char* directory, void** handle) noexcept {
  if (handle == nullptr) return TVTQStatusCode::kInvalidArgument;
  *handle = nullptr;
  try {
    *handle = new Handle(LoadSmBiosTable(directory));
    return TVTQStatusCode::kSuccess;
  } catch (const TVTQException& failure) {
    return failure.GetStatusCode();
  } catch (...) {
    ReportServiceFailure("cannot use the SMBIOS tables: not enough memory");
    return TVTQStatusCode::kFailure;
  }
}

}  // namespace vtq

namespace NQZMVTQ20 {

TVTQStatusCode::EVTQStatusCode smBiosLoad(const TPluginManagerProvider*, void** handle) noexcept {
  return vtq::SmBiosLoadFrom(vtq::kSmBiosDirectory, handle);
}

TVTQStatusCode::EVTQStatusCode smBiosGetVersion(void* handle, char* version) noexcept {
  if (handle == nullptr || version == nullptr) return TVTQStatusCode::kInvalidArgument;
  const vtq::SmBiosEntryPoint& entry = static_cast<vtq::Handle*>(handle)->table.entryPoint;
  std::snprintf(version, kSmBiosVersionSize, "%d.%d", entry.majorVersion, entry.minorVersion);
  return TVTQStatusCode::kSuccess;
}

TVTQStatusCode::EVTQStatusCode smBiosGetFirst(void* handle, int type, void* buffer,
                                              int* size) noexcept {
  if (handle == nullptr || buffer == nullptr || size == nullptr || type < 0 ||
      type > vtq::kHighestType) {
    return TVTQStatusCode::kInvalidArgument;
  }
  auto& opened = *static_cast<vtq::Handle*>(handle);
  opened.type = type;
  opened.walk = vtq::SmBiosWalk(opened.table);
  return vtq::CopyNext(opened, buffer, *size);
}

TVTQStatusCode::EVTQStatusCode smBiosGetNext(void* handle, void* buffer, int* size) noexcept {
  if (handle == nullptr || buffer == nullptr || size == nullptr) {
    return TVTQStatusCode::kInvalidArgument;
  }
  return vtq::CopyNext(*static_cast<vtq::Handle*>(handle), buffer, *size);
}

TVTQStatusCode::EVTQStatusCode smBiosClose(void** handle) noexcept {
  if (handle == nullptr || *handle == nullptr) return TVTQStatusCode::kInvalidArgument;
  delete static_cast<vtq::Handle*>(*handle);
  *handle = nullptr;
  return TVTQStatusCode::kSuccess;
}

}  // namespace NQZMVTQ20
