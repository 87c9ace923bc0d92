// SPDX-License-Identifier: Apache-2.0
#include "host/formats/cim_xml_writer.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "host/formats/value_text.h"
#include "host/formats/xml_text.h"

namespace pciinfo {
namespace {

using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;

std::string RealOf(const TCIMValue& value) {
  const auto number = static_cast<double>(value);
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-INF" : "INF";
  return RealText(value);
}

/// The scalar must not be null.
std::string TextOf(const TCIMValue& value) {
  using enum TCIMValue::TCIMType::ECIMType;
  switch (value.GetType().GetCode()) {
    case kBoolean:
      return static_cast<bool>(value) ? "TRUE" : "FALSE";
    case kReal32:
    case kReal64:
      return RealOf(value);
    default:
      return ScalarText(value);
  }
}

bool IsReference(TCIMValue::TCIMType type) {
  return type.GetCode() == TCIMValue::TCIMType::kReference;
}

/// The DTD has no arrays of references; they are written as strings.
const char* TypeName(TCIMValue::TCIMType type) {
  return IsReference(type) ? "string" : type.GetName();
}

const char* KindOfKey(TCIMValue::TCIMType type) {
  if (IsText(type)) return "string";
  return type.GetCode() == TCIMValue::TCIMType::kBoolean ? "boolean" : "numeric";
}

void AddElement(XmlText& xml, const char* element, XmlText::Attributes attributes,
                std::string_view text = {}) {
  xml.Open(element, attributes);
  xml.Text(text);
  xml.Close();
}

void AddNamespace(XmlText& xml, std::string_view name) {
  xml.Open("LOCALNAMESPACEPATH");
  while (!name.empty()) {
    const std::size_t length = std::min(name.find('/'), name.size());
    AddElement(xml, "NAMESPACE", {{"NAME", name.substr(0, length)}});
    name.remove_prefix(std::min(length + 1, name.size()));
  }
  xml.Close();
}

void AddPath(XmlText& xml, const TCIMReference& path);

void AddReference(XmlText& xml, const TCIMReference& target) {
  xml.Open("VALUE.REFERENCE");
  AddPath(xml, target);
  xml.Close();
}

void AddKey(XmlText& xml, const std::string& name, const TCIMValue& value) {
  const TCIMValue::TCIMType type = value.GetType();
  xml.Open("KEYBINDING", {{"NAME", name}});
  if (IsReference(type)) {
    AddReference(xml, value.GetReference());
  } else {
    AddElement(xml, "KEYVALUE", {{"VALUETYPE", KindOfKey(type)}, {"TYPE", type.GetName()}},
               TextOf(value));
  }
  xml.Close();
}

void AddPath(XmlText& xml, const TCIMReference& path) {
  xml.Open("LOCALINSTANCEPATH");
  AddNamespace(xml, path.GetNamespace());
  xml.Open("INSTANCENAME", {{"CLASSNAME", path.GetClassName()}});
  for (const auto& [name, value] : path.GetKeys()) AddKey(xml, name, value);
  xml.Close();
  xml.Close();
}

void AddArray(XmlText& xml, const vtq::PropertySchema& property, const TCIMValue& value) {
  xml.Open("PROPERTY.ARRAY", {{"NAME", property.name}, {"TYPE", TypeName(property.type)}});
  if (!value.IsNull()) {
    xml.Open("VALUE.ARRAY");
    for (const TCIMValue& element : value.GetArray()) {
      if (element.IsNull()) {
        AddElement(xml, "VALUE.NULL", {});
      } else {
        AddElement(xml, "VALUE", {}, TextOf(element));
      }
    }
    xml.Close();
  }
  xml.Close();
}

void AddReferenceProperty(XmlText& xml, const vtq::PropertySchema& property,
                          const TCIMValue& value) {
  if (value.IsNull()) return AddElement(xml, "PROPERTY.REFERENCE", {{"NAME", property.name}});
  const TCIMReference& target = value.GetReference();
  xml.Open("PROPERTY.REFERENCE",
           {{"NAME", property.name}, {"REFERENCECLASS", target.GetClassName()}});
  AddReference(xml, target);
  xml.Close();
}

void AddProperty(XmlText& xml, const vtq::PropertySchema& property, const TCIMValue& value) {
  if (property.isArray) return AddArray(xml, property, value);
  if (IsReference(property.type)) return AddReferenceProperty(xml, property, value);
  xml.Open("PROPERTY", {{"NAME", property.name}, {"TYPE", property.type.GetName()}});
  if (!value.IsNull()) AddElement(xml, "VALUE", {}, TextOf(value));
  xml.Close();
}

class CimXmlWriter final : public InstanceWriter {
 public:
  explicit CimXmlWriter(Output& output) : output_(output) {}

  void Begin() override;
  void Write(const vtq::Class& cimClass, const vtq::Instance& instance) override;
  void End() override;

 private:
  Output& output_;
  XmlText xml_;
};

void CimXmlWriter::Begin() {
  xml_.Begin();
  xml_.Open("CIM", {{"CIMVERSION", "2.7"}, {"DTDVERSION", "2.4"}});
  xml_.Open("DECLARATION");
  xml_.Open("DECLGROUP.WITHPATH");
  xml_.EndLine();
}

void CimXmlWriter::Write(const vtq::Class& cimClass, const vtq::Instance& instance) {
  const std::vector<vtq::PropertySchema>& properties = cimClass.GetSchema().properties;
  xml_.Open("VALUE.OBJECTWITHLOCALPATH");
  AddPath(xml_, instance.GetObjectReference({}));
  xml_.Open("INSTANCE", {{"CLASSNAME", cimClass.GetSchema().name}});
  const vtq::InstanceValues values(instance);
  for (const std::size_t position : cimClass.GetNameOrder()) {
    AddProperty(xml_, properties[position], values[position]);
  }
  xml_.Close();
  xml_.Close();
  xml_.EndLine();
  xml_.MoveTo(output_);
}

void CimXmlWriter::End() {
  xml_.Close();
  xml_.Close();
  xml_.Close();
  xml_.EndLine();
  xml_.MoveTo(output_);
}

}  // namespace

std::unique_ptr<InstanceWriter> MakeCimXmlWriter(Output& output) {
  return std::make_unique<CimXmlWriter>(output);
}

}  // namespace pciinfo
