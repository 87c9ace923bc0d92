// SPDX-License-Identifier: Apache-2.0
#include "runtime/packed_values.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <string_view>
#include <utility>

namespace vtq {

using NQZMVTQ20::TCIMValue;
using Type = TCIMValue::TCIMType;
using enum Type::ECIMType;

namespace {

constexpr std::size_t kMostBytes = 4096;
constexpr unsigned char kArray = 0x80;  ///< added to the code of the type

constexpr std::uint64_t kSignBit = 1;

/// Small numbers of either sign become small numbers.
std::uint64_t WithoutSign(std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  return number < 0 ? ~bits << 1 | kSignBit : bits << 1;
}

std::int64_t WithSign(std::uint64_t bits) {
  return static_cast<std::int64_t>((bits & kSignBit) != 0 ? ~(bits >> 1) : bits >> 1);
}

class Packer final {
 public:
  /// False from the first byte on that has no room, and from the first reference.
  bool IsPackable() const { return isPackable_; }
  std::size_t GetSize() const { return size_; }
  const unsigned char* GetBytes() const { return bytes_.data(); }

  void Byte(unsigned char byte) {
    isPackable_ = isPackable_ && size_ < kMostBytes;
    if (isPackable_) bytes_[size_++] = byte;
  }

  /// Seven bits a byte, the lowest first. The highest bit tells that more follow.
  void Number(std::uint64_t number) {
    for (; number > 0x7F; number >>= 7) Byte(static_cast<unsigned char>(number | 0x80));
    Byte(static_cast<unsigned char>(number));
  }

  void Text(std::string_view text) {
    Number(text.size());
    isPackable_ = isPackable_ && text.size() <= kMostBytes - size_;
    if (!isPackable_) return;
    std::copy(text.begin(), text.end(), bytes_.data() + size_);
    size_ += text.size();
  }

  void Value(const TCIMValue& value) {
    if (!value.IsArray()) return Scalar(value);
    Byte(static_cast<unsigned char>(value.GetType().GetCode() | kArray));
    Number(value.GetArray().size());
    for (const TCIMValue& element : value.GetArray()) {
      if (!isPackable_) return;
      Scalar(element);
    }
  }

 private:
  void Scalar(const TCIMValue& value) {
    const auto code = value.GetType().GetCode();
    Byte(static_cast<unsigned char>(code));
    switch (code) {
      case kNull:
        return;
      case kBoolean:
        return Byte(static_cast<bool>(value) ? 1 : 0);
      case kUint8:
      case kUint16:
      case kUint32:
      case kUint64:
        return Number(static_cast<unsigned long>(value));
      case kSint8:
      case kSint16:
      case kSint32:
      case kSint64:
        return Number(WithoutSign(static_cast<long>(value)));
      case kReal32:
      case kReal64:
        return Number(std::bit_cast<std::uint64_t>(static_cast<double>(value)));
      case kString:
      case kDateTime:
        return Text(value.GetString());
      case kReference:
        isPackable_ = false;  // it shares its keys with others
    }
  }

  bool isPackable_ = true;
  std::size_t size_ = 0;
  std::array<unsigned char, kMostBytes> bytes_{};
};

/// Reads what a Packer wrote.
class Unpacker final {
 public:
  explicit Unpacker(const unsigned char* bytes) : at_(bytes) {}

  std::uint64_t Number() {
    std::uint64_t number = 0;
    unsigned shift = 0;
    for (; *at_ > 0x7F; shift += 7) number |= std::uint64_t{*at_++ & 0x7FU} << shift;
    return number | std::uint64_t{*at_++} << shift;
  }

  TCIMValue Value() {
    if (*at_ < kArray) return Scalar();
    const Type type(static_cast<Type::ECIMType>(*at_++ & ~kArray));
    const auto count = static_cast<std::uint32_t>(Number());
    TCIMValue::TArray elements;
    elements.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) elements.push_back(Scalar());
    return {type, count, std::move(elements)};
  }

  void SkipValue() {
    if (*at_ < kArray) return SkipScalar();
    ++at_;
    for (std::uint64_t left = Number(); left > 0; --left) SkipScalar();
  }

 private:
  TCIMValue Scalar() {
    switch (const auto code = static_cast<Type::ECIMType>(*at_++); code) {
      case kNull:
      case kReference:
        return {};
      case kBoolean:
        return TCIMValue(*at_++ != 0);
      case kUint8:
        return TCIMValue(static_cast<unsigned char>(Number()));
      case kUint16:
        return TCIMValue(static_cast<unsigned short>(Number()));
      case kUint32:
        return TCIMValue(static_cast<unsigned int>(Number()));
      case kUint64:
        return TCIMValue(static_cast<unsigned long>(Number()));
      case kSint8:
        return TCIMValue(static_cast<signed char>(WithSign(Number())));
      case kSint16:
        return TCIMValue(static_cast<short>(WithSign(Number())));
      case kSint32:
        return TCIMValue(static_cast<int>(WithSign(Number())));
      case kSint64:
        return TCIMValue(static_cast<long>(WithSign(Number())));
      case kReal32:
        return TCIMValue(static_cast<float>(std::bit_cast<double>(Number())));
      case kReal64:
        return TCIMValue(std::bit_cast<double>(Number()));
      case kString:
        return TCIMValue(std::string(Text()));
      case kDateTime:
        return TCIMValue::DateTime(std::string(Text()));
    }
    return {};
  }

  void SkipScalar() {
    const auto code = static_cast<Type::ECIMType>(*at_++);
    if (code == kString || code == kDateTime) {
      Text();
    } else if (code != kNull) {
      Number();  // a boolean is one byte too
    }
  }

  std::string_view Text() {
    const std::uint64_t size = Number();
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    const std::string_view text(reinterpret_cast<const char*>(at_), size);
    at_ += size;
    return text;
  }

  const unsigned char* at_;
};

}  // namespace

std::optional<PackedValues> PackedValues::Pack(const Values& values) {
  Packer packer;
  packer.Number(values.size());
  std::size_t next = 0;
  for (std::size_t position = 0; position < values.size(); ++position) {
    if (values[position].IsNull()) continue;
    packer.Number(position + 1 - next);
    packer.Value(values[position]);
    if (!packer.IsPackable()) return std::nullopt;
    next = position + 1;
  }
  packer.Byte(0);
  if (!packer.IsPackable()) return std::nullopt;
  auto bytes = std::make_unique_for_overwrite<unsigned char[]>(packer.GetSize());
  std::copy_n(packer.GetBytes(), packer.GetSize(), bytes.get());
  return PackedValues(std::move(bytes));
}

PackedValues::Values PackedValues::Unpack() const {
  Unpacker unpacker(bytes_.get());
  const std::uint64_t count = unpacker.Number();
  Values values;
  values.reserve(count);
  while (const std::uint64_t distance = unpacker.Number()) {
    values.resize(values.size() + distance - 1);
    values.push_back(unpacker.Value());
  }
  values.resize(count);
  return values;
}

TCIMValue PackedValues::Find(std::size_t position) const {
  Unpacker unpacker(bytes_.get());
  unpacker.Number();
  std::size_t next = 0;
  while (const std::uint64_t distance = unpacker.Number()) {
    next += distance;
    if (next > position) return next - 1 == position ? unpacker.Value() : TCIMValue();
    unpacker.SkipValue();
  }
  return {};
}

}  // namespace vtq
