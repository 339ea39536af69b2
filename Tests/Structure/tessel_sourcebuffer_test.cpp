#include "TesselPage/Structure/tessel_sourcebuffer.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <random>
#include <sstream>
#include <thread>

namespace {

using TESSEL::SourceStream;
using TESSEL::SpanBuffer;
using BeyondEnd = SpanBuffer::BeyondEnd;

std::string pathOf(const std::string& name) { return testing::TempDir() + "tessel_sourcebuffer_" + name; }

std::string writeFile(const std::string& name, const std::string& bytes) {
  std::ofstream(pathOf(name), std::ios::binary) << bytes;
  return pathOf(name);
}

TEST(SpanBuffer, ReadsTheWholeText) {
  SpanBuffer buffer("one two");
  std::istream in(&buffer);
  std::string first, second;
  in >> first >> second;
  EXPECT_EQ(first, "one");
  EXPECT_EQ(second, "two");
  EXPECT_EQ(in.rdstate(), std::ios::eofbit);
}

TEST(SpanBuffer, GivesItsTextWhereverItStands) {
  SpanBuffer buffer("abc", BeyondEnd::allow);
  std::istream in(&buffer);
  in.seekg(10);
  EXPECT_EQ(buffer.text(), "abc");
}

TEST(SpanBuffer, AMemoryTextRefusesASeekBehindItsEnd) {
  SpanBuffer buffer("abc");
  std::istream in(&buffer);
  EXPECT_TRUE(in.seekg(3));
  EXPECT_FALSE(in.seekg(4));
  EXPECT_EQ(in.rdstate(), std::ios::failbit);
}

TEST(SpanBuffer, AFileStandsBehindItsEndAndReadsNothing) {
  SpanBuffer buffer("abc", BeyondEnd::allow);
  std::istream in(&buffer);
  in.seekg(10);
  EXPECT_EQ(in.tellg(), 10);
  EXPECT_EQ(in.get(), EOF);
  EXPECT_EQ(in.rdstate(), std::ios::eofbit | std::ios::failbit);
  in.clear();
  EXPECT_EQ(in.tellg(), 10);
  EXPECT_EQ(in.seekg(-8, std::ios::cur).get(), 'c');
}

TEST(SpanBuffer, NothingCanBePutBackBehindTheEndOfAFile) {
  SpanBuffer buffer("abc", BeyondEnd::allow);
  std::istream in(&buffer);
  in.seekg(4);
  EXPECT_FALSE(in.putback('c'));
}

TEST(SpanBuffer, ANegativePlaceFailsInBothRules) {
  for (const BeyondEnd rule : {BeyondEnd::refuse, BeyondEnd::allow}) {
    SpanBuffer buffer("abc", rule);
    std::istream in(&buffer);
    EXPECT_FALSE(in.seekg(-1));
    in.clear();
    EXPECT_FALSE(in.seekg(-4, std::ios::end));
  }
}

TEST(SpanBuffer, ASeekThatOverflowsFails) {
  SpanBuffer buffer("abc", BeyondEnd::allow);
  std::istream in(&buffer);
  in.seekg(2);
  EXPECT_FALSE(in.seekg(std::numeric_limits<std::streamoff>::max(), std::ios::cur));
}

TEST(SpanBuffer, TheByteReadLastCanBePutBackAndAnotherCannot) {
  SpanBuffer buffer("abc");
  std::istream in(&buffer);
  EXPECT_FALSE(in.putback('a'));
  in.clear();
  in.get();
  in.putback('a');
  EXPECT_EQ(in.get(), 'a');
  EXPECT_FALSE(in.putback('x'));
}

/// One random walk over two streams of the same bytes; both must give the same at each step.
void expectSameWalk(std::istream& ours, std::istream& theirs, unsigned seed) {
  std::mt19937 random(seed);
  const std::ios::seekdir bases[] = {std::ios::beg, std::ios::cur, std::ios::end};
  for (int step = 0; step < 200; ++step) {
    const auto action = random() % 6;
    const auto offset = static_cast<std::streamoff>(random() % 25) - 12;
    const std::ios::seekdir base = bases[random() % 3];
    const auto act = [&](std::istream& in) -> std::string {
      char bytes[4] = {};
      if (action == 0) in.seekg(offset, base);
      if (action == 1) in.get(bytes[0]);
      if (action == 2) in.read(bytes, 3);
      if (action == 3 && in.get(bytes[0])) in.putback(bytes[0]);
      if (action == 4) return std::to_string(in.tellg());
      if (action == 5) in.clear();
      return std::string(bytes, 4) + std::to_string(in.gcount());
    };
    EXPECT_EQ(act(ours), act(theirs)) << "seed " << seed << " step " << step << " action " << action;
    ASSERT_EQ(ours.rdstate(), theirs.rdstate())
        << "seed " << seed << " step " << step << " action " << action;
  }
}

TEST(SpanBuffer, AMemoryTextWalksLikeAStringBuffer) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    SpanBuffer buffer("0123456\n");
    std::istream ours(&buffer);
    std::istringstream theirs("0123456\n");
    expectSameWalk(ours, theirs, seed);
  }
}

TEST(SpanBuffer, AFileWalksLikeAFileBuffer) {
  const std::string path = writeFile("walk", "0123456\n");
  for (unsigned seed = 0; seed < 200; ++seed) {
    SourceStream ours(path.c_str());
    std::ifstream theirs(path, std::ios::binary);
    expectSameWalk(ours, theirs, seed);
  }
}

TEST(SourceStream, ReadsAFile) {
  SourceStream in(writeFile("plain", std::string("a\0b", 3)).c_str());
  std::string bytes(3, ' ');
  EXPECT_TRUE(in.read(bytes.data(), 3));
  EXPECT_EQ(bytes, std::string("a\0b", 3));
}

TEST(SourceStream, AnEmptyFileIsOpenAndAtItsEnd) {
  SourceStream in(writeFile("empty", "").c_str());
  EXPECT_TRUE(in.good());
  EXPECT_EQ(in.get(), EOF);
}

TEST(SourceStream, AMissingFileSetsTheFailBitAndNothingElse) {
  SourceStream in(pathOf("that_is_not_there").c_str());
  EXPECT_EQ(in.rdstate(), std::ios::failbit);
}

TEST(SourceStream, ADirectoryCantBeOpened) {
  SourceStream in(testing::TempDir().c_str());
  EXPECT_EQ(in.rdstate(), std::ios::failbit);
}

TEST(SourceStream, APipeIsReadToItsEnd) {
  const std::string path = pathOf("pipe");
  std::remove(path.c_str());
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(path) << std::string(100000, 'x') << "end"; });
  SourceStream in(path.c_str());
  writer.join();
  in.seekg(100000);
  std::string word;
  in >> word;
  EXPECT_EQ(word, "end");
}

TEST(SourceStream, WhatWasLetGoIsThereWhenItIsLookedAtAgain) {
  const std::string bytes = "one two" + std::string(100000, 'x');
  for (const bool mapped : {true, false}) {
    SourceStream file(writeFile("released", bytes).c_str());
    SpanBuffer memory(bytes);
    std::istream in(mapped ? file.rdbuf() : &memory);
    std::string word;
    in >> word;
    bool found = false;
    const std::string_view text = TESSEL::spanOf(in.rdbuf(), found);
    TESSEL::releaseMapped(in.rdbuf());
    EXPECT_EQ(text, bytes);
    in >> word;
    EXPECT_EQ(word, bytes.substr(4));
  }
  TESSEL::releaseMapped(nullptr);
}

TEST(SpanOf, FindsTheTextOfItsOwnBuffersOnly) {
  bool found = false;
  SpanBuffer buffer("abc");
  EXPECT_EQ(TESSEL::spanOf(&buffer, found), "abc");
  EXPECT_TRUE(found);
  std::stringbuf other("abc");
  EXPECT_EQ(TESSEL::spanOf(&other, found), "");
  EXPECT_FALSE(found);
}

}  // namespace
