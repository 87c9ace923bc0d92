#include "framework/schema_helper.h"

#include <unistd.h>

#include <climits>
#include <fstream>

#include "framework/exception.h"
#include "runtime/host_name.h"

namespace NQZMVTQ20 {

namespace {

void CheckNamespace(const std::shared_ptr<ICIMNamespace>& nameSpace) {
  if (nameSpace) return;
  throw TVTQException("the computer system of a null namespace was asked for",
                      TVTQStatusCode::kInvalidArgument);
}

std::string ReadSystemName() {
  char host[HOST_NAME_MAX + 1] = {};
  if (::gethostname(host, sizeof host) != 0) return {};
  std::ifstream hostsFile("/etc/hosts");
  return vtq::QualifiedHostName(host, hostsFile);
}

}  // namespace

std::string TCIMSchemaHelper::GetSystemCreationClassName(std::shared_ptr<ICIMNamespace> nameSpace) {
  CheckNamespace(nameSpace);
  return "CIM_ComputerSystem";
}

std::string TCIMSchemaHelper::GetSystemName(std::shared_ptr<ICIMNamespace> nameSpace) {
  CheckNamespace(nameSpace);
  // Asked for with every instance: it is read once, and all instances of a process agree.
  static const std::string systemName = ReadSystemName();
  return systemName;
}

}  // namespace NQZMVTQ20
