// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <utility>

#include "framework/cim_value.h"
#include "framework/export.h"

namespace vtq {

/// Builds the text of an object path, which TCIMReference::ToString describes.
class VTQ_EXPORT PathText final {
 public:
  /// `className` must live as long as this object.
  PathText(const std::string& nameSpace, const std::string& className);

  /// Adds a key; call in byte order of the names. Throws TVTQException when the value is null, an
  /// array or a real number, which cannot be part of a path.
  void AddKey(const std::string& name, const NQZMVTQ20::TCIMValue& value);

  /// Returns the path, without spare memory: a machine has tens of thousands of paths.
  std::string Take() {
    text_.shrink_to_fit();
    return std::move(text_);
  }

 private:
  const std::string& className_;
  std::string text_;
  char separator_ = '.';
};

}  // namespace vtq
