// SPDX-License-Identifier: Apache-2.0
#include "host/formats/csv_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "tests/host/hostile_repository.h"
#include "tests/host/written.h"

namespace pciinfo {
namespace {

using nlohmann::json;

struct Field {
  std::string text;
  bool isQuoted = false;
};

using Record = std::vector<Field>;

/// Reads CSV exactly as RFC 4180 defines it and fails on anything else.
class CsvReader {
 public:
  explicit CsvReader(std::string_view text) : rest_(text) {}

  std::vector<Record> Read() {
    std::vector<Record> records;
    while (!rest_.empty()) {
      records.push_back(ReadRecord());
      Expect("\r\n");
    }
    return records;
  }

 private:
  Record ReadRecord() {
    Record record = {ReadField()};
    while (rest_.starts_with(",")) {
      rest_.remove_prefix(1);
      record.push_back(ReadField());
    }
    return record;
  }

  Field ReadField() { return rest_.starts_with("\"") ? ReadQuoted() : ReadPlain(); }

  Field ReadPlain() {
    const std::size_t length = std::min(rest_.find_first_of(",\r\n\""), rest_.size());
    Field field{std::string(rest_.substr(0, length))};
    rest_.remove_prefix(length);
    return field;
  }

  Field ReadQuoted() {
    Field field{{}, true};
    do {
      rest_.remove_prefix(1);
      const std::size_t length = rest_.find('"');
      if (length == std::string_view::npos) throw std::runtime_error("no closing quote");
      field.text += rest_.substr(0, length);
      rest_.remove_prefix(length + 1);
      if (rest_.starts_with("\"")) field.text += '"';
    } while (rest_.starts_with("\""));
    return field;
  }

  void Expect(std::string_view text) {
    if (!rest_.starts_with(text)) throw std::runtime_error("no line end");
    rest_.remove_prefix(text.size());
  }

  std::string_view rest_;
};

/// The field's value as JSON, given its JSON counterpart; nothing for an unset property.
std::optional<json> Meaning(const Field& field, const json& wanted) {
  if (!field.isQuoted && field.text.empty()) return std::nullopt;
  if (wanted.is_string() && field.isQuoted) return field.text;
  if (field.isQuoted != wanted.is_array()) return "not of its kind: " + field.text;
  return json::parse(field.text);
}

void ExpectCsvLikeJson(const vtq::Namespace& repository) {
  const std::vector<Record> records = CsvReader(Written("csv", repository)).Read();
  const json instances = json::parse(Written("json", repository))["instances"];
  ASSERT_EQ(records.size(), instances.size() + 1);
  const Record& head = records.front();
  for (std::size_t row = 0; row < instances.size(); ++row) {
    const Record& record = records[row + 1];
    ASSERT_EQ(record.size(), head.size());
    EXPECT_EQ(record[0].text, instances[row]["class"]);
    EXPECT_EQ(record[1].text, instances[row]["path"]);
    json properties = instances[row]["properties"];
    for (std::size_t column = 2; column < head.size(); ++column) {
      const json wanted = properties.value(head[column].text, json());
      const auto meaning = Meaning(record[column], wanted);
      EXPECT_EQ(meaning.value_or(json()), wanted) << head[column].text;
      properties.erase(head[column].text);
    }
    EXPECT_TRUE(properties.empty()) << properties;
  }
}

TEST(CsvWriter, WritesSeveralClassesInOneTable) {
  EXPECT_EQ(Written("csv", *MakeFixedRepository(), {"QZMSG_SystemBoard", "QZMSG_PCIRawData"}),
            "class,path,Command,CreationClassName,DeviceID,ElementName,RawResult,SlotAllInfo,"
            "SlotDesignation,SystemCreationClassName,SystemName\r\n"
            "\"QZMSG_SystemBoard\",\"/root/cimv2:QZMSG_SystemBoard.CreationClassName="
            "\"\"QZMSG_SystemBoard\"\",DeviceID=\"\"SystemBoard1\"\",SystemCreationClassName="
            "\"\"CIM_ComputerSystem\"\",SystemName=\"\"box\"\"\",,\"QZMSG_SystemBoard\","
            "\"SystemBoard1\",\"SystemBoard1\",,,,\"CIM_ComputerSystem\",\"box\"\r\n"
            "\"QZMSG_PCIRawData\",\"/root/cimv2:QZMSG_PCIRawData.Command=\"\"lspci -xxxx\"\"\","
            "\"lspci -xxxx\",,,,\"[\"\"00:00.0 \\\"\"quoted\\\"\" \\\\ and\\ttabbed\"\",\"\"\"\","
            "\"\"caf\xc3\xa9\"\"]\",,,,\r\n"
            "\"QZMSG_PCIRawData\",\"/root/cimv2:QZMSG_PCIRawData.Command=\"\"lspci -vvv\"\"\","
            "\"lspci -vvv\",,,,,,,,\r\n");
}

TEST(CsvWriter, HasTheSameContentAsJson) {
  ExpectCsvLikeJson(*MakeFixedRepository());
  ExpectCsvLikeJson(*MakeHostileRepository());
}

TEST(CsvWriter, DoesNotChangeTextsThatLookLikeFormulas) {
  EXPECT_THAT(Written("csv", *MakeHostileRepository()), testing::HasSubstr(",\"=1+1\","));
}

TEST(CsvWriter, RefusesWhatReadersWouldCut) {
  const auto written = [](std::size_t length) {
    const auto repository = MakeEmptyHostileRepository();
    const auto instance = repository->Find("Hostile_Everything")->CreateInstance({});
    instance->SetProperty("Key", NQZMVTQ20::TCIMValue(std::string(length, 'x')), {});
    instance->Commit({});
    return Written("csv", *repository);
  };
  EXPECT_THAT(written(32767), testing::HasSubstr("xxx"));
  EXPECT_THROW(written(32768), std::runtime_error);
}

TEST(CsvWriter, WithoutInstancesWritesOnlyTheHeader) {
  EXPECT_EQ(Written("csv", *MakeEmptyRepository(), {"QZMSG_PCIRawData"}),
            "class,path,Command,RawResult\r\n");
}

}  // namespace
}  // namespace pciinfo
