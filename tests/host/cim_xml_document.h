// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>

struct _xmlDoc;

/// A CIM-XML document that libxml2 parsed.
class CimXmlDocument {
 public:
  /// Throws std::runtime_error when the text is not well-formed.
  explicit CimXmlDocument(const std::string& text);

  /// Whether it is valid against the DTD of DSP0203 2.4.0.
  bool IsValid() const;

  /// Returns the instances in the form of pciinfo's JSON.
  nlohmann::json ToJson() const;

 private:
  std::shared_ptr<_xmlDoc> document_;
};

/// Replaces in JSON the characters that XML cannot contain, as the writer does.
nlohmann::json AsXmlCarries(const nlohmann::json& value);
