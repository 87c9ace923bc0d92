// SPDX-License-Identifier: Apache-2.0
#include "tests/recipes/machine_recipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <numeric>

#include "tests/fakes/machine_tree.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

json MachineWith(const json& functions) { return {{"about", "a test"}, {"pci", functions}}; }

json MachineWithTables(const json& structures, const char* anchor = "_SM3_") {
  const json tables = {{"anchor", anchor}, {"version", "3.2"}, {"structures", structures}};
  return {{"about", "a test"}, {"smbios", tables}};
}

json Slot() {
  return {{"designation", "J1"}, {"type", "a5"},          {"width", "0d"},
          {"usage", 4},          {"length", 3},           {"id", "0102"},
          {"bus", "17"},         {"device", 2},           {"function", 1},
          {"segment", 1},        {"structureLength", 17}, {"characteristics", {"0c", "01"}}};
}

json Card() {
  return json::parse(R"({"address": "03:1f.2", "vendor": "8086", "device": "a170",
    "class": "0403", "progIf": 1, "revision": "31", "subsystem": ["f1a5", "0002"], "irq": 16,
    "driver": "snd", "regions": [{"memory": "38003ff40000", "size": "4000", "flags": "c"}, null,
    {"io": "e000", "size": "20"}]})");
}

class MachineRecipeTest : public testing::Test {
 protected:
  MachineRecipeTest() : root_(MachineTree::Real("/built")) { fs::remove_all(root_); }

  std::string Read(const std::string& path) const {
    std::ifstream file(root_ / path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  unsigned Byte(const std::string& path, std::size_t offset) const {
    return static_cast<unsigned char>(Read(path).at(offset));
  }

  // Returns why a recipe is refused; empty if it is not.
  std::string FaultOf(const json& recipe) const {
    try {
      BuildMachine(recipe, root_);
      return "";
    } catch (const std::invalid_argument& fault) {
      return fault.what();
    }
  }

  // The card with one key changed, or removed where the value is null.
  std::string FaultOfCard(const std::string& key, const json& value) const {
    json card = Card();
    card[key] = value;
    if (value.is_null()) card.erase(key);
    return FaultOf(MachineWith(json::array({card})));
  }

  fs::path root_;
};

TEST_F(MachineRecipeTest, WritesTheListLineAsTheKernelPrintsIt) {
  BuildMachine(MachineWith(json::array({Card()})), root_);
  const std::string none = "\t               0";
  EXPECT_EQ(Read("proc/bus/pci/devices"), "03fa\t8086a170\t10\t    38003ff4000c" + none +
                                              "\t            e001" + none + none + none + none +
                                              "\t            4000" + none + "\t              20" +
                                              none + none + none + none + "\tsnd\n");
}

TEST_F(MachineRecipeTest, EndsTheListLineWithAnEmptyColumnWithoutADriver) {
  json card = Card();
  card.erase("driver");
  BuildMachine(MachineWith(json::array({card})), root_);
  EXPECT_TRUE(Read("proc/bus/pci/devices").ends_with("0\t\n"));
}

TEST_F(MachineRecipeTest, CutsTheListLineToItsColumns) {
  json card = Card();
  card["listColumns"] = 3;
  BuildMachine(MachineWith(json::array({card})), root_);
  EXPECT_EQ(Read("proc/bus/pci/devices"), "03fa\t8086a170\t10\n");
}

TEST_F(MachineRecipeTest, WritesTheSameConfigurationToBothPlaces) {
  BuildMachine(MachineWith(json::array({Card()})), root_);
  const std::string config = Read("proc/bus/pci/03/1f.2");
  EXPECT_EQ(Read("sys/bus/pci/devices/0000:03:1f.2/config"), config);
  ASSERT_EQ(config.size(), 256U);
  EXPECT_EQ(config.substr(0, 4), "\x86\x80\x70\xa1");
  EXPECT_EQ(config.substr(8, 4), "\x31\x01\x03\x04");
  EXPECT_EQ(config.substr(0x10, 8), std::string("\x0c\0\xf4\x3f\0\x38\0\0", 8));
  EXPECT_EQ(config.substr(0x18, 4), std::string("\x01\xe0\0\0", 4));
  EXPECT_EQ(config.substr(0x2C, 4), std::string("\xa5\xf1\x02\0", 4));
}

TEST_F(MachineRecipeTest, WritesTheAttributesOfSysfs) {
  BuildMachine(MachineWith(json::array({Card()})), root_);
  const std::string directory = "sys/bus/pci/devices/0000:03:1f.2/";
  EXPECT_EQ(Read(directory + "vendor"), "0x8086\n");
  EXPECT_EQ(Read(directory + "class"), "0x040301\n");
  EXPECT_EQ(Read(directory + "irq"), "16\n");
  EXPECT_EQ(Read(directory + "subsystem_device"), "0x0002\n");
  EXPECT_THAT(Read(directory + "resource"),
              HasSubstr("0x000038003ff40000 0x000038003ff43fff 0x000000000014220c\n"));
}

TEST_F(MachineRecipeTest, WritesPatchesOverTheConfiguration) {
  json card = Card();
  card["patches"] = json::parse(R"([{"at": 52, "bytes": "40"}, {"at": "fe", "bytes": "abcd"}])");
  BuildMachine(MachineWith(json::array({card})), root_);
  EXPECT_EQ(Byte("proc/bus/pci/03/1f.2", 0x34), 0x40U);
  EXPECT_EQ(Byte("proc/bus/pci/03/1f.2", 0xFF), 0xCDU);
  EXPECT_THAT(FaultOfCard("patches", json::parse(R"([{"at": "ff", "bytes": "abcd"}])")),
              HasSubstr("leads past the end"));
}

TEST_F(MachineRecipeTest, PutsTheBusesIntoABridgesHeader) {
  json bridge = {{"address", "00:01.0"}, {"vendor", "8086"},      {"device", "1901"},
                 {"class", "0604"},      {"buses", {0, 1, "1f"}}, {"configSize", 64}};
  BuildMachine(MachineWith(json::array({bridge})), root_);
  const std::string config = Read("proc/bus/pci/00/01.0");
  EXPECT_EQ(config.size(), 64U);
  EXPECT_EQ(config[0x0E], 1);
  EXPECT_EQ(config.substr(0x18, 3), std::string("\0\x01\x1f", 3));
}

TEST_F(MachineRecipeTest, NamesFilesOfAnotherDomainByTheDomain) {
  json card = Card();
  card["address"] = "10000:03:1f.2";
  BuildMachine(MachineWith(json::array({card})), root_);
  EXPECT_TRUE(fs::exists(root_ / "proc/bus/pci/10000:03/1f.2"));
  EXPECT_TRUE(fs::exists(root_ / "sys/bus/pci/devices/10000:03:1f.2/config"));
  EXPECT_TRUE(Read("proc/bus/pci/devices").starts_with("03fa\t"));
}

TEST_F(MachineRecipeTest, WritesNoSysfsWhereThereIsNone) {
  json machine = MachineWith(json::array({Card()}));
  machine["sysfs"] = false;
  BuildMachine(machine, root_);
  EXPECT_TRUE(fs::exists(root_ / "proc/bus/pci/03/1f.2"));
  EXPECT_FALSE(fs::exists(root_ / "sys"));
}

TEST_F(MachineRecipeTest, WritesSlotStructuresOfTheLengthAskedFor) {
  json longer = Slot();
  longer["structureLength"] = 24;
  longer["dataBusWidth"] = "0b";
  longer["peers"] = {{{"segment", 2}, {"bus", "5d"}, {"device", 3}, {"function", 0}, {"width", 8}}};
  json shorter = Slot();
  shorter["structureLength"] = 13;
  shorter.erase("designation");
  BuildMachine(MachineWithTables({{{"slot", longer}}, {{"handle", 7}, {"slot", shorter}}}), root_);
  EXPECT_EQ(Read("sys/firmware/dmi/tables/DMI"),
            std::string("\x09\x18\0\x01\x01\xa5\x0d\x04\x03\x02\x01\x0c\x01\x01\0\x17\x11\x0b"
                        "\x01\x02\0\x5d\x18\x08J1\0\0"
                        "\x09\x0d\x07\0\0\xa5\x0d\x04\x03\x02\x01\x0c\x01\0\0"
                        "\x7f\x04\xff\xfe\0\0",
                        49));
}

TEST_F(MachineRecipeTest, WritesStringsAndRawStructures) {
  BuildMachine(MachineWithTables({{{"oemStrings", {"$T9", "x"}}}, {{"raw", "80050000ff0000"}}}),
               root_);
  EXPECT_TRUE(
      Read("sys/firmware/dmi/tables/DMI")
          .starts_with(std::string("\x0b\x05\0\x01\x02$T9\0x\0\0\x80\x05\0\0\xff\0\0", 19)));
}

TEST_F(MachineRecipeTest, WritesEntryPointsThatAddUpToZero) {
  const std::string file = "sys/firmware/dmi/tables/smbios_entry_point";
  for (const char* anchor : {"_SM_", "_SM3_"}) {
    BuildMachine(MachineWithTables({{{"slot", Slot()}}}, anchor), root_);
    const std::string entry = Read(file);
    EXPECT_TRUE(entry.starts_with(anchor));
    EXPECT_EQ(std::accumulate(entry.begin(), entry.end(), 0) % 256, 0) << anchor;
    EXPECT_EQ(Byte(file, entry.size() == 0x18 ? 7 : 6), 3U);
  }
}

TEST_F(MachineRecipeTest, NamesThePlaceOfAFault) {
  EXPECT_EQ(FaultOfCard("colour", 1), "machine recipe: machine.pci[0]: unknown key \"colour\"");
  EXPECT_EQ(FaultOfCard("vendor", nullptr),
            "machine recipe: machine.pci[0]: \"vendor\" is missing");
  json slot = Slot();
  slot["id"] = "x";
  EXPECT_EQ(FaultOf(MachineWithTables({{{"slot", slot}}})),
            "machine recipe: machine.smbios.structures[0].slot: \"id\" must be a number or its "
            "hexadecimal digits");
}

TEST_F(MachineRecipeTest, RefusesImpossibleFunctions) {
  EXPECT_THAT(FaultOfCard("address", "0:1"), HasSubstr("no address"));
  EXPECT_THAT(FaultOfCard("address", "00:20.0"), HasSubstr("no address"));
  EXPECT_THAT(FaultOfCard("address", "00:00.8"), HasSubstr("no address"));
  EXPECT_THAT(FaultOfCard("address", "00:00.0x"), HasSubstr("no address"));
  EXPECT_THAT(FaultOfCard("vendor", "18086"), HasSubstr("\"vendor\" is above 0xffff"));
  EXPECT_THAT(FaultOfCard("vendor", -1), HasSubstr("must be a number"));
  EXPECT_THAT(FaultOfCard("headerType", 1), HasSubstr("disagree"));
  EXPECT_THAT(FaultOfCard("subsystem", {1}), HasSubstr("must hold 2 numbers"));
  EXPECT_THAT(FaultOfCard("configSize", 128), HasSubstr("64, 256 or 4096"));
  EXPECT_THAT(FaultOfCard("listColumns", 0), HasSubstr("1 to 18"));
  EXPECT_THAT(FaultOfCard("driver", 1), HasSubstr("must be a text"));
}

TEST_F(MachineRecipeTest, RefusesImpossibleRegions) {
  const auto faultOf = [this](const char* regions) {
    return FaultOfCard("regions", json::parse(regions));
  };
  EXPECT_THAT(faultOf(R"([{"memory": "100000000", "size": 16}])"), HasSubstr("needs flag 4"));
  EXPECT_THAT(faultOf(R"([{"memory": 16, "size": 16, "flags": 1}])"), HasSubstr("flag 1"));
  EXPECT_THAT(faultOf(R"([{"memory": 16, "size": 16, "flags": 4}, {"io": 16, "size": 16}])"),
              HasSubstr("null must"));
  EXPECT_THAT(faultOf(R"([null, null, null, null, null, {"memory": 16, "size": 16, "flags": 4}])"),
              HasSubstr("no place"));
  EXPECT_THAT(faultOf("[null, null, null, null, null, null, null]"), HasSubstr("too many"));
  EXPECT_THAT(faultOf("7"), HasSubstr("must be a list"));
}

TEST_F(MachineRecipeTest, RefusesImpossibleTables) {
  EXPECT_THAT(FaultOf(MachineWithTables(json::array(), "_DMI_")), HasSubstr("anchor"));
  EXPECT_THAT(FaultOf(MachineWithTables({{{"raw", "0x"}}})), HasSubstr("hexadecimal digits"));
  EXPECT_THAT(FaultOf(MachineWithTables({{{"raw", "090"}}})), HasSubstr("two digits a byte"));
  EXPECT_THAT(FaultOf(MachineWithTables({{{"oemStrings", {1}}}})), HasSubstr("must hold texts"));
  EXPECT_THAT(FaultOf(MachineWithTables(json::array({json::object()}))),
              HasSubstr("\"raw\" is missing"));
  json slot = Slot();
  slot["structureLength"] = 12;
  EXPECT_THAT(FaultOf(MachineWithTables({{{"slot", slot}}})), HasSubstr("at least 13 bytes"));
}

TEST_F(MachineRecipeTest, RefusesAMachineThatIsNoObjectOrSaysNotWhatItIsFor) {
  EXPECT_EQ(FaultOf(json::array()), "machine recipe: machine: must be an object");
  EXPECT_THAT(FaultOf(json::object()), HasSubstr("\"about\" is missing"));
}

TEST_F(MachineRecipeTest, NamesAFileThatIsNoJson) {
  fs::create_directories(root_);
  const fs::path file = root_ / "machine.json";
  EXPECT_THROW(ReadRecipe(file), std::runtime_error);
  std::ofstream(file) << "{";
  try {
    ReadRecipe(file);
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("machine.json: "));
  }
}

}  // namespace
