// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "framework/cim_reference.h"
#include "framework/export.h"

namespace NQZMVTQ20 {

/// One CIM value: null, a scalar, or an array of scalars of one type (DSP0004, 5.1.2). A value
/// type; copies of an array share its immutable elements, so copying takes O(1).
class VTQ_EXPORT TCIMValue {
 public:
  /// The type of a scalar or of the elements of an array (see TCIMValue::IsArray).
  class VTQ_EXPORT TCIMType {
   public:
    /// The framework's type codes.
    enum ECIMType : int {
      kNull = 0,
      kBoolean = 1,
      kUint8 = 2,
      kSint8 = 3,
      kUint16 = 4,
      kSint16 = 5,
      kUint32 = 6,
      kSint32 = 7,
      kUint64 = 8,
      kSint64 = 9,
      kReal32 = 10,
      kReal64 = 11,
      kString = 13,
      kDateTime = 14,
      kReference = 15,
    };

    explicit TCIMType(ECIMType code) noexcept : code_(code) {}

    ECIMType GetCode() const noexcept { return code_; }
    /// The CIM name of the type ("uint16", "string", ...; "null" for kNull).
    const char* GetName() const noexcept;

    friend bool operator==(TCIMType left, TCIMType right) noexcept {
      return left.code_ == right.code_;
    }

   private:
    ECIMType code_;
  };

  using TArray = std::vector<TCIMValue>;

  /// The null value.
  TCIMValue() noexcept;
  /// A string; a null pointer gives the null value.
  explicit TCIMValue(const char* text);
  explicit TCIMValue(std::string text);
  explicit TCIMValue(bool value) noexcept;
  explicit TCIMValue(unsigned char value) noexcept;
  explicit TCIMValue(signed char value) noexcept;
  explicit TCIMValue(unsigned short value) noexcept;
  explicit TCIMValue(short value) noexcept;
  explicit TCIMValue(unsigned int value) noexcept;
  explicit TCIMValue(int value) noexcept;
  explicit TCIMValue(unsigned long value) noexcept;
  explicit TCIMValue(long value) noexcept;
  explicit TCIMValue(float value) noexcept;
  explicit TCIMValue(double value) noexcept;
  /// A reference; the null reference gives the null value.
  explicit TCIMValue(TCIMReference reference) noexcept;
  /// An array, see Set.
  TCIMValue(TCIMType type, std::uint32_t count, TArray elements);

  /// A datetime in its 25-character CIM form (DSP0004, 5.2.4). Throws TVTQException when `text`
  /// has another length.
  static TCIMValue DateTime(std::string text);

  /// Makes this value an array of `type` with `elements`, which it takes over. An empty array is
  /// not null. Throws TVTQException and leaves the value unchanged when `count` is not the number
  /// of elements, or an element is neither null nor a scalar of `type`.
  void Set(TCIMType type, std::uint32_t count, TArray elements);

  bool IsNull() const noexcept { return std::holds_alternative<std::monostate>(data_); }
  bool IsArray() const noexcept {
    return std::holds_alternative<std::shared_ptr<const TArray>>(data_);
  }
  /// The type of the scalar or of the array's elements.
  TCIMType GetType() const noexcept { return type_; }

  /// Integers. Every integer type converts to every other if the number fits. Throws TVTQException
  /// when the value is null, an array or not an integer, or does not fit.
  explicit operator unsigned char() const;
  explicit operator signed char() const;
  explicit operator unsigned short() const;
  explicit operator short() const;
  explicit operator unsigned int() const;
  explicit operator int() const;
  explicit operator unsigned long() const;
  explicit operator long() const;
  /// Throws TVTQException unless the value is a boolean.
  explicit operator bool() const;
  /// Throws TVTQException unless the value is a real32 or real64.
  explicit operator double() const;
  /// The text of a string or datetime, or the path text of a reference. Throws TVTQException for
  /// all other values, including null.
  explicit operator std::string() const;

  /// The text of a string or datetime, not copied; valid until this value changes or moves. Throws
  /// TVTQException for all other values.
  std::string_view GetString() const;
  /// Throws TVTQException unless the value is a reference.
  const TCIMReference& GetReference() const;
  /// The elements; valid as long as any copy of this value lives. Throws TVTQException unless the
  /// value is an array.
  const TArray& GetArray() const;

  /// Equal type, shape and content; null equals null only.
  friend VTQ_EXPORT bool operator==(const TCIMValue& left, const TCIMValue& right) noexcept;

 private:
  // A machine has some hundred thousand values. With texts of 16 bytes a value takes 24; with
  // std::string it would take 40.

  /// A text of few bytes, as most are.
  class ShortText {
   public:
    static constexpr std::size_t kMost = 15;

    explicit ShortText(std::string_view text) noexcept
        : size_(static_cast<std::uint8_t>(text.copy(bytes_, kMost))) {}

    std::string_view View() const noexcept { return {bytes_, size_}; }

    friend bool operator==(const ShortText& left, const ShortText& right) noexcept {
      return left.View() == right.View();
    }

   private:
    char bytes_[kMost]{};
    std::uint8_t size_;
  };

  /// A longer text.
  class LongText {
   public:
    explicit LongText(std::string_view text)
        : bytes_(std::make_unique<char[]>(text.size())),
          size_(text.copy(bytes_.get(), text.size())) {}
    LongText(const LongText& other) : LongText(other.View()) {}
    LongText(LongText&& other) noexcept
        : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    LongText& operator=(LongText other) noexcept {
      bytes_.swap(other.bytes_);
      std::swap(size_, other.size_);
      return *this;
    }
    ~LongText() = default;

    std::string_view View() const noexcept { return {bytes_.get(), size_}; }

    friend bool operator==(const LongText& left, const LongText& right) noexcept {
      return left.View() == right.View();
    }

   private:
    std::unique_ptr<char[]> bytes_;
    std::size_t size_;
  };

  using TData = std::variant<std::monostate, bool, std::uint64_t, std::int64_t, double, ShortText,
                             LongText, TCIMReference, std::shared_ptr<const TArray>>;

  void SetText(std::string_view text);

  template <class Integer>
  Integer ToInteger() const;

  // The attribute puts the type into the padding at the end of the variant.
  [[no_unique_address]] TData data_;
  TCIMType type_;
};

}  // namespace NQZMVTQ20
