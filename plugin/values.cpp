// SPDX-License-Identifier: Apache-2.0
#include "plugin/values.h"

#include <charconv>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

using NQZMVTQ20::TCIMValue;

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
  const auto error = std::from_chars(text.data(), text.data() + text.size(), value, 16).ec;
  if (error == std::errc::result_out_of_range) return std::numeric_limits<T>::max();
  return isNegative ? static_cast<T>(0 - value) : value;
}

template <class T>
T ExtractDecimalDataToHex(std::string text) {
  return ReadHex<T>(text);
}

template <class Map>
void InsertProperty(Map* map, std::string name, TCIMValue value) {
  if (value.IsNull()) return;
  map->emplace(std::move(name), std::move(value));
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
