// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

#include "framework/export.h"
#include "framework/status_code.h"
#include "plugin/property_map.h"

/// Returns the value as text, in the default format of a stream: decimal, no width, no base prefix.
/// A status code gives its number, a null pointer an empty text. Instantiated for const char*,
/// char*, EVTQStatusCode, int, unsigned short and std::string.
template <class T>
VTQ_EXPORT std::string dataToString(T value);

/// Returns the hexadecimal (despite the name) number in `text`. Reading stops at the first
/// character that is not a hexadecimal digit; a prefix 0x or 0X is allowed, leading white space is
/// not. Returns 0 if there is no number, and the largest T if the number does not fit. Instantiated
/// for unsigned short and unsigned int.
template <class T>
VTQ_EXPORT T ExtractDecimalDataToHex(std::string text);

/// The same for a part of a longer text, without copying it. Instantiated for the same types.
template <class T>
T ReadHex(std::string_view text);

/// Adds a property, unless `value` is null or the map already has a property of that name.
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
