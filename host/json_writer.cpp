#include "host/json_writer.h"

#include "host/json_text.h"

namespace pciinfo {
namespace {

void WriteProperties(Output& output, const vtq::Class& cimClass, const vtq::Instance& instance) {
  bool first = true;
  for (const std::size_t position : cimClass.GetNameOrder()) {
    const NQZMVTQ20::TCIMValue& value = instance.GetValue(position);
    if (value.IsNull()) continue;
    if (!first) output.Write(",");
    first = false;
    output.Write(JsonString(cimClass.GetSchema().properties[position].name));
    output.Write(":");
    WriteJsonValue(output, value);
  }
}

void WriteInstance(Output& output, const vtq::Class& cimClass, const vtq::Instance& instance) {
  output.Write("{\"class\":");
  output.Write(JsonString(cimClass.GetSchema().name));
  output.Write(",\"path\":");
  output.Write(JsonString(instance.GetPath().ToString()));
  output.Write(",\"properties\":{");
  WriteProperties(output, cimClass, instance);
  output.Write("}}");
}

}  // namespace

void JsonLinesWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  WriteInstance(output_, cimClass, instance);
  output_.Write("\n");
}

void JsonWriter::Begin() { output_.Write("{\"instances\":["); }

void JsonWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  output_.Write(first_ ? "\n" : ",\n");
  first_ = false;
  WriteInstance(output_, cimClass, instance);
}

void JsonWriter::End() { output_.Write(first_ ? "]}\n" : "\n]}\n"); }

}  // namespace pciinfo
