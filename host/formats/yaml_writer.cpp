// SPDX-License-Identifier: Apache-2.0
#include "host/formats/yaml_writer.h"

#include <yaml-cpp/emitter.h>
#include <yaml-cpp/emittermanip.h>

#include <nlohmann/json.hpp>
#include <string>

#include "host/console/utf8.h"
#include "host/formats/value_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMValue;

// Always quoted: readers would take plain texts such as "1e3", "no" or "~" for other types.
void EmitText(YAML::Emitter& emitter, const std::string& bytes) {
  emitter << YAML::DoubleQuoted << ToUtf8(bytes);
}

void EmitScalar(YAML::Emitter& emitter, const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  if (value.IsNull()) {
    emitter << YAML::LowerNull << YAML::Null;
  } else if (IsText(value.GetType())) {
    EmitText(emitter, static_cast<std::string>(value));
  } else if (const auto code = value.GetType().GetCode(); code == kReal32 || code == kReal64) {
    emitter << static_cast<double>(value);
  } else {
    emitter << ScalarText(value);
  }
}

void EmitValue(YAML::Emitter& emitter, const TCIMValue& value) {
  if (!value.IsArray()) return EmitScalar(emitter, value);
  if (!IsText(value.GetType())) emitter << YAML::Flow;
  emitter << YAML::BeginSeq;
  for (const TCIMValue& element : value.GetArray()) EmitScalar(emitter, element);
  emitter << YAML::EndSeq;
}

void EmitProperties(YAML::Emitter& emitter, const vtq::Class& cimClass,
                    const vtq::Instance& instance) {
  const vtq::InstanceValues values(instance);
  emitter << YAML::BeginMap;
  for (const std::size_t position : cimClass.GetNameOrder()) {
    const TCIMValue& value = values[position];
    if (value.IsNull()) continue;
    emitter << YAML::Key << cimClass.GetSchema().properties[position].name << YAML::Value;
    EmitValue(emitter, value);
  }
  emitter << YAML::EndMap;
}

void EmitJson(YAML::Emitter& emitter, const nlohmann::ordered_json& value);

void EmitMembers(YAML::Emitter& emitter, const nlohmann::ordered_json& object) {
  emitter << YAML::BeginMap;
  for (const auto& [name, value] : object.items()) {
    emitter << YAML::Key << name << YAML::Value;
    EmitJson(emitter, value);
  }
  emitter << YAML::EndMap;
}

void EmitElements(YAML::Emitter& emitter, const nlohmann::ordered_json& array) {
  emitter << YAML::BeginSeq;
  for (const nlohmann::ordered_json& element : array) EmitJson(emitter, element);
  emitter << YAML::EndSeq;
}

void EmitJson(YAML::Emitter& emitter, const nlohmann::ordered_json& value) {
  if (value.is_object()) return EmitMembers(emitter, value);
  if (value.is_array()) return EmitElements(emitter, value);
  if (value.is_string()) return EmitText(emitter, value.get<std::string>());
  if (value.is_null()) {
    emitter << YAML::LowerNull << YAML::Null;
    return;
  }
  emitter << value.dump();  // YAML has the same numbers and words
}

class YamlWriter final : public InstanceWriter {
 public:
  explicit YamlWriter(Output& output) : output_(output) {}

  void Begin() override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  bool first_ = true;
};

void YamlWriter::Begin() { output_.Write("instances:"); }

void YamlWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  // Each instance is emitted as a list of one item; consecutive items read as one list.
  YAML::Emitter emitter;
  emitter.SetOutputCharset(YAML::EscapeNonAscii);
  emitter << YAML::BeginSeq << YAML::BeginMap;
  emitter << YAML::Key << "class" << YAML::Value;
  EmitText(emitter, cimClass.GetSchema().name);
  emitter << YAML::Key << "path" << YAML::Value;
  EmitText(emitter, instance.GetObjectReference({}).ToString());
  emitter << YAML::Key << "properties" << YAML::Value;
  EmitProperties(emitter, cimClass, instance);
  emitter << YAML::EndMap << YAML::EndSeq;
  output_.Write("\n");
  output_.Write({emitter.c_str(), emitter.size()});
  first_ = false;
}

void YamlWriter::End() { output_.Write(first_ ? " []\n" : "\n"); }

}  // namespace

void WriteYaml(Output& output, const nlohmann::ordered_json& document) {
  YAML::Emitter emitter;
  emitter.SetOutputCharset(YAML::EscapeNonAscii);
  EmitJson(emitter, document);
  output.Write({emitter.c_str(), emitter.size()});
  output.Write("\n");
}

std::unique_ptr<InstanceWriter> MakeYamlWriter(Output& output) {
  return std::make_unique<YamlWriter>(output);
}

}  // namespace pciinfo
