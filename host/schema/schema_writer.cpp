// SPDX-License-Identifier: Apache-2.0
#include "host/schema/schema_writer.h"

#include "host/schema/json_schema.h"
#include "host/schema/mof_schema.h"

namespace pciinfo {
namespace {

struct SchemaFormat {
  const char* name;
  void (*write)(Output& output, const std::vector<vtq::ClassSchema>& classes);
};

constexpr SchemaFormat kSchemaFormats[] = {
    {"mof", &WriteMofSchema},
    {"json-schema", &WriteJsonSchema},
};

}  // namespace

std::vector<std::string> SchemaFormats() {
  std::vector<std::string> names;
  for (const SchemaFormat& row : kSchemaFormats) names.emplace_back(row.name);
  return names;
}

void WriteSchema(Output& output, const std::string& format,
                 const std::vector<vtq::ClassSchema>& classes) {
  for (const SchemaFormat& row : kSchemaFormats) {
    if (format == row.name) row.write(output, classes);
  }
}

}  // namespace pciinfo
