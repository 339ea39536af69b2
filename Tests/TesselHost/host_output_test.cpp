#include "TesselHost/host_output.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
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

class OutputFileTest : public testing::TestWithParam<OutputFile::Temporary> {
 protected:
  void SetUp() override {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '.');
    directory = fs::path(testing::TempDir()) / name;
    fs::remove_all(directory);
    fs::create_directories(directory);
    target = (directory / "out.pdf").string();
  }
  void TearDown() override { fs::remove_all(directory); }

  fs::path directory;
  std::string target;
};

TEST_P(OutputFileTest, IsThereAfterCommit) {
  OutputFile file(target, GetParam());
  file.write("abc");
  file.write("def");
  EXPECT_FALSE(fs::exists(target));
  file.commit();
  EXPECT_EQ(contentOf(target), "abcdef");
  EXPECT_EQ(filesIn(directory), 1U);
}

TEST_P(OutputFileTest, LeavesNothingWithoutCommit) {
  { OutputFile(target, GetParam()).write("abc"); }
  EXPECT_EQ(filesIn(directory), 0U);
}

TEST(UnnamedTemporary, IsNotInTheDirectory) {
  const fs::path directory = fs::path(testing::TempDir()) / "unnamed";
  fs::create_directories(directory);
  OutputFile file((directory / "out.pdf").string());
  file.write("abc");
  file.flush();
  EXPECT_EQ(filesIn(directory), 0U);
  fs::remove_all(directory);
}

TEST_P(OutputFileTest, GetsTheUsualPermissions) {
  const mode_t before = umask(027);
  OutputFile file(target, GetParam());
  file.commit();
  umask(before);
  EXPECT_EQ(fs::status(target).permissions(), static_cast<fs::perms>(0640));
}

TEST_P(OutputFileTest, KeepsTheOldFileUntilCommit) {
  put(target, "old");
  { OutputFile(target, GetParam()).write("new"); }
  EXPECT_EQ(contentOf(target), "old");
  OutputFile file(target, GetParam());
  file.write("new");
  file.commit();
  EXPECT_EQ(contentOf(target), "new");
}

TEST_P(OutputFileTest, KeepsPermissionsAndLinks) {
  put(target, "old");
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  const fs::path link = directory / "link.pdf";
  fs::create_symlink(target, link);
  OutputFile file(link.string(), GetParam());
  file.write("new");
  file.commit();
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(contentOf(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_P(OutputFileTest, TakesMoreThanItsBufferHolds) {
  OutputFile file(target, GetParam());
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

TEST_P(OutputFileTest, SaysWhyItCanNotBeMade) {
  const std::string nowhere = (directory / "missing" / "out.pdf").string();
  try {
    OutputFile file(nowhere, GetParam());
    FAIL() << "made a file in a directory that isn't there";
  } catch (const OutputError& failure) {
    EXPECT_EQ(failure.what(), nowhere + ": can't be written: No such file or directory");
  }
}

TEST_P(OutputFileTest, ReportsAFullDevice) {
  OutputFile file("/dev/full", GetParam());
  file.write("abc");
  EXPECT_THROW(file.commit(), OutputError);
}

TEST_P(OutputFileTest, WritesToADeviceAsItIs) {
  OutputFile file("/dev/null", GetParam());
  file.write("abc");
  file.commit();
  struct stat status {};
  ASSERT_EQ(stat("/dev/null", &status), 0);
  EXPECT_TRUE(S_ISCHR(status.st_mode));
}

TEST_P(OutputFileTest, KnowsOneFileByTwoNames) {
  put(target, "x");
  const std::string other = (directory / "." / "out.pdf").string();
  EXPECT_TRUE(isSameFile(target, other));
  EXPECT_FALSE(isSameFile(target, (directory / "missing.pdf").string()));
}

INSTANTIATE_TEST_SUITE_P(Temporaries, OutputFileTest,
                         testing::Values(OutputFile::Temporary::unnamed, OutputFile::Temporary::named),
                         [](const auto& row) {
                           return row.param == OutputFile::Temporary::named ? "Named" : "Unnamed";
                         });

}  // namespace
}  // namespace TesselHost
