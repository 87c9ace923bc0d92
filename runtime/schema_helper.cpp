// SPDX-License-Identifier: Apache-2.0
#include "framework/schema_helper.h"

#include <unistd.h>

#include <climits>
#include <sstream>

#include "framework/exception.h"
#include "framework/logger.h"
#include "framework/os_specific.h"
#include "framework/root_object.h"
#include "runtime/host_name.h"

namespace NQZMVTQ20 {

namespace {

void CheckNamespace(const std::shared_ptr<ICIMNamespace>& nameSpace) {
  if (nameSpace) return;
  throw TVTQException("the computer system of a null namespace was asked for",
                      TVTQStatusCode::kInvalidArgument);
}

// A missing file means no names; a file that cannot be read is an error, because it may contain the
// name.
std::string ReadHosts() {
  try {
    return TOSSpecific::CaptureFile("/etc/hosts");
  } catch (const TVTQException& failure) {
    if (failure.GetStatusCode() != TVTQStatusCode::kNotFound) {
      TRootObject::GetCoreLogger()->Write(
          ILogger::kWarning,
          std::string("The name of the system may lack its domain: ") + failure.what());
    }
    return {};
  }
}

std::string ReadSystemName() {
  if (vtq::GivenSystemName()) return *vtq::GivenSystemName();
  char host[HOST_NAME_MAX + 1] = {};
  if (::gethostname(host, sizeof host) != 0) return {};
  std::istringstream hosts(ReadHosts());
  return vtq::QualifiedHostName(host, hosts);
}

}  // namespace

std::string TCIMSchemaHelper::GetSystemCreationClassName(std::shared_ptr<ICIMNamespace> nameSpace) {
  CheckNamespace(nameSpace);
  return "CIM_ComputerSystem";
}

std::string TCIMSchemaHelper::GetSystemName(std::shared_ptr<ICIMNamespace> nameSpace) {
  CheckNamespace(nameSpace);
  // Read only once, because every instance needs it and all instances must have the same name.
  static const std::string systemName = ReadSystemName();
  return systemName;
}

}  // namespace NQZMVTQ20
