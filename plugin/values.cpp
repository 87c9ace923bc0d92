// SPDX-License-Identifier: Apache-2.0
#include "plugin/values.h"

#include <limits>
#include <locale>
#include <sstream>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

using NQZMVTQ20::TCIMValue;

namespace {

// Returns the value of a hexadecimal digit; a larger number for any other character.
unsigned HexDigit(char c) {
  if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
  return 16;
}

}  // namespace

template <class T>
std::string dataToString(T value) {
  // Writing a null pointer to a stream would make it fail.
  if constexpr (std::is_pointer_v<T>) {
    if (value == nullptr) return "";
  }
  std::stringstream stream;
  stream.exceptions(std::ios::badbit);   // throw rather than return a part of the text
  stream.imbue(std::locale::classic());  // no digit grouping, whatever the host set
  stream << value;
  return stream.str();
}

template <class T>
T ReadHex(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  T value = 0;
  for (const char c : text) {
    const unsigned digit = HexDigit(c);
    if (digit > 0xF) break;
    if (value > std::numeric_limits<T>::max() / 16) return std::numeric_limits<T>::max();
    value = static_cast<T>(value * 16U + digit);
  }
  return isNegative ? static_cast<T>(0 - value) : value;
}

template <class T>
T ExtractDecimalDataToHex(std::string text) {
  return ReadHex<T>(text);
}

template <class Map>
void InsertProperty(Map* map, std::string name, TCIMValue value) {
  if (value.IsNull()) return;
  // In two tuples, because emplace with two values searches the map twice.
  map->emplace(std::piecewise_construct, std::forward_as_tuple(std::move(name)),
               std::forward_as_tuple(std::move(value)));
}

template VTQ_EXPORT std::string dataToString(const char* value);
template VTQ_EXPORT std::string dataToString(char* value);
template VTQ_EXPORT std::string dataToString(NQZMVTQ20::TVTQStatusCode::EVTQStatusCode value);
template VTQ_EXPORT std::string dataToString(int value);
template VTQ_EXPORT std::string dataToString(unsigned short value);
template VTQ_EXPORT std::string dataToString(std::string value);
template unsigned short ReadHex(std::string_view text);
template unsigned int ReadHex(std::string_view text);
template VTQ_EXPORT unsigned short ExtractDecimalDataToHex(std::string text);
template VTQ_EXPORT unsigned int ExtractDecimalDataToHex(std::string text);
template VTQ_EXPORT void InsertProperty(TPropertyMap* map, std::string name, TCIMValue value);
