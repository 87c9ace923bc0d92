// SPDX-License-Identifier: Apache-2.0
#include "plugin/values.h"

#include <ios>
#include <locale>
#include <sstream>
#include <string_view>
#include <type_traits>
#include <utility>

using NQZMVTQ20::TCIMValue;

namespace {

// Reads a number like a stream with the flag std::hex, but without a stream: a device list has
// fifteen numbers per line, and creating a stream takes longer than reading the number.
class HexReader {
 public:
  HexReader() : format_(nullptr) {
    format_.imbue(std::locale::classic());  // no digit grouping, whatever the host set
    format_.flags(std::ios_base::hex);
  }

  template <class T>
  void Read(std::string_view text, T* value) const {
    std::ios_base::iostate state = std::ios_base::goodbit;
    facet_.get(text.data(), text.data() + text.size(), format_, state, *value);
  }

 private:
  struct Facet : std::num_get<char, const char*> {
    ~Facet() override = default;
  };

  Facet facet_;
  mutable std::ios format_;
};

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
  T value = 0;
  static const HexReader reader;
  reader.Read(text, &value);
  return value;
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
