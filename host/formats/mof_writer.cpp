// SPDX-License-Identifier: Apache-2.0
#include "host/formats/mof_writer.h"

#include "host/formats/mof_text.h"
#include "host/formats/value_text.h"

namespace pciinfo {

using NQZMVTQ20::TCIMValue;

void MofWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  if (!first_) output_.Write("\n");
  first_ = false;
  output_.Write("instance of " + cimClass.GetSchema().name + " {\n");
  const vtq::InstanceValues values(instance);
  for (const std::size_t position : cimClass.GetNameOrder()) {
    const TCIMValue& value = values[position];
    if (value.IsNull()) continue;
    output_.Write("    " + cimClass.GetSchema().properties[position].name + " = ");
    WriteValue(value);
    output_.Write(";\n");
  }
  output_.Write("};\n");
}

void MofWriter::WriteValue(const TCIMValue& value) {
  if (!value.IsArray()) return output_.Write(MofScalar(value));
  const TCIMValue::TArray& elements = value.GetArray();
  if (elements.empty()) return output_.Write("{ }");
  const std::string_view lineEnd = IsText(value.GetType()) ? "\n        " : " ";
  output_.Write("{");
  bool first = true;
  for (const TCIMValue& element : elements) {
    if (!first) output_.Write(",");
    first = false;
    output_.Write(lineEnd);
    output_.Write(MofScalar(element));
  }
  output_.Write(" }");
}

}  // namespace pciinfo
