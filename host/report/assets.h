// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace pciinfo {

/// A file of this directory that pages contain. The build makes assets.cpp.in into the definitions.
struct Asset {
  std::string_view text;
  std::string_view hash;  ///< as a Content-Security-Policy takes it: "sha256-..."
};

extern const Asset kDrawingStyle;  ///< drawing.css
extern const Asset kPageStyle;     ///< page.css
extern const Asset kPageScript;    ///< page.js

}  // namespace pciinfo
