#pragma once

#include <string>
#include <utility>

#include "framework/cim_value.h"
#include "framework/export.h"

namespace vtq {

/// Puts the text of an object path together, as TCIMReference::ToString describes it.
class VTQ_EXPORT PathText final {
 public:
  /// `className` must live as long as this object.
  PathText(const std::string& nameSpace, const std::string& className);

  /// Keys come in byte order of their names. Throws TVTQException when the value is null, an array
  /// or a real number: none of them can stand in a path.
  void AddKey(const std::string& name, const NQZMVTQ20::TCIMValue& value);

  std::string Take() noexcept { return std::move(text_); }

 private:
  const std::string& className_;
  std::string text_;
  char separator_ = '.';
};

}  // namespace vtq
