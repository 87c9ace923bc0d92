// SPDX-License-Identifier: Apache-2.0
#include "host/collect/plugin_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "host/base/errors.h"

namespace pciinfo {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PluginFilesTest : public testing::Test {
 protected:
  PluginFilesTest() {
    fs::remove_all(base_);
    fs::create_directories(Directory());
  }
  ~PluginFilesTest() override { fs::remove_all(base_); }

  std::string Directory() const { return base_ / "plugins"; }

  /// Makes an empty file with that name below the directory of plug-ins, or beside it.
  std::string AddPlugin(const std::string& name) {
    const std::string file = (fs::path(Directory()) / (name + ".pi.so")).lexically_normal();
    std::ofstream(file).flush();
    return file;
  }

  /// Makes the class file of a plug-in, which declares one class.
  std::string AddClasses(const std::string& name, const std::string& className) {
    const std::string file = (fs::path(Directory()) / (name + ".classes.json")).lexically_normal();
    std::ofstream(file) << R"({"classes":[{"name":")" << className
                        << R"(","properties":[{"name":"Id","type":"string","key":true}]}]})";
    return file;
  }

  PluginSet Find(const PluginOptions& options) const {
    return FindPlugins(options, {"/nowhere/plugins", Directory()});
  }

  std::vector<std::string> FilesFor(const PluginOptions& options) const {
    std::vector<std::string> files;
    for (const PluginFile& plugin : Find(options).plugins) files.push_back(plugin.file);
    return files;
  }

  std::string ErrorFor(const PluginOptions& options) const {
    try {
      Find(options);
      return "no error";
    } catch (const std::exception& error) {
      return error.what();
    }
  }

  const fs::path base_ = testing::TempDir() + "plugin_files_test." + std::to_string(getpid());
};

TEST_F(PluginFilesTest, FindsThePluginsOfTheDirectoryInTheOrderOfTheirNames) {
  const std::string b = AddPlugin("b");
  const std::string a = AddPlugin("a");
  AddClasses("b", "B_Class");
  AddClasses("a", "A_Class");
  AddClasses("c", "C_Class");  // has no plug-in
  std::ofstream(Directory() + "/README").flush();
  const PluginSet found = Find({});
  ASSERT_EQ(found.plugins.size(), 2U);
  EXPECT_EQ(found.plugins[0].file, a);
  EXPECT_THAT(found.plugins[0].classes, ElementsAre("A_Class"));
  EXPECT_EQ(found.plugins[1].file, b);
  ASSERT_EQ(found.declared.classes.size(), 2U);
  EXPECT_EQ(found.declared.classes[0].name, "A_Class");
  EXPECT_EQ(found.declared.classes[1].name, "B_Class");
}

TEST_F(PluginFilesTest, AddsPluginsToThoseThatAreFoundOrReplacesThem) {
  const std::string a = AddPlugin("a");
  const std::string x = AddPlugin("../x");
  const std::string y = AddPlugin("../y");
  AddClasses("a", "A_Class");
  AddClasses("../x", "X_Class");
  EXPECT_THAT(FilesFor({{x}, {}, {}}), ElementsAre(a, x));
  EXPECT_THAT(FilesFor({{}, {x}, {}}), ElementsAre(x));
  EXPECT_THAT(FilesFor({{y}, {x}, {}}), ElementsAre(x, y));
  EXPECT_THAT(Find({{y}, {x}, {}}).plugins[1].classes, IsEmpty());
}

TEST_F(PluginFilesTest, ClassesOfANamedPluginNeedNotBeRequested) {
  const auto addRequested = [&](const std::string& name) {
    std::ofstream(fs::path(Directory()) / (name + ".classes.json"))
        << R"({"onRequest":true,"classes":[{"name":")" << name.back()
        << R"(","properties":[{"name":"Id","type":"string","key":true}]}]})";
    return AddPlugin(name);
  };
  addRequested("a");
  const std::string x = addRequested("../x");
  EXPECT_THAT(Find({{x}, {}, {}}).declared.onRequest, ElementsAre("a"));
}

TEST_F(PluginFilesTest, ClassFilesOfTheUserComeLast) {
  AddPlugin("a");
  AddClasses("a", "A_Class");
  const std::string more = AddClasses("../more", "More_Class");
  const PluginSet found = Find({{}, {}, {more}});
  ASSERT_EQ(found.declared.classes.size(), 2U);
  EXPECT_EQ(found.declared.classes[1].name, "More_Class");
  EXPECT_THAT(found.plugins[0].classes, ElementsAre("A_Class"));
}

TEST_F(PluginFilesTest, NamesOfFilesBecomeAbsolute) {
  const std::string x = AddPlugin("../x");
  AddClasses("../x", "X_Class");
  EXPECT_THAT(FilesFor({{}, {fs::relative(x)}, {}}), ElementsAre(fs::absolute(fs::relative(x))));
}

TEST_F(PluginFilesTest, APluginThatIsNamedTwiceIsAnError) {
  const std::string a = AddPlugin("a");
  const std::string x = AddPlugin("../x");
  AddClasses("a", "A_Class");
  AddClasses("../x", "X_Class");
  const std::string link = Directory() + "/../link.pi.so";
  fs::create_symlink(x, link);
  EXPECT_THROW(Find({{x, x}, {}, {}}), UsageError);
  EXPECT_THAT(ErrorFor({{x, x}, {}, {}}),
              HasSubstr("x.pi.so is named twice: name each plug-in once"));
  EXPECT_THAT(ErrorFor({{x}, {x}, {}}), HasSubstr("is named twice"));
  EXPECT_THAT(ErrorFor({{link, x}, {}, {}}), HasSubstr("is named twice"));
  EXPECT_THAT(ErrorFor({{a}, {}, {}}),
              HasSubstr("a.pi.so is loaded without being named: leave out its --plugin"));
}

TEST_F(PluginFilesTest, APluginThatDoesNotExistIsAnError) {
  EXPECT_THAT(ErrorFor({{}, {"/nowhere/x.pi.so"}, {}}),
              HasSubstr("cannot open the plug-in \"/nowhere/x.pi.so\": there is no such file"));
  EXPECT_THAT(ErrorFor({{}, {""}, {}}), HasSubstr("cannot open the plug-in \"\""));
}

TEST_F(PluginFilesTest, AnEmptyOrMissingDirectoryIsAnError) {
  EXPECT_THAT(ErrorFor({}), AllOf(HasSubstr("no plug-in (*.pi.so) is in " + Directory()),
                                  HasSubstr("install the plug-ins")));
  fs::remove(Directory());
  EXPECT_THAT(ErrorFor({}), AllOf(HasSubstr("none of /nowhere/plugins, " + Directory()),
                                  HasSubstr("name one with --only-plugin")));
}

TEST_F(PluginFilesTest, ABrokenClassFileIsNamed) {
  AddPlugin("a");
  const std::string file = AddClasses("a", "A Class");
  EXPECT_THROW(Find({}), ClassFileError);
  EXPECT_THAT(ErrorFor({}), HasSubstr(file + ": classes[0].name: expected a name"));
  std::ofstream(file) << "{";
  EXPECT_THAT(ErrorFor({}), HasSubstr(file + ": "));
}

TEST_F(PluginFilesTest, TwoFilesThatDeclareTheSameClassAreBothNamed) {
  AddPlugin("a");
  AddPlugin("b");
  const std::string first = AddClasses("a", "Same");
  const std::string second = AddClasses("b", "Same");
  EXPECT_THAT(ErrorFor({}), HasSubstr(second +
                                      ": classes[0].name: class \"Same\" is already "
                                      "declared by " +
                                      first + ": leave out one of"));
}

TEST_F(PluginFilesTest, PluginsWithoutAnyClassAreAnError) {
  AddPlugin("a");
  EXPECT_THAT(ErrorFor({}), HasSubstr("no class is declared: put a.classes.json beside"));
}

}  // namespace
}  // namespace pciinfo
