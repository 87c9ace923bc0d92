// SPDX-License-Identifier: Apache-2.0
#include "host/formats/json_writer.h"

#include "host/formats/json_text.h"

namespace pciinfo {

void JsonObjects::BeginClass(const vtq::Class& cimClass) {
  const vtq::ClassSchema& schema = cimClass.GetSchema();
  head_ = "{" + firstMembers_ + "\"class\":\"" + schema.name + "\",\"path\":";
  names_.clear();
  for (const vtq::PropertySchema& property : schema.properties) {
    names_.push_back(",\"" + property.name + "\":");
  }
}

void JsonObjects::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  output_.Write(head_);
  WriteJsonString(output_, instance.GetPath());
  output_.Write(",\"properties\":{");
  bool first = true;
  const vtq::InstanceValues values(instance);
  for (const std::size_t position : cimClass.GetNameOrder()) {
    const NQZMVTQ20::TCIMValue& value = values[position];
    if (value.IsNull()) continue;
    output_.Write(std::string_view(names_[position]).substr(first ? 1 : 0));
    first = false;
    WriteJsonValue(output_, value);
  }
  output_.Write("}}");
}

void JsonLinesWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  objects_.Write(cimClass, instance);
  output_.Write("\n");
}

void JsonWriter::Begin() { output_.Write("{\"instances\":["); }

void JsonWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  output_.Write(first_ ? "\n" : ",\n");
  first_ = false;
  objects_.Write(cimClass, instance);
}

void JsonWriter::End() { output_.Write(first_ ? "]}\n" : "\n]}\n"); }

}  // namespace pciinfo
