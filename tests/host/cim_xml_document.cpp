// SPDX-License-Identifier: Apache-2.0
#include "tests/host/cim_xml_document.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <stdexcept>
#include <string_view>
#include <vector>

namespace {

using nlohmann::json;

std::string TextOf(xmlChar* owned) {
  const std::unique_ptr<xmlChar, void (*)(xmlChar*)> text(owned, [](xmlChar* p) { xmlFree(p); });
  return owned == nullptr ? std::string() : reinterpret_cast<const char*>(owned);
}

std::string Attribute(const xmlNode* node, const char* name) {
  return TextOf(xmlGetProp(node, reinterpret_cast<const xmlChar*>(name)));
}

std::string Content(const xmlNode* node) { return TextOf(xmlNodeGetContent(node)); }

std::string_view NameOf(const xmlNode* node) { return reinterpret_cast<const char*>(node->name); }

std::vector<const xmlNode*> Children(const xmlNode* node) {
  std::vector<const xmlNode*> elements;
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) elements.push_back(child);
  }
  return elements;
}

const xmlNode* Only(const xmlNode* node, std::string_view name) {
  const std::vector<const xmlNode*> children = Children(node);
  if (children.size() == 1 && NameOf(children.front()) == name) return children.front();
  throw std::runtime_error("no single " + std::string(name));
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char character : text) {
    if (character == '"' || character == '\\') quoted += '\\';
    quoted += character;
  }
  return quoted + '"';
}

std::string PathText(const xmlNode* path);

std::string KeyText(const xmlNode* key) {
  const xmlNode* value = Children(key).at(0);
  if (NameOf(value) == "VALUE.REFERENCE") {
    return Quoted(PathText(Only(value, "LOCALINSTANCEPATH")));
  }
  return Attribute(value, "VALUETYPE") == "string" ? Quoted(Content(value)) : Content(value);
}

std::string PathText(const xmlNode* path) {
  const std::vector<const xmlNode*> parts = Children(path);
  std::string text;
  for (const xmlNode* name : Children(parts.at(0))) text += "/" + Attribute(name, "NAME");
  text += ":" + Attribute(parts.at(1), "CLASSNAME");
  char separator = '.';
  for (const xmlNode* key : Children(parts.at(1))) {
    text += separator + Attribute(key, "NAME") + "=" + KeyText(key);
    separator = ',';
  }
  return text;
}

json ScalarJson(const std::string& type, const std::string& text) {
  if (type == "string" || type == "datetime") return text;
  if (type == "boolean") return text == "TRUE";
  return json::parse(text);
}

json ValueJson(const xmlNode* property) {
  const std::string type = Attribute(property, "TYPE");
  if (NameOf(property) == "PROPERTY.REFERENCE") {
    return PathText(Only(Only(property, "VALUE.REFERENCE"), "LOCALINSTANCEPATH"));
  }
  if (NameOf(property) == "PROPERTY") return ScalarJson(type, Content(Only(property, "VALUE")));
  json elements = json::array();
  for (const xmlNode* element : Children(Only(property, "VALUE.ARRAY"))) {
    elements.push_back(NameOf(element) == "VALUE" ? ScalarJson(type, Content(element)) : json());
  }
  return elements;
}

json InstanceJson(const xmlNode* object) {
  const std::vector<const xmlNode*> parts = Children(object);
  json properties = json::object();
  for (const xmlNode* property : Children(parts.at(1))) {
    if (!Children(property).empty()) properties[Attribute(property, "NAME")] = ValueJson(property);
  }
  return {{"class", Attribute(parts.at(1), "CLASSNAME")},
          {"path", PathText(parts.at(0))},
          {"properties", properties}};
}

std::string AsXmlCarries(const std::string& text) {
  const std::string replacement = "\xef\xbf\xbd";
  std::string carried;
  for (const char character : text) {
    const bool isControl = static_cast<unsigned char>(character) < 0x20;
    const bool isKept = !isControl || character == '\t' || character == '\n' || character == '\r';
    carried += isKept ? std::string(1, character) : replacement;
  }
  for (const char* none : {"\xef\xbf\xbe", "\xef\xbf\xbf"}) {
    std::size_t place = 0;
    while ((place = carried.find(none)) != std::string::npos)
      carried.replace(place, 3, replacement);
  }
  return carried;
}

}  // namespace

CimXmlDocument::CimXmlDocument(const std::string& text)
    : document_(xmlReadMemory(text.data(), static_cast<int>(text.size()), "pciinfo.xml", nullptr,
                              XML_PARSE_NONET | XML_PARSE_HUGE),
                xmlFreeDoc) {
  if (document_ == nullptr) throw std::runtime_error("not well-formed");
}

bool CimXmlDocument::IsValid() const {
  const std::shared_ptr<xmlDtd> dtd(
      xmlParseDTD(nullptr, reinterpret_cast<const xmlChar*>(DSP0203_DTD)), xmlFreeDtd);
  if (dtd == nullptr) throw std::runtime_error("no DTD " DSP0203_DTD);
  const std::shared_ptr<xmlValidCtxt> context(xmlNewValidCtxt(), xmlFreeValidCtxt);
  return xmlValidateDtd(context.get(), document_.get(), dtd.get()) == 1;
}

json CimXmlDocument::ToJson() const {
  const xmlNode* root = xmlDocGetRootElement(document_.get());
  json instances = json::array();
  for (const xmlNode* object : Children(Only(Only(root, "DECLARATION"), "DECLGROUP.WITHPATH"))) {
    instances.push_back(InstanceJson(object));
  }
  return {{"instances", instances}};
}

json AsXmlCarries(const json& value) {
  if (value.is_string()) return AsXmlCarries(value.get<std::string>());
  if (!value.is_structured()) return value;
  json carried = value;
  for (json& member : carried) member = AsXmlCarries(member);
  return carried;
}
