#pragma once

#include <string>
#include <string_view>

#include "framework/export.h"
#include "framework/status_code.h"
#include "plugin/property_map.h"

/// The value as text, in a stream's default formatting: decimal, no width, no base prefix. A status
/// code gives its number, a null pointer the empty text. Instantiated for const char*, char*,
/// EVTQStatusCode, int, unsigned short and std::string.
template <class T>
VTQ_EXPORT std::string dataToString(T value);

/// Reads `text` as a hexadecimal number, despite the name, and returns it. Reading stops at the
/// first character that is no hexadecimal digit; a prefix 0x or 0X is allowed, leading white space
/// is not. 0 when there is no number, the largest T when the number does not fit. Instantiated for
/// unsigned short and unsigned int.
template <class T>
VTQ_EXPORT T ExtractDecimalDataToHex(std::string text);

/// The same for a part of a longer text, which is not copied. Instantiated for the same types.
template <class T>
T ReadHex(std::string_view text);

/// Adds a property, unless `value` is null or the map has one of that name: the first value wins.
/// Instantiated for TPropertyMap.
template <class Map>
VTQ_EXPORT void InsertProperty(Map* map, std::string name, NQZMVTQ20::TCIMValue value);

extern template std::string dataToString(const char* value);
extern template std::string dataToString(char* value);
extern template std::string dataToString(NQZMVTQ20::TVTQStatusCode::EVTQStatusCode value);
extern template std::string dataToString(int value);
extern template std::string dataToString(unsigned short value);
extern template std::string dataToString(std::string value);
extern template unsigned short ReadHex(std::string_view text);
extern template unsigned int ReadHex(std::string_view text);
extern template unsigned short ExtractDecimalDataToHex(std::string text);
extern template unsigned int ExtractDecimalDataToHex(std::string text);
extern template void InsertProperty(TPropertyMap* map, std::string name,
                                    NQZMVTQ20::TCIMValue value);
