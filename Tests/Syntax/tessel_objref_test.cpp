#include "TesselPage/Syntax/tessel_objref.h"

#include <gtest/gtest.h>

#include <string>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Syntax/tessel_token.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Syntax/byte_streams.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

/// What a try gives: the reference, or nothing; the state, the place and what is left.
std::string attempt(CSourFile& source) {
  SObj ref(77, 77);
  const bool found = tryReference(source, ref);
  std::string result = found ? std::to_string(ref.objNum) + ' ' + std::to_string(ref.genNum) + " R" : "none";
  result += source.good() ? " good at " : " bad at ";
  result += std::to_string(source.tellg());
  return result + ':' + rest(source);
}

/// The same by the stream's own reads.
std::string literalAttempt(std::istream& in) {
  const auto start = in.tellg();
  int num = 0;
  int gen = 0;
  char word = 0;
  const bool found = (in >> num >> gen >> word) && word == 'R';
  if (!found) {
    in.clear();
    in.seekg(start);
  }
  std::string result = found ? std::to_string(num) + ' ' + std::to_string(gen) + " R" : "none";
  result += in.good() ? " good at " : " bad at ";
  result += std::to_string(in.tellg());
  return result + ':' + rest(in);
}

void expectAsTheStream(const std::string& text) {
  std::istringstream literal(text);
  const std::string expected = literalAttempt(literal);
  CSourFile memory(text);
  EXPECT_EQ(attempt(memory), expected) << '"' << text << '"';
  ByteBuffer buffer(text);
  std::istream in(&buffer);
  CSourFile streamed(in);
  EXPECT_EQ(attempt(streamed), expected) << '"' << text << "\" byte by byte";
}

std::string attempted(const std::string& text) {
  CSourFile source(text);
  return attempt(source);
}

}  // namespace

TEST(Reference, IsTwoIntegersAndTheWordR) {
  EXPECT_EQ(attempted("12 0 R/A"), "12 0 R good at 6:/A");
  EXPECT_EQ(attempted(" \r\n12\n5\tR "), "12 5 R good at 9: ");
  EXPECT_EQ(attempted("1 0RG"), "1 0 R good at 4:G");
  EXPECT_EQ(attempted("1+2R"), "1 2 R good at 4:");
}

TEST(Reference, AnythingElseLeavesPlaceAndState) {
  EXPECT_EQ(attempted(" 12 0 obj"), "none good at 0: 12 0 obj");
  EXPECT_EQ(attempted(" /A 1 0 R"), "none good at 0: /A 1 0 R");
  EXPECT_EQ(attempted("1.5 0 R"), "none good at 0:1.5 0 R");
  EXPECT_EQ(attempted("  "), "none good at 0:  ");
  EXPECT_EQ(attempted("12 0"), "none good at 0:12 0");
  EXPECT_EQ(attempted(""), "none good at 0:");
}

TEST(Reference, NumberOutOfRangeIsNone) {
  EXPECT_EQ(attempted("2147483647 0 R "), "2147483647 0 R good at 14: ");
  EXPECT_EQ(attempted("2147483648 0 R "), "none good at 0:2147483648 0 R ");
}

TEST(Reference, AgreesWithTheStreamOnAllSmallTexts) { forEachText(" 1-R/.", 6, expectAsTheStream); }

TEST(Reference, AgreesWithTheStreamOnAFailedStream) {
  for (const auto state : {std::ios_base::eofbit, std::ios_base::failbit}) {
    CSourFile own(std::string("1 0 R "));
    std::istringstream literal("1 0 R ");
    own.setstate(state);
    literal.setstate(state);
    EXPECT_EQ(attempt(own), literalAttempt(literal));
  }
}

TEST(Reference, KeepsWhatItFound) {
  CSourFile source(std::string("12 3 R x"));
  CObjRef reference;
  EXPECT_TRUE(reference.fromStream(source));
  EXPECT_TRUE(reference.found);
  EXPECT_EQ(reference.objRef, SObj(12, 3));
  EXPECT_FALSE(reference.Read(source));
  EXPECT_FALSE(reference.found);
}

TEST(Reference, IsWrittenWithABlankBehind) {
  CSourFile source{std::string()};
  CObjRef reference;
  reference.objRef = SObj(12, 3);
  CDestFile dest;
  EXPECT_TRUE(reference.Write(dest, source));
  EXPECT_EQ(dest, "12 3 R ");
}
