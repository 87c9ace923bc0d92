// SPDX-License-Identifier: Apache-2.0
#include "tests/fakes/framework.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "framework/exception.h"
#include "framework/logger.h"
#include "framework/os_specific.h"
#include "framework/root_object.h"
#include "framework/schema_helper.h"
#include "framework/smbios.h"

std::vector<std::string> FakeFramework::LogOf(int severity) const {
  std::vector<std::string> texts;
  for (const std::string& record : log) {
    if (record[0] == '0' + severity) texts.push_back(record.substr(2));
  }
  return texts;
}

std::vector<std::string> FakeFramework::LogUpTo(int severity) const {
  std::vector<std::string> records;
  std::copy_if(log.begin(), log.end(), std::back_inserter(records),
               [&](const std::string& record) { return record[0] <= '0' + severity; });
  return records;
}

FakeFramework& Fake() {
  static FakeFramework fake;
  return fake;
}

namespace NQZMVTQ20 {

namespace {

class FakeLogger final : public ILogger {
 public:
  void Write(EVTQLogSeverity severity, const std::string& text) noexcept override {
    Fake().log.push_back(std::to_string(severity) + " " + text);
  }
};

struct Walk {
  int type = -1;
  std::size_t next = 0;
};

using Status = TVTQStatusCode::EVTQStatusCode;

Status Deliver(Walk* walk, void* buffer, const int* size, bool anyType) {
  const auto& structures = Fake().smBios.structures;
  while (walk->next < structures.size()) {
    const auto& structure = structures[walk->next++];
    if (!anyType && structure[0] != walk->type) continue;
    if (structure.size() > static_cast<std::size_t>(*size)) return TVTQStatusCode::kBufferTooSmall;
    std::memcpy(buffer, structure.data(), structure.size());
    return TVTQStatusCode::kSuccess;
  }
  return TVTQStatusCode::kNotFound;
}

}  // namespace

std::shared_ptr<ILogger> TRootObject::GetCoreLogger() {
  Fake().onGetCoreLogger();
  static const auto logger = std::make_shared<FakeLogger>();
  return logger;
}

std::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() { return Fake().pluginManager; }

void fdrWriteLog(int severity, const char* text) noexcept {
  Fake().log.push_back(std::to_string(severity) + " " + text);
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(std::shared_ptr<ICIMNamespace>) {
  if (Fake().systemCreationClassNameFails) throw TVTQException("no creation class name");
  return Fake().systemCreationClassName;
}

std::string TCIMSchemaHelper::GetSystemName(std::shared_ptr<ICIMNamespace>) {
  if (Fake().systemNameFails) throw TVTQException("no system name");
  return Fake().systemName;
}

std::string TOSSpecific::SpawnProcess(const std::string& command, int seconds) {
  Fake().spawned.emplace_back(command, seconds);
  const auto answer = Fake().commands.find(command);
  if (answer == Fake().commands.end()) throw TVTQException("cannot run " + command);
  return answer->second();
}

std::string TOSSpecific::CaptureFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw TVTQException("cannot read " + path);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

bool TOSSpecific::FileExists(const std::string& path) noexcept {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

std::string TOSSpecific::GetBiosID() {
  Fake().onGetBiosId();
  return Fake().biosId;
}

std::string GetModulePathLin(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0) return "";
  return std::filesystem::canonical(info.dli_fname).parent_path().string() + "/";
}

Status smBiosLoad(const TPluginManagerProvider*, void** handle) noexcept {
  *handle = nullptr;
  if (Fake().smBios.loadStatus != 0) return static_cast<Status>(Fake().smBios.loadStatus);
  if (Fake().smBios.loadsBeforeFailure == 0) return TVTQStatusCode::kFailure;
  if (Fake().smBios.loadsBeforeFailure > 0) --Fake().smBios.loadsBeforeFailure;
  *handle = new Walk;
  ++Fake().smBios.openHandles;
  return TVTQStatusCode::kSuccess;
}

Status smBiosGetVersion(void*, char* version) noexcept {
  std::snprintf(version, kSmBiosVersionSize, "%s", Fake().smBios.version.c_str());
  return TVTQStatusCode::kSuccess;
}

Status smBiosGetFirst(void* handle, int type, void* buffer, int* size) noexcept {
  if (Fake().smBios.firstStatus != 0) return static_cast<Status>(Fake().smBios.firstStatus);
  auto* walk = static_cast<Walk*>(handle);
  *walk = {type, 0};
  return Deliver(walk, buffer, size, false);
}

Status smBiosGetNext(void* handle, void* buffer, int* size) noexcept {
  return Deliver(static_cast<Walk*>(handle), buffer, size, Fake().smBios.deliversAllTypes);
}

Status smBiosClose(void** handle) noexcept {
  delete static_cast<Walk*>(*handle);
  *handle = nullptr;
  --Fake().smBios.openHandles;
  return static_cast<Status>(Fake().smBios.closeStatus);
}

}  // namespace NQZMVTQ20
