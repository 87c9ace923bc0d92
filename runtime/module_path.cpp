// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <system_error>

#include "framework/os_specific.h"

namespace NQZMVTQ20 {

namespace {

namespace fs = std::filesystem;

// For the program itself, the loader gives only argv[0].
fs::path ModuleFile(const Dl_info& found, const link_map& module) {
  const bool isProgram = module.l_name == nullptr || *module.l_name == '\0';
  std::error_code ignored;
  return isProgram ? fs::read_symlink("/proc/self/exe", ignored)
                   : fs::absolute(found.dli_fname, ignored);
}

}  // namespace

std::string GetModulePathLin(const void* address) {
  Dl_info found;
  link_map* module = nullptr;
  if (::dladdr1(address, &found, reinterpret_cast<void**>(&module), RTLD_DL_LINKMAP) == 0)
    return {};
  return (ModuleFile(found, *module).lexically_normal().parent_path() / "").string();
}

}  // namespace NQZMVTQ20
