#include "TesselPage/Syntax/tessel_stream.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

struct BodyCase {
  int length;        ///< as /Length tells it
  std::string text;  ///< from behind the word "stream"
  std::string body;
  std::string left;
};

struct ReadBody {
  bool result = false;
  int length = 0;
  std::string body;
  std::string left;
};

ReadBody readBody(CSourFile& source, int length) {
  CStreamType stream(SObj(1, 0));
  stream.length = length;
  ReadBody read;
  read.result = stream.Read(source);
  read.length = stream.length;
  read.body = stream.data();
  read.left = rest(source);
  EXPECT_TRUE((source.flags() & std::ios_base::skipws) != 0);
  return read;
}

void expectBody(const ReadBody& read, const BodyCase& row, bool result) {
  EXPECT_EQ(read.result, result) << row.text;
  EXPECT_EQ(read.body, row.body) << row.text;
  EXPECT_EQ(read.length, static_cast<int>(row.body.size())) << row.text;
  if (result) {
    EXPECT_EQ(read.left, row.left) << row.text;
  }
}

/// The same from bytes in memory and from a stream that shows one byte at a time.
void expectRead(const BodyCase& row, bool result = true) {
  CSourFile memory(row.text);
  expectBody(readBody(memory, row.length), row, result);
  ByteBuffer buffer(row.text);
  std::istream in(&buffer);
  CSourFile streamed(in);
  expectBody(readBody(streamed, row.length), row, result);
}

/// A stream that holds `data`.
void fill(CStreamType& stream, const std::string& data) { stream.addStr(data, false); }

}  // namespace

TEST(StreamBody, IsTakenByItsLength) {
  expectRead({5, "\nhello\nendstream x", "hello", "\nendstream x"});
  expectRead({5, "\r\nhello\r\nendstream x", "hello", "\r\nendstream x"});
  expectRead({5, "\rhelloendstream x", "hello", "endstream x"});
  expectRead({6, "\n\nhello \t endstream\n", "\nhello", " \t endstream\n"});
  expectRead({0, "\nendstream ", "", "endstream "});
  expectRead({16, "\na endstream b cd\nendstream ", "a endstream b cd", "\nendstream "});
}

TEST(StreamBody, LongerLengthIsCutBeforeEndstreamWithTheByteInFront) {
  expectRead({20, "\nhello\nendstream endobj 2 0 obj", "hello", "\nendstream endobj 2 0 obj"});
  expectRead({15, "\nhelloendstream endobj", "hell", "oendstream endobj"});
}

TEST(StreamBody, LongerLengthCutsAtTheLastEndstreamWithinIt) {
  expectRead(
      {30, "\na\nendstream b\nendstream cccccccccccccc", "a\nendstream b", "\nendstream cccccccccccccc"});
}

TEST(StreamBody, EmptyBodyOfALongerLengthLosesNothing) {
  expectRead({12, "\nendstream endobj", "", "endstream endobj"});
}

TEST(StreamBody, LengthThatEndsWithinTheEndWordIsCutThere) {
  expectRead({8, "\nhello\nendstream endobj", "hello\n", "endstream endobj"});
}

TEST(StreamBody, LengthPastTheEndOfTheFileIsCut) {
  expectRead({2000000000, "\nhello\nendstream endobj", "hello", "\nendstream endobj"});
}

TEST(StreamBody, ShorterLengthIsExtendedToEndstream) {
  expectRead({2, "\nhello\nendstream x", "hello\n", "endstream x"});
  expectRead({0, "\nhello world\nendstream x", "hello world\n", "endstream x"});
  expectRead({-7, "\nhello\nendstream x", "hello\n", "endstream x"});
}

TEST(StreamBody, ShorterLengthFindsAnEndWordFarBehind) {
  const std::string data(5000, 'x');
  expectRead({3, "\n" + data + " endstream x", data + " ", "endstream x"});
}

TEST(StreamBody, ShorterLengthFindsTheEndWordWhereverABlockEnds) {
  for (std::size_t n = 1000; n < 1040; ++n) {
    const std::string data = "ab " + std::string(n, 'x');
    expectRead({2, "\n" + data + "endstream x", data, "endstream x"});
  }
}

TEST(StreamBody, EndWordInTheTokenBehindTheLengthCounts) {
  expectRead({3, "\nabcdefendstream x", "abcdef", "endstream x"});
  expectRead({3, "\nabc\ndefendstream x", "abc\ndef", "endstream x"});
}

TEST(StreamBody, EndWordMayBeTheFilesLast) { expectRead({5, "\nhello\nendstream", "hello", "\nendstream"}); }

TEST(StreamBody, WithoutAnEndWordFailsWithWhatTheLengthTells) {
  expectRead({3, "\nhello\nend", "hel", ""}, false);
  expectRead({300, "\nhello\nend", "hello\nend", ""}, false);
}

TEST(StreamBody, MissingEndWordsAreSearchedForOnce) {
  constexpr std::size_t bodies = 40000;
  constexpr std::string_view body = "\nabc 1 0 obj stream";
  std::string file;
  for (std::size_t i = 0; i < bodies; ++i) file += body;
  CSourFile source(file);
  const auto start = std::chrono::steady_clock::now();
  for (std::size_t i = 0; i < bodies; ++i) {
    source.clear();
    source.seekg(static_cast<std::streamoff>(i * body.size()));
    CStreamType stream(SObj(1, 0));
    stream.length = 3;
    ASSERT_FALSE(stream.Read(source));
    ASSERT_EQ(source.noEndWordFrom, 4);
  }
  // A search of the file for each body takes more than ten times as long.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(StreamBody, EndWordInFrontOfAFailedSearchIsStillFound) {
  CSourFile source(std::string("\nabc\nendstream\nxyz\nendless"));
  source.seekg(15);
  EXPECT_FALSE(readBody(source, 1).result);
  source.clear();
  source.seekg(0);
  EXPECT_EQ(readBody(source, 1).body, "abc\n");
  source.clear();
  source.seekg(0);
  EXPECT_EQ(readBody(source, 9).body, "abc\n");
}

TEST(StreamBody, WithoutALineEndIsNotRead) {
  for (const bool memory : {true, false}) {
    std::istringstream in(" hello\nendstream x");
    CSourFile streamed(in);
    CSourFile mapped(in.str());
    const ReadBody read = readBody(memory ? mapped : streamed, 5);
    EXPECT_FALSE(read.result);
    EXPECT_EQ(read.body, "");
    EXPECT_EQ(read.length, 5);
    EXPECT_EQ(read.left, "hello\nendstream x");
  }
}

TEST(StreamBody, LeavesTheStreamGoodWhenOnlyTheLineEndIsMissing) {
  CSourFile source(std::string("x\nendstream"));
  CStreamType stream(SObj(1, 0));
  EXPECT_FALSE(stream.Read(source));
  EXPECT_TRUE(source.good());
}

TEST(StreamBody, IsAViewWhereTheSourceLiesInMemory) {
  CSourFile source(std::string("\nhello\nendstream "));
  CStreamType stream(SObj(1, 0));
  stream.length = 5;
  stream.Read(source);
  bool found = false;
  EXPECT_EQ(stream.data().data(), source.span(found).data() + 1);
}

TEST(WriteStream, PutsALineEndInFrontOfTheData) {
  CSourFile source{std::string()};
  CStreamType stream(SObj(1, 0));
  fill(stream, "data");
  CDestFile dest;
  dest.append("<<>>stream");
  EXPECT_TRUE(stream.Write(dest, source, 0, 0));
  EXPECT_EQ(dest, "<<>>stream\r\ndata");
}

TEST(WriteStream, FillsTheHoleWithTheTrueLength) {
  CSourFile source{std::string()};
  CStreamType stream(SObj(1, 0));
  fill(stream, "0123456789");
  CDestFile dest;
  dest.append("<</Length_____/A 1>>stream");
  stream.Write(dest, source, 9, 5);
  EXPECT_EQ(dest, "<</Length 10 /A 1>>stream\r\n0123456789");
}

TEST(WriteStream, FillsAHoleThatIsTooNarrow) {
  CSourFile source{std::string()};
  CStreamType stream(SObj(1, 0));
  fill(stream, "0123456789");
  CDestFile dest;
  dest.append("<</Length_/A 1>>stream");
  stream.Write(dest, source, 9, 1);
  EXPECT_EQ(dest, "<</Length 10 /A 1>>stream\r\n0123456789");
}

TEST(StreamData, GrowsAtEitherEnd) {
  CSourFile source(std::string("\nhello\nendstream "));
  CStreamType stream(SObj(1, 0));
  stream.length = 5;
  stream.Read(source);
  stream.addStr("a ", true);
  EXPECT_EQ(stream.data(), "a hello");
  stream.addStr(" b", false);
  EXPECT_EQ(stream.takeData(), "a hello b");
  EXPECT_EQ(stream.length, 9);
}

TEST(StreamLength, IsReadAndWrittenAsANumber) {
  CSourFile source(std::string(" 123 /A"));
  CLength stream;
  EXPECT_TRUE(stream.ReadLen(source));
  EXPECT_EQ(stream.length, 123);
  CDestFile dest;
  EXPECT_TRUE(stream.WriteLen(dest));
  EXPECT_EQ(dest, "123");
}
