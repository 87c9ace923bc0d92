// SPDX-License-Identifier: Apache-2.0
#include "host/schema/schema_writer.h"

#include "host/schema/json_schema.h"
#include "host/schema/mof_schema.h"

namespace pciinfo {
namespace {

struct FormatRow {
  const char* name;
  void (*write)(Output& output, const std::vector<vtq::ClassSchema>& classes);
};

constexpr FormatRow kFormats[] = {
    {"mof", &WriteMofSchema},
    {"json-schema", &WriteJsonSchema},
};

}  // namespace

std::vector<std::string> SchemaFormats() {
  std::vector<std::string> names;
  for (const FormatRow& row : kFormats) names.emplace_back(row.name);
  return names;
}

void WriteSchema(Output& output, const std::string& format,
                 const std::vector<vtq::ClassSchema>& classes) {
  for (const FormatRow& row : kFormats) {
    if (format == row.name) row.write(output, classes);
  }
}

}  // namespace pciinfo
