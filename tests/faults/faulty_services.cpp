// SPDX-License-Identifier: Apache-2.0

// The framework's services, which can fail and otherwise call the real ones. The loader finds these
// before the real ones.
#include <dlfcn.h>

#include "framework/exception.h"
#include "framework/os_specific.h"
#include "framework/schema_helper.h"
#include "framework/smbios.h"
#include "tests/faults/fault_plan.h"
#include "tests/faults/faulty_repository.h"

namespace NQZMVTQ20 {

namespace {

using Status = TVTQStatusCode::EVTQStatusCode;

// Returns the real function: the next one of the same name in the loader's search order.
template <class Function>
Function* Next(Function* self) {
  Dl_info found{};
  dladdr(reinterpret_cast<void*>(self), &found);
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, found.dli_sname));
}

}  // namespace

Status smBiosLoad(const TPluginManagerProvider* provider, void** handle) noexcept {
  static const auto next = Next(&smBiosLoad);
  if (!MustFail(Call::kSmBiosLoad)) return next(provider, handle);
  *handle = nullptr;
  return TVTQStatusCode::kFailure;
}

Status smBiosGetVersion(void* handle, char* version) noexcept {
  static const auto next = Next(&smBiosGetVersion);
  return MustFail(Call::kSmBiosVersion) ? TVTQStatusCode::kFailure : next(handle, version);
}

Status smBiosGetFirst(void* handle, int type, void* buffer, int* size) noexcept {
  static const auto next = Next(&smBiosGetFirst);
  return MustFail(Call::kSmBiosFirst) ? TVTQStatusCode::kFailure : next(handle, type, buffer, size);
}

Status smBiosGetNext(void* handle, void* buffer, int* size) noexcept {
  static const auto next = Next(&smBiosGetNext);
  return MustFail(Call::kSmBiosNext) ? TVTQStatusCode::kFailure : next(handle, buffer, size);
}

Status smBiosClose(void** handle) noexcept {
  static const auto next = Next(&smBiosClose);
  const bool fails = MustFail(Call::kSmBiosClose);
  const Status status = next(handle);
  return fails ? TVTQStatusCode::kFailure : status;
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(std::shared_ptr<ICIMNamespace> nameSpace) {
  static const auto next = Next(&TCIMSchemaHelper::GetSystemCreationClassName);
  ThrowIfFailing(Call::kSchema);
  return next(std::move(nameSpace));
}

std::string TCIMSchemaHelper::GetSystemName(std::shared_ptr<ICIMNamespace> nameSpace) {
  static const auto next = Next(&TCIMSchemaHelper::GetSystemName);
  ThrowIfFailing(Call::kSchema);
  return next(std::move(nameSpace));
}

std::string TOSSpecific::SpawnProcess(const std::string& command, int seconds) {
  static const auto next = Next(&TOSSpecific::SpawnProcess);
  ThrowIfFailing(Call::kCommand);
  return next(command, seconds);
}

}  // namespace NQZMVTQ20
