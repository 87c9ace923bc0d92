// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

#include "framework/cim_value.h"
#include "framework/exception.h"

namespace NQZMVTQ20 {

namespace {

using TCIMType = TCIMValue::TCIMType;

struct TypeName {
  TCIMType::ECIMType code;
  const char* text;
};

// DSP0004, 5.1.2.
constexpr TypeName kTypeNames[] = {
    {TCIMType::kNull, "null"},           {TCIMType::kBoolean, "boolean"},
    {TCIMType::kUint8, "uint8"},         {TCIMType::kSint8, "sint8"},
    {TCIMType::kUint16, "uint16"},       {TCIMType::kSint16, "sint16"},
    {TCIMType::kUint32, "uint32"},       {TCIMType::kSint32, "sint32"},
    {TCIMType::kUint64, "uint64"},       {TCIMType::kSint64, "sint64"},
    {TCIMType::kReal32, "real32"},       {TCIMType::kReal64, "real64"},
    {TCIMType::kString, "string"},       {TCIMType::kDateTime, "datetime"},
    {TCIMType::kReference, "reference"},
};

constexpr std::size_t kDateTimeLength = 25;

std::string Describe(const TCIMValue& value) {
  if (value.IsNull()) return "a null value";
  return std::string(value.IsArray() ? "an array of " : "a value of type ") +
         value.GetType().GetName();
}

[[noreturn]] void ThrowUnreadable(const TCIMValue& value, const char* wanted) {
  throw TVTQException(Describe(value) + " cannot be read as " + wanted,
                      TVTQStatusCode::kInvalidArgument);
}

template <class Integer>
constexpr TCIMType::ECIMType TypeOf() {
  constexpr bool isSigned = std::is_signed_v<Integer>;
  if constexpr (sizeof(Integer) == 1) return isSigned ? TCIMType::kSint8 : TCIMType::kUint8;
  if constexpr (sizeof(Integer) == 2) return isSigned ? TCIMType::kSint16 : TCIMType::kUint16;
  if constexpr (sizeof(Integer) == 4) return isSigned ? TCIMType::kSint32 : TCIMType::kUint32;
  if constexpr (sizeof(Integer) == 8) return isSigned ? TCIMType::kSint64 : TCIMType::kUint64;
}

template <class Integer, class Stored>
Integer Fitting(Stored number) {
  if (std::in_range<Integer>(number)) return static_cast<Integer>(number);
  throw TVTQException(
      std::to_string(number) + " does not fit into " + TCIMType(TypeOf<Integer>()).GetName(),
      TVTQStatusCode::kInvalidArgument);
}

void CheckElements(TCIMType type, std::uint32_t count, const TCIMValue::TArray& elements) {
  if (elements.size() != count) {
    throw TVTQException("an array said to have " + std::to_string(count) + " elements has " +
                            std::to_string(elements.size()),
                        TVTQStatusCode::kInvalidArgument);
  }
  const auto fits = [type](const TCIMValue& element) {
    return element.IsNull() || (!element.IsArray() && element.GetType() == type);
  };
  const auto bad = std::find_if_not(elements.begin(), elements.end(), fits);
  if (bad == elements.end()) return;
  throw TVTQException(Describe(*bad) + " cannot be an element of an array of " + type.GetName(),
                      TVTQStatusCode::kInvalidArgument);
}

}  // namespace

const char* TCIMValue::TCIMType::GetName() const noexcept {
  const auto row = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                [this](const TypeName& name) { return name.code == code_; });
  return row != std::end(kTypeNames) ? row->text : "unknown";
}

TCIMValue::TCIMValue() noexcept : type_(TCIMType::kNull) {}

TCIMValue::TCIMValue(const char* text) : TCIMValue() {
  if (text != nullptr) SetText(text);
}

TCIMValue::TCIMValue(std::string text) : TCIMValue() { SetText(text); }

TCIMValue::TCIMValue(bool value) noexcept : data_(value), type_(TCIMType::kBoolean) {}

TCIMValue::TCIMValue(unsigned char value) noexcept
    : data_(std::uint64_t{value}), type_(TCIMType::kUint8) {}

TCIMValue::TCIMValue(signed char value) noexcept
    : data_(std::int64_t{value}), type_(TCIMType::kSint8) {}

TCIMValue::TCIMValue(unsigned short value) noexcept
    : data_(std::uint64_t{value}), type_(TCIMType::kUint16) {}

TCIMValue::TCIMValue(short value) noexcept : data_(std::int64_t{value}), type_(TCIMType::kSint16) {}

TCIMValue::TCIMValue(unsigned int value) noexcept
    : data_(std::uint64_t{value}), type_(TCIMType::kUint32) {}

TCIMValue::TCIMValue(int value) noexcept : data_(std::int64_t{value}), type_(TCIMType::kSint32) {}

TCIMValue::TCIMValue(unsigned long value) noexcept
    : data_(std::uint64_t{value}), type_(TypeOf<unsigned long>()) {}

TCIMValue::TCIMValue(long value) noexcept : data_(std::int64_t{value}), type_(TypeOf<long>()) {}

TCIMValue::TCIMValue(float value) noexcept : data_(double{value}), type_(TCIMType::kReal32) {}

TCIMValue::TCIMValue(double value) noexcept : data_(value), type_(TCIMType::kReal64) {}

TCIMValue::TCIMValue(TCIMReference reference) noexcept : TCIMValue() {
  if (reference.IsNull()) return;
  type_ = TCIMType(TCIMType::kReference);
  data_ = std::move(reference);
}

TCIMValue::TCIMValue(TCIMType type, std::uint32_t count, TArray elements) : TCIMValue() {
  Set(type, count, std::move(elements));
}

TCIMValue TCIMValue::DateTime(std::string text) {
  if (text.size() != kDateTimeLength) {
    throw TVTQException("\"" + text + "\" is not a datetime: a datetime has " +
                            std::to_string(kDateTimeLength) + " characters",
                        TVTQStatusCode::kInvalidArgument);
  }
  TCIMValue value(std::move(text));
  value.type_ = TCIMType(TCIMType::kDateTime);
  return value;
}

void TCIMValue::Set(TCIMType type, std::uint32_t count, TArray elements) {
  CheckElements(type, count, elements);
  data_ = std::make_shared<const TArray>(std::move(elements));
  type_ = type;
}

void TCIMValue::SetText(std::string_view text) {
  if (text.size() <= ShortText::kMost) {
    data_ = ShortText(text);
  } else {
    data_ = LongText(text);
  }
  type_ = TCIMType(TCIMType::kString);
}

template <class Integer>
Integer TCIMValue::ToInteger() const {
  if (const auto* number = std::get_if<std::uint64_t>(&data_)) return Fitting<Integer>(*number);
  if (const auto* number = std::get_if<std::int64_t>(&data_)) return Fitting<Integer>(*number);
  ThrowUnreadable(*this, TCIMType(TypeOf<Integer>()).GetName());
}

TCIMValue::operator unsigned char() const { return ToInteger<unsigned char>(); }
TCIMValue::operator signed char() const { return ToInteger<signed char>(); }
TCIMValue::operator unsigned short() const { return ToInteger<unsigned short>(); }
TCIMValue::operator short() const { return ToInteger<short>(); }
TCIMValue::operator unsigned int() const { return ToInteger<unsigned int>(); }
TCIMValue::operator int() const { return ToInteger<int>(); }
TCIMValue::operator unsigned long() const { return ToInteger<unsigned long>(); }
TCIMValue::operator long() const { return ToInteger<long>(); }

TCIMValue::operator bool() const {
  if (const bool* value = std::get_if<bool>(&data_)) return *value;
  ThrowUnreadable(*this, "boolean");
}

TCIMValue::operator double() const {
  if (const double* value = std::get_if<double>(&data_)) return *value;
  ThrowUnreadable(*this, "real64");
}

TCIMValue::operator std::string() const {
  if (const auto* reference = std::get_if<TCIMReference>(&data_)) return reference->ToString();
  return std::string(GetString());
}

std::string_view TCIMValue::GetString() const {
  if (const auto* text = std::get_if<ShortText>(&data_)) return text->View();
  if (const auto* text = std::get_if<LongText>(&data_)) return text->View();
  ThrowUnreadable(*this, "string");
}

const TCIMReference& TCIMValue::GetReference() const {
  if (const auto* reference = std::get_if<TCIMReference>(&data_)) return *reference;
  ThrowUnreadable(*this, "reference");
}

const TCIMValue::TArray& TCIMValue::GetArray() const {
  if (const auto* elements = std::get_if<std::shared_ptr<const TArray>>(&data_)) return **elements;
  ThrowUnreadable(*this, "array");
}

bool operator==(const TCIMValue& left, const TCIMValue& right) noexcept {
  if (!(left.type_ == right.type_) || left.IsArray() != right.IsArray()) return false;
  if (!left.IsArray()) return left.data_ == right.data_;
  return &left.GetArray() == &right.GetArray() || left.GetArray() == right.GetArray();
}

}  // namespace NQZMVTQ20
