// SPDX-License-Identifier: Apache-2.0
#include "pci/pmem.h"

#include <dlfcn.h>

#include <string>

#include "framework/os_specific.h"

using NQZMVTQ20::GetModulePathLin;
using NQZMVTQ20::TVTQStatusCode;

void* PMemIsInitialized = nullptr;
void* PMemOpen = nullptr;
void* PMemClose = nullptr;
void* PMemRead = nullptr;
void* PMemSearch = nullptr;

namespace {

void* FunctionLib = nullptr;
std::string dlError;

void LookUpEntryPoints() {
  PMemIsInitialized = dlsym(FunctionLib, "PMemIsInitialized");
  PMemOpen = dlsym(FunctionLib, "PMemOpen");
  PMemClose = dlsym(FunctionLib, "PMemClose");
  PMemRead = dlsym(FunctionLib, "PMemRead");
  PMemSearch = dlsym(FunctionLib, "PMemSearch");
}

}  // namespace

TVTQStatusCode::EVTQStatusCode pmemLoad() {
  static const char kAnchor[] = "pmemLoad";  // an address inside this plug-in
  const std::string path = GetModulePathLin(kAnchor) + "../../libpmem.so";
  dlerror();  // clears an earlier error
  FunctionLib = dlopen(path.c_str(), RTLD_LAZY);
  const char* error = dlerror();
  dlError = error == nullptr ? "" : error;
  if (!dlError.empty()) return TVTQStatusCode::kFailure;
  LookUpEntryPoints();
  return TVTQStatusCode::kSuccess;
}

TVTQStatusCode::EVTQStatusCode pmemUnLoad() {
  if (FunctionLib == nullptr || dlclose(FunctionLib) != 0) return TVTQStatusCode::kSuccess;
  FunctionLib = nullptr;  // so that it is not closed twice
  return TVTQStatusCode::kFailure;
}
