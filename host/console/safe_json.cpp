// SPDX-License-Identifier: Apache-2.0
#include "host/console/safe_json.h"

#include "host/console/unsafe_characters.h"
#include "host/console/utf8.h"

namespace pciinfo {

std::string SafeJson(std::string json) {
  if (IsPrintableAscii(json)) return json;
  std::string safe;
  safe.reserve(json.size());
  for (std::size_t position = 0; position < json.size();) {
    const char32_t codePoint = NextCodePoint(json, position);
    // Below DEL are only line ends between values; the library has escaped those in strings.
    if (codePoint >= 0x7F && IsUnsafe(codePoint)) {
      AppendUtf16Escapes(safe, "\\u", codePoint);
    } else {
      AppendUtf8(safe, codePoint);
    }
  }
  return safe;
}

}  // namespace pciinfo
