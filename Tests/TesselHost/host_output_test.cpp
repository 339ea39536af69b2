#include "TesselHost/host_output.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "TesselHost/host_error.h"

namespace TesselHost {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void put(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::size_t filesIn(const fs::path& directory) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), fs::directory_iterator()));
}

class OutputFileTest : public testing::Test {
 protected:
  void SetUp() override {
    directory = fs::path(testing::TempDir()) / testing::UnitTest::GetInstance()->current_test_info()->name();
    fs::remove_all(directory);
    fs::create_directories(directory);
    target = (directory / "out.pdf").string();
  }
  void TearDown() override { fs::remove_all(directory); }

  fs::path directory;
  std::string target;
};

TEST_F(OutputFileTest, IsThereAfterCommit) {
  OutputFile file(target);
  file.write("abc");
  file.write("def");
  EXPECT_FALSE(fs::exists(target));
  file.commit();
  EXPECT_EQ(contentOf(target), "abcdef");
  EXPECT_EQ(filesIn(directory), 1U);
}

TEST_F(OutputFileTest, LeavesNothingWithoutCommit) {
  { OutputFile(target).write("abc"); }
  EXPECT_EQ(filesIn(directory), 0U);
}

TEST_F(OutputFileTest, KeepsTheOldFileUntilCommit) {
  put(target, "old");
  { OutputFile(target).write("new"); }
  EXPECT_EQ(contentOf(target), "old");
  OutputFile file(target);
  file.write("new");
  file.commit();
  EXPECT_EQ(contentOf(target), "new");
}

TEST_F(OutputFileTest, KeepsPermissionsAndLinks) {
  put(target, "old");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  const fs::path link = directory / "link.pdf";
  fs::create_symlink(target, link);
  OutputFile file(link.string());
  file.write("new");
  file.commit();
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(contentOf(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(OutputFileTest, TakesMoreThanItsBufferHolds) {
  OutputFile file(target);
  std::string expected;
  for (int i = 0; i < 5; ++i) {
    const std::string small(100'000, static_cast<char>('a' + i));
    const std::string large(400'000, static_cast<char>('A' + i));
    file.write(small);
    file.write(large);
    expected += small + large;
  }
  file.commit();
  EXPECT_EQ(contentOf(target), expected);
}

TEST_F(OutputFileTest, SaysWhyItCanNotBeMade) {
  const std::string nowhere = (directory / "missing" / "out.pdf").string();
  try {
    OutputFile file(nowhere);
    FAIL() << "made a file in a directory that isn't there";
  } catch (const OutputError& failure) {
    EXPECT_EQ(failure.what(), nowhere + ": can't be written: No such file or directory");
  }
}

TEST_F(OutputFileTest, ReportsAFullDevice) {
  OutputFile file("/dev/full");
  file.write("abc");
  EXPECT_THROW(file.commit(), OutputError);
}

TEST_F(OutputFileTest, WritesToADeviceAsItIs) {
  OutputFile file("/dev/null");
  file.write("abc");
  file.commit();
  struct stat status {};
  ASSERT_EQ(stat("/dev/null", &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_F(OutputFileTest, KnowsOneFileByTwoNames) {
  put(target, "x");
  const std::string other = (directory / "." / "out.pdf").string();
  EXPECT_TRUE(isSameFile(target, other));
  EXPECT_FALSE(isSameFile(target, (directory / "missing.pdf").string()));
}

}  // namespace
}  // namespace TesselHost
