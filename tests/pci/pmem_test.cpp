// SPDX-License-Identifier: Apache-2.0
#include "pci/pmem.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

std::string ReadFile(const fs::path& path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

// The directory in which the loader searches its library, made empty by a mount in this process's
// namespace. So the test does not write to the real directory and does not find its files.
class LibraryPlace {
 public:
  LibraryPlace() : program_(fs::read_symlink("/proc/self/exe")) {
    const fs::path here = fs::current_path();
    if (mount("tmpfs", Directory().c_str(), "tmpfs", 0, nullptr) != 0) {
      throw std::runtime_error("cannot cover " + Directory().string());
    }
    // The mount hides the program's directory, which is part of the library's path, and maybe the
    // current directory: create both again.
    fs::create_directories(program_.parent_path());
    fs::create_directories(here);
    std::ofstream{program_};
  }
  LibraryPlace(const LibraryPlace&) = delete;
  LibraryPlace& operator=(const LibraryPlace&) = delete;
  ~LibraryPlace() { umount2(Directory().c_str(), MNT_DETACH); }

  void Put(const std::string& content) {
    std::ofstream(Directory() / "libpmem.so", std::ios::binary) << content;
  }

 private:
  fs::path Directory() const { return program_.parent_path().parent_path().parent_path(); }

  fs::path program_;
};

int Call(void* entryPoint) { return reinterpret_cast<int (*)()>(entryPoint)(); }

}  // namespace

class PmemTest : public testing::Test {
 protected:
  ~PmemTest() override { pmemUnLoad(); }

  const std::string whole = ReadFile(PMEM_WHOLE);
  const std::string partial = ReadFile(PMEM_PARTIAL);
  LibraryPlace place;
};

TEST_F(PmemTest, MissingLibraryCannotBeLoaded) {
  EXPECT_EQ(pmemLoad(), 3);
  EXPECT_EQ(PMemOpen, nullptr);
}

TEST_F(PmemTest, FileThatIsNoLibraryCannotBeLoaded) {
  place.Put("text");
  EXPECT_EQ(pmemLoad(), 3);
}

TEST_F(PmemTest, LoadedLibraryGivesEveryEntryPoint) {
  place.Put(whole);
  ASSERT_EQ(pmemLoad(), 0);
  EXPECT_EQ(Call(PMemIsInitialized), 1);
  EXPECT_EQ(Call(PMemOpen), 2);
  EXPECT_EQ(Call(PMemClose), 3);
  EXPECT_EQ(Call(PMemRead), 4);
  EXPECT_EQ(Call(PMemSearch), 5);
}

TEST_F(PmemTest, MissingEntryPointsAreNullAndNoFailure) {
  place.Put(partial);
  ASSERT_EQ(pmemLoad(), 0);
  EXPECT_EQ(Call(PMemIsInitialized), 1);
  EXPECT_EQ(Call(PMemOpen), 2);
  EXPECT_EQ(Call(PMemClose), 3);
  EXPECT_EQ(PMemRead, nullptr);
  EXPECT_EQ(PMemSearch, nullptr);
}

TEST_F(PmemTest, EarlierLoaderErrorIsNotTakenForThisOne) {
  dlopen("/no/such/library.so", RTLD_LAZY);
  place.Put(whole);
  EXPECT_EQ(pmemLoad(), 0);
}

TEST_F(PmemTest, UnloadingAnswersThreeWhenTheLibraryWasClosed) {
  place.Put(whole);
  ASSERT_EQ(pmemLoad(), 0);
  void* const open = PMemOpen;
  EXPECT_EQ(pmemUnLoad(), 3);
  EXPECT_EQ(PMemOpen, open) << "unloading leaves the entry points alone";
  EXPECT_EQ(pmemUnLoad(), 0) << "closed already";
}

TEST_F(PmemTest, UnloadingAnswersZeroWhenThereIsNothingToClose) {
  EXPECT_EQ(pmemUnLoad(), 0);
  place.Put(whole);
  ASSERT_EQ(pmemLoad(), 0);
  EXPECT_EQ(pmemUnLoad(), 3);
  EXPECT_EQ(pmemUnLoad(), 0) << "closed once already";
  place.Put("text");
  EXPECT_EQ(pmemLoad(), 3);
  EXPECT_EQ(pmemUnLoad(), 0);
}

TEST_F(PmemTest, LibraryCanBeLoadedAgain) {
  place.Put(whole);
  ASSERT_EQ(pmemLoad(), 0);
  ASSERT_EQ(pmemUnLoad(), 3);
  ASSERT_EQ(pmemLoad(), 0);
  EXPECT_EQ(Call(PMemSearch), 5);
}
