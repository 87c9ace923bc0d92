// SPDX-License-Identifier: Apache-2.0

// Texts of the machine must not reach a terminal as they are, in no format.
#include "tests/host/unsafe_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/formats/json_reader.h"
#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

std::shared_ptr<vtq::Namespace> MakeUnsafeRepository() {
  auto repository = MakeEmptyHostileRepository();
  const auto cimClass = repository->Find("Hostile_Everything");
  const auto instance = std::make_shared<vtq::Instance>(cimClass);
  const NQZMVTQ20::TCIMValue text(EveryUnsafeCharacter());
  instance->SetProperty("Key", text, {});
  instance->SetProperty("string", text, {});
  const NQZMVTQ20::TCIMValue::TCIMType type(NQZMVTQ20::TCIMValue::TCIMType::kString);
  instance->SetProperty("strings", NQZMVTQ20::TCIMValue(type, 1, {text}), {});
  instance->Commit({});
  return repository;
}

std::string OnTerminal(const std::string& format, const vtq::Namespace& repository) {
  OutputToText output;
  WriteInstances(repository, {"Hostile_Everything", "Hostile_Link"},
                 *MakeInstanceWriter(format, output.Get(), {.isShown = true}));
  return output.Text();
}

/// Line ends are a format's own; XML keeps the tabs of texts.
const char* OwnCharacters(const std::string& format) {
  if (format == "csv") return "\r\n";
  return format == "cim-xml" ? "\n\t" : "\n";
}

class UnsafeText : public testing::TestWithParam<std::string> {};

TEST_P(UnsafeText, IsNotShownOnATerminal) {
  for (const auto& repository : {MakeUnsafeRepository(), MakeHostileRepository()}) {
    EXPECT_EQ(FirstUnsafe(OnTerminal(GetParam(), *repository), OwnCharacters(GetParam())), -1);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, UnsafeText, testing::ValuesIn(InstanceFormats()),
                         [](const auto& named) {
                           std::string name = named.param;
                           std::erase(name, '-');
                           return name;
                         });

TEST(UnsafeTextInFiles, ComesBackFromJson) {
  for (const char* format : {"json", "jsonl"}) {
    const auto repository = MakeEmptyHostileRepository();
    ReadInstances(Written(format, *MakeUnsafeRepository()), *repository);
    EXPECT_EQ(Written("json", *repository), Written("json", *MakeUnsafeRepository()));
    const auto instance = repository->Find("Hostile_Everything")->GetInstances().front();
    EXPECT_EQ(static_cast<std::string>(instance->GetProperty("Key", {}).value),
              EveryUnsafeCharacter());
  }
}

TEST(UnsafeTextInFiles, StandsInCsvAsItIs) {
  EXPECT_THAT(Written("csv", *MakeUnsafeRepository()),
              testing::HasSubstr('"' + EveryUnsafeCharacter() + '"'));
}

}  // namespace
}  // namespace pciinfo
