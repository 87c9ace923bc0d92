// SPDX-License-Identifier: Apache-2.0
#include "plugin/collector.h"

#include "framework/cim_instance.h"
#include "framework/exception.h"
#include "plugin/class_names.h"
#include "plugin/values.h"
#include "tests/fakes/plugin_fixture.h"
#include "tests/fakes/watched_framework.h"

using NQZMVTQ20::ICIMClass;
using NQZMVTQ20::ICIMInstance;
using NQZMVTQ20::ICIMNamespace;
using NQZMVTQ20::ILogger;
using NQZMVTQ20::TCIMProperty;
using NQZMVTQ20::TCIMReference;
using NQZMVTQ20::TCIMValue;
using NQZMVTQ20::TInstanceCallback;
using NQZMVTQ20::TPluginManagerProvider;
using NQZMVTQ20::TQualifierMap;
using NQZMVTQ20::TVTQException;

namespace {

class TestCollector final : public TPci {
 public:
  using TPci::GetCIMInstances;
  using TPci::TPci;

  std::vector<ICIMInstance*> GetCIMInstances(std::string className) override {
    askedFor = className;
    return {};
  }

  std::string askedFor;
};

// A class with one instance, which records the calls.
class NotingClass final : public ICIMClass, public ICIMInstance {
 public:
  std::string GetName(const TQualifierMap&) const override { return "Noting"; }
  std::shared_ptr<ICIMNamespace> GetNamespace(const TQualifierMap&) const override { return {}; }
  std::shared_ptr<ICIMInstance> CreateInstance(const TQualifierMap&) override {
    notes.emplace_back("create");
    return {std::shared_ptr<void>(), this};
  }
  void EnumerateInstances(const TInstanceCallback&, int, const TQualifierMap&) override {}

  std::shared_ptr<ICIMClass> GetClass(const TQualifierMap&) const override { return {}; }
  TCIMReference GetObjectReference(const TQualifierMap&) const override { return {}; }
  TCIMProperty GetProperty(const std::string&, const TQualifierMap&) const override { return {}; }
  void SetProperty(const std::string& name, const TCIMValue&, const TQualifierMap&) override {
    notes.push_back(name);
  }
  void Commit(const TQualifierMap&) override { notes.emplace_back("commit"); }

  std::vector<std::string> notes;
};

TPropertyMap Board(const std::string& id) {
  return {{"SystemCreationClassName", TCIMValue("")},
          {"SystemName", TCIMValue("")},
          {"CreationClassName", TCIMValue(kSystemBoardClass)},
          {"DeviceID", TCIMValue(id)}};
}

}  // namespace

class CollectorTest : public PluginTest {
 protected:
  std::shared_ptr<ICIMClass> board = Class(kSystemBoardClass);
};

TEST_F(CollectorTest, DefaultCollectorHasNoHandle) {
  TestCollector collector;
  EXPECT_EQ(collector.GetInfoHandle(), nullptr);
}

TEST_F(CollectorTest, KeepsClassAndProviderWithoutOwningTheClass) {
  const long before = board.use_count();
  TestCollector collector(board, &provider);
  EXPECT_EQ(board.use_count(), before);
  EXPECT_EQ(collector.GetCIMClass(), board.get());
  EXPECT_EQ(collector.GetInfoHandle(), &provider);
}

TEST_F(CollectorTest, WithoutProviderLogsNothingWhateverTheSeverity) {
  const TestCollector collector(board);
  collector.WriteError("text");
  collector.WriteWarning("text");
  collector.WriteStatus("text");
  collector.WriteDebug("text");
  collector.WriteVerbose("text");
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CollectorTest, EmptyTextIsNotLogged) {
  TestCollector(board, &provider).Write("", ILogger::kError);
  EXPECT_TRUE(Fake().log.empty());
}

TEST_F(CollectorTest, EachWriterHasItsSeverity) {
  const TestCollector collector(board, &provider);
  collector.WriteError("e");
  collector.WriteWarning("w");
  collector.WriteStatus("s");
  collector.WriteDebug("d");
  collector.WriteVerbose("v");
  EXPECT_EQ(Fake().log, (std::vector<std::string>{"0 e", "1 w", "2 s", "3 d", "4 v"}));
}

TEST_F(CollectorTest, AsksItselfForTheClassItWasMadeFor) {
  TestCollector collector(board, &provider);
  collector.GetCIMInstances();
  EXPECT_EQ(collector.askedFor, kSystemBoardClass);
}

TEST_F(CollectorTest, GeneratesACommittedInstanceWithAllProperties) {
  TestCollector collector(board, &provider);
  EXPECT_NE(collector.GenerateCIMInstance(Board("b"), kSystemBoardClass), nullptr);
  ASSERT_EQ(Instances(kSystemBoardClass).size(), 1U);
  EXPECT_EQ(Text(*Instances(kSystemBoardClass)[0], "DeviceID"), "b");
  EXPECT_EQ(Fake().log,
            (std::vector<std::string>{"4 TPci::generateCIMInstance - Generating CIM instance for "
                                      "class QZMSG_SystemBoard."}));
}

TEST_F(CollectorTest, PropertiesAreSetInTheOrderOfTheirNamesAndThenCommitted) {
  const auto noting = std::make_shared<NotingClass>();
  TestCollector collector(noting, &provider);
  collector.GenerateCIMInstance(
      {{"b", TCIMValue("1")}, {"B", TCIMValue("2")}, {"a", TCIMValue("3")}, {"aa", TCIMValue("4")}},
      "Noting");
  EXPECT_EQ(noting->notes, (std::vector<std::string>{"create", "B", "a", "aa", "b", "commit"}));
}

TEST_F(CollectorTest, EmptyMapStillCreatesAndCommitsAnInstance) {
  // Only instances of a class without keys may have no property set.
  vtq::ClassSchema schema;
  schema.name = "Keyless";
  nameSpace->Declare(schema);
  TestCollector collector(Class("Keyless"), &provider);
  collector.GenerateCIMInstance({}, "Keyless");
  EXPECT_EQ(Instances("Keyless").size(), 1U);
}

TEST_F(CollectorTest, InstanceOfAnotherClassNameHasAllPropertiesSet) {
  const auto noting = std::make_shared<NotingClass>();
  TestCollector(noting, &provider)
      .GenerateCIMInstance({{"b", TCIMValue("1")}, {"a", TCIMValue("2")}, {"c", TCIMValue("3")}},
                           "Another");
  EXPECT_EQ(noting->notes, (std::vector<std::string>{"create", "a", "b", "c"}));
}

TEST_F(CollectorTest, GeneratingAnInstanceAsksTheFrameworkForNothingElse) {
  WatchedFramework watch(nameSpace);
  const auto watched = watch.Class(kSystemBoardClass);
  TestCollector(watched, &provider).GenerateCIMInstance(Board("b"), kSystemBoardClass);
  EXPECT_EQ(watch.operations,
            (std::vector<std::string>{"QZMSG_SystemBoard CreateInstance",
                                      "QZMSG_SystemBoard SetProperty CreationClassName",
                                      "QZMSG_SystemBoard SetProperty DeviceID",
                                      "QZMSG_SystemBoard SetProperty SystemCreationClassName",
                                      "QZMSG_SystemBoard SetProperty SystemName",
                                      "QZMSG_SystemBoard GetName", "QZMSG_SystemBoard Commit"}));
}

TEST_F(CollectorTest, InstanceOfAnotherClassNameIsFilledButNotCommitted) {
  TestCollector collector(board, &provider);
  collector.GenerateCIMInstance(Board("b"), "Another");
  EXPECT_TRUE(Instances(kSystemBoardClass).empty());
  // The properties are set nevertheless: one that the class does not declare is refused.
  EXPECT_THROW(collector.GenerateCIMInstance({{"Undeclared", TCIMValue("x")}}, "Another"),
               TVTQException);
}

TEST_F(CollectorTest, NoInstanceIsADuplicateInAnEmptyClass) {
  const auto candidate = board->CreateInstance({});
  for (const auto& [name, value] : Board("b")) candidate->SetProperty(name, value, {});
  EXPECT_FALSE(TestCollector(board, &provider).IsDuplicateInstance(candidate.get()));
}

TEST_F(CollectorTest, CommittedCandidateIsItsOwnDuplicate) {
  const auto candidate = Commit(kSystemBoardClass, Board("b"));
  EXPECT_TRUE(TestCollector(board, &provider).IsDuplicateInstance(candidate.get()));
}

TEST_F(CollectorTest, SearchForADuplicateEndsAtTheFirst) {
  for (const char* id : {"a", "b", "c"}) Commit(kSystemBoardClass, Board(id));
  WatchedFramework watch(nameSpace);
  const auto candidate = watch.Instance(Commit(kSystemBoardClass, Board("b")));
  EXPECT_TRUE(TestCollector(board, &provider).IsDuplicateInstance(candidate.get()));
  const std::string reference = "QZMSG_SystemBoard GetObjectReference";
  EXPECT_EQ(watch.operations, (std::vector<std::string>{"QZMSG_SystemBoard GetClass", reference,
                                                        "QZMSG_SystemBoard EnumerateInstances",
                                                        reference, reference}));
}

TEST_F(CollectorTest, DuplicatesAreEqualByKeysAlone) {
  Commit(kSystemBoardClass, Board("a"));
  TPropertyMap held = Board("b");
  held.emplace("ElementName", TCIMValue("one name"));
  Commit(kSystemBoardClass, held);
  const auto candidate = board->CreateInstance({});
  for (const auto& [name, value] : Board("b")) candidate->SetProperty(name, value, {});
  candidate->SetProperty("ElementName", TCIMValue("another name"), {});
  TestCollector collector(board, &provider);
  EXPECT_TRUE(collector.IsDuplicateInstance(candidate.get()));
  candidate->SetProperty("DeviceID", TCIMValue("c"), {});
  EXPECT_FALSE(collector.IsDuplicateInstance(candidate.get()));
}
