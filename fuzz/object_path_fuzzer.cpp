// SPDX-License-Identifier: Apache-2.0

// Object paths: made from any namespace, class and keys, then parsed again.
#include <utility>

#include "framework/cim_reference.h"
#include "framework/cim_value.h"
#include "framework/exception.h"
#include "fuzz/fuzz.h"

namespace {

using fuzz::Pieces;
using fuzz::Require;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TVTQException;
using NQZMVTQ20::TVTQStatusCode;
using TType = TCIMValue::TCIMType;

constexpr int kDeepest = 4;
constexpr int kMostKeys = 6;
constexpr std::size_t kDateTimeLength = 25;

std::string Name(Pieces& pieces) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_0123456789";
  std::string name = "C";
  for (int left = pieces.Byte() % 8; left > 0; --left)
    name += kLetters[pieces.Byte() % kLetters.size()];
  return name;
}

std::int64_t Number(Pieces& pieces) {
  std::uint64_t number = 0;
  for (int i = 0; i < 8; ++i) number = number * 256 + pieces.Byte();
  return static_cast<std::int64_t>(number);
}

TCIMReference Reference(Pieces& pieces, int depth);

TCIMValue IntegerValue(Pieces& pieces, std::uint8_t kind) {
  const std::int64_t number = Number(pieces);
  switch (kind % 8) {
    case 0:
      return TCIMValue(static_cast<unsigned char>(number));
    case 1:
      return TCIMValue(static_cast<signed char>(number));
    case 2:
      return TCIMValue(static_cast<unsigned short>(number));
    case 3:
      return TCIMValue(static_cast<short>(number));
    case 4:
      return TCIMValue(static_cast<unsigned int>(number));
    case 5:
      return TCIMValue(static_cast<int>(number));
    case 6:
      return TCIMValue(static_cast<unsigned long>(number));
    default:
      return TCIMValue(static_cast<long>(number));
  }
}

TCIMValue TextValue(Pieces& pieces) {
  const std::uint8_t length = pieces.Byte();
  return TCIMValue(std::string(pieces.Bytes(length)));
}

TCIMValue DateTime(Pieces& pieces) {
  std::string text(pieces.Bytes(kDateTimeLength));
  text.resize(kDateTimeLength, '0');
  return TCIMValue::DateTime(text);
}

// Returns values of all types, also of those that cannot be part of a path.
TCIMValue Value(Pieces& pieces, int depth) {
  const std::uint8_t kind = pieces.Byte();
  switch (kind % 16) {
    case 0:
      return TCIMValue();
    case 1:
      return TCIMValue(0.5);
    case 2:
      return {TType(TType::kString), 0, {}};
    case 3:
      return TCIMValue(kind > 127);
    case 4:
      return DateTime(pieces);
    case 5:
    case 6:
      return depth < kDeepest ? TCIMValue(Reference(pieces, depth + 1)) : TCIMValue("leaf");
    case 7:
    case 8:
      return IntegerValue(pieces, pieces.Byte());
    default:
      return TextValue(pieces);
  }
}

bool CanStandInPath(const TCIMValue& value) {
  const auto code = value.GetType().GetCode();
  return !value.IsNull() && !value.IsArray() && code != TType::kReal32 && code != TType::kReal64;
}

TCIMReference Reference(Pieces& pieces, int depth) {
  const std::string nameSpace = Name(pieces) + "/" + Name(pieces);
  const std::string className = Name(pieces);
  TCIMReference::TKeyMap keys;
  bool good = true;
  for (int left = pieces.Byte() % (kMostKeys + 1); left > 0; --left) {
    const std::string name = Name(pieces);
    keys[name] = Value(pieces, depth);
  }
  for (const auto& [name, value] : keys) good = good && CanStandInPath(value);
  try {
    TCIMReference reference(nameSpace, className, keys);
    Require(good, "a key that cannot be part of a path is refused");
    return reference;
  } catch (const TVTQException& failure) {
    Require(!good, "keys that can be part of a path are accepted");
    Require(failure.GetStatusCode() == TVTQStatusCode::kInvalidArgument, "with the right code");
    return {nameSpace, className, {}};
  }
}

// Reads a path by its grammar.
class PathReader final {
 public:
  explicit PathReader(const std::string& path) : left_(path) {}

  bool IsAtEnd() const { return left_.IsEmpty(); }
  std::string Until(char end) { return std::string(left_.Until(end)); }

  // Reads the text between quotes and resolves escapes; then a comma or the end.
  std::string Quoted() {
    std::string text;
    for (char c = Take(); c != '"'; c = Take()) {
      if (c == '\\') {
        c = Take();
        Require(c == '\\' || c == '"', "nothing but backslashes and quotes is escaped");
      }
      text += c;
    }
    Require(IsAtEnd() || Take() == ',', "keys are separated by commas");
    return text;
  }

  char Take() {
    Require(!IsAtEnd(), "a path does not end inside of a part");
    return static_cast<char>(left_.Byte());
  }

 private:
  Pieces left_;
};

std::string PlainText(const TCIMValue& value) {
  switch (value.GetType().GetCode()) {
    case TType::kBoolean:
      return static_cast<bool>(value) ? "TRUE" : "FALSE";
    case TType::kUint64:
      return std::to_string(static_cast<unsigned long>(value));
    case TType::kString:
    case TType::kDateTime:
    case TType::kReference:
      return std::string(value);
    default:
      return std::to_string(static_cast<long>(value));
  }
}

bool IsQuoted(const TCIMValue& value) {
  const auto code = value.GetType().GetCode();
  return code == TType::kString || code == TType::kDateTime || code == TType::kReference;
}

void CheckPath(const TCIMReference& reference) {
  PathReader path(reference.ToString());
  Require(path.Take() == '/', "a path begins with a slash");
  Require(path.Until(':') == reference.GetNamespace(), "the namespace comes first");
  if (reference.GetKeys().empty()) {
    return Require(path.Until('\0') == reference.GetClassName(), "then the class");
  }
  Require(path.Until('.') == reference.GetClassName(), "then the class");
  for (const auto& [name, value] : reference.GetKeys()) {
    Require(path.Until('=') == name, "keys come in the order of their names");
    if (IsQuoted(value)) Require(path.Take() == '"', "texts are quoted");
    Require((IsQuoted(value) ? path.Quoted() : path.Until(',')) == PlainText(value),
            "a value is read as it was written");
    if (value.GetType().GetCode() == TType::kReference) CheckPath(value.GetReference());
  }
  Require(path.IsAtEnd(), "nothing follows the last key");
}

// A different text in a key gives a different path.
void CheckDifference(const TCIMReference& reference) {
  TCIMReference::TKeyMap keys = reference.GetKeys();
  Require(TCIMReference(reference.GetNamespace(), reference.GetClassName(), keys) == reference,
          "equal parts make equal paths");
  for (auto& [name, value] : keys) {
    if (value.GetType().GetCode() != TType::kString) continue;
    value = TCIMValue(std::string(value) + "\"");
    Require(!(TCIMReference(reference.GetNamespace(), reference.GetClassName(), keys) == reference),
            "different keys make different paths");
    return;
  }
}

}  // namespace

void fuzz::CheckInput(std::string_view input) {
  Pieces pieces(input);
  const TCIMReference reference = Reference(pieces, 0);
  CheckPath(reference);
  CheckDifference(reference);
}
