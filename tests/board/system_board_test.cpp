// SPDX-License-Identifier: Apache-2.0
#include "board/system_board.h"

#include <stdexcept>

#include "framework/exception.h"
#include "plugin/class_names.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/watched_framework.h"

using NQZMVTQ20::TVTQException;

class SystemBoardTest : public PluginTest {
 protected:
  TPropertyMap BoardMap() {
    const std::vector<TPropertyMap> maps =
        Make<TSysBrd>(kSystemBoardClass).PopulateSysbrdProperties();
    EXPECT_EQ(maps.size(), 1U);
    return maps.at(0);
  }
};

TEST_F(SystemBoardTest, YieldsOneBoardWithItsSevenProperties) {
  EXPECT_EQ(Make<TSysBrd>(kSystemBoardClass).TPci::GetCIMInstances().size(), 1U);
  ASSERT_EQ(Instances(kSystemBoardClass).size(), 1U);
  const vtq::Instance& board = *Instances(kSystemBoardClass)[0];
  EXPECT_EQ(Text(board, "SystemCreationClassName"), "CIM_ComputerSystem");
  EXPECT_EQ(Text(board, "SystemName"), "host.example");
  EXPECT_EQ(Text(board, "DeviceID"), "SystemBoard1");
  EXPECT_EQ(Text(board, "ElementName"), "SystemBoard1");
  EXPECT_EQ(Text(board, "CreationClassName"), "QZMSG_SystemBoard");
  EXPECT_EQ(Text(board, "SlotDesignation"), "Onboard");
  EXPECT_EQ(Text(board, "SlotAllInfo"), "Onboard");
  EXPECT_EQ(BoardMap().size(), 7U);
}

TEST_F(SystemBoardTest, EmptySchemaTextsStillYieldTheBoard) {
  Fake().systemCreationClassName = "";
  Fake().systemName = "";
  Make<TSysBrd>(kSystemBoardClass).TPci::GetCIMInstances();
  ASSERT_EQ(Instances(kSystemBoardClass).size(), 1U);
  EXPECT_EQ(Text(*Instances(kSystemBoardClass)[0], "SystemCreationClassName"), "");
  EXPECT_EQ(Text(*Instances(kSystemBoardClass)[0], "SystemName"), "");
}

TEST_F(SystemBoardTest, FailingSystemNameKeepsTheCreationClassName) {
  Fake().systemNameFails = true;
  const TPropertyMap board = BoardMap();
  EXPECT_EQ(Text(board, "SystemCreationClassName"), "CIM_ComputerSystem");
  EXPECT_EQ(Text(board, "SystemName"), "");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(SystemBoardTest, FailingCreationClassNameEmptiesBothKeys) {
  Fake().systemCreationClassNameFails = true;
  const TPropertyMap board = BoardMap();
  EXPECT_EQ(Text(board, "SystemCreationClassName"), "");
  EXPECT_EQ(Text(board, "SystemName"), "");
}

TEST_F(SystemBoardTest, FailingNamespaceEmptiesBothKeys) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onGetNamespace = [] { throw TVTQException("no namespace"); };
  const std::vector<TPropertyMap> maps = TSysBrd(faulty, &provider).PopulateSysbrdProperties();
  EXPECT_EQ(Text(maps.at(0), "SystemCreationClassName"), "");
  EXPECT_EQ(Text(maps.at(0), "SystemName"), "");
  EXPECT_EQ(Text(maps.at(0), "DeviceID"), "SystemBoard1");
}

TEST_F(SystemBoardTest, OtherExceptionsOfTheNamespacePassThrough) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onGetNamespace = [] { throw std::runtime_error("broken"); };
  EXPECT_THROW(TSysBrd(faulty, &provider).PopulateSysbrdProperties(), std::runtime_error);
}

TEST_F(SystemBoardTest, KeysNeedTheNamespaceAndNothingElseOfTheFramework) {
  WatchedFramework watch(nameSpace);
  const auto watched = watch.Class(kSystemBoardClass);
  TSysBrd(watched, &provider).PopulateSysbrdProperties();
  EXPECT_EQ(watch.operations, std::vector<std::string>{"QZMSG_SystemBoard GetNamespace"});
}

TEST_F(SystemBoardTest, AnotherClassNameYieldsNoInstance) {
  EXPECT_TRUE(Make<TSysBrd>(kSystemSlotClass).TPci::GetCIMInstances().empty());
  EXPECT_TRUE(Make<TSysBrd>(kSystemBoardClass).GetCIMInstances("QZMSG_systemboard").empty());
}

TEST_F(SystemBoardTest, FailingInstanceIsLoggedWithTheReasonAndLeftOut) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onCreate = [](int) { throw TVTQException("refused"); };
  EXPECT_TRUE(TSysBrd(faulty, &provider).TPci::GetCIMInstances().empty());
  EXPECT_EQ(Fake().LogOf(2),
            (std::vector<std::string>{"Logical System Board info encountered an error"
                                      "\t\t\t\t\t\t\t\t\t"
                                      "generating CIM instances. Error Code: refused"}));
}

TEST_F(SystemBoardTest, OtherExceptionsOfAnInstancePassThrough) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onCreate = [](int) { throw std::runtime_error("broken"); };
  EXPECT_THROW(TSysBrd(faulty, &provider).TPci::GetCIMInstances(), std::runtime_error);
  EXPECT_TRUE(Fake().LogOf(2).empty());
}

TEST_F(SystemBoardTest, OneArgumentConstructorLogsNothing) {
  const auto faulty = std::make_shared<FaultyClass>(Class(kSystemBoardClass));
  faulty->onCreate = [](int) { throw TVTQException("refused"); };
  TSysBrd(faulty).TPci::GetCIMInstances();
  EXPECT_TRUE(Fake().log.empty());
}
