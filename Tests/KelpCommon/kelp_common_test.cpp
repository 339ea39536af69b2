#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "KelpCommon/kelp_md5.h"
#include "KelpCommon/kelp_memstream.h"
#include "KelpCommon/kelp_name.h"

namespace {

using namespace KelpCommonNS;

std::string hexDigest(MD5_CTX& context) {
  unsigned char digest[MD5_CTX::digestSize];
  context.Final(digest);
  std::string hex;
  for (const unsigned char byte : digest)
    for (const int half : {byte >> 4, byte & 15}) hex += "0123456789abcdef"[half];
  return hex;
}

TEST(Md5Context, DigestOfNothing) {
  MD5_CTX context;
  EXPECT_EQ(hexDigest(context), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(Md5Context, DigestOfAMessage) {
  MD5_CTX context;
  context.Update("message digest", 14);
  EXPECT_EQ(hexDigest(context), "f96b697d7cb7938d525a2f31aaf161d0");
}

TEST(Md5Context, PiecesOfAnySizeGiveTheSameDigest) {
  const std::string text = "12345678901234567890123456789012345678901234567890123456789012345678901234567890";
  for (std::size_t size = 1; size <= text.size(); ++size) {
    MD5_CTX context;
    for (std::size_t i = 0; i < text.size(); i += size)
      context.Update(text.data() + i, std::min(size, text.size() - i));
    EXPECT_EQ(hexDigest(context), "57edf4a22be3c955ac49da2e2107b67a") << size;
  }
}

TEST(MemStream, ReadsWhatWasWrittenFromItsPlaceOn) {
  KelpMemStream stream;
  stream.write("abc", 3);
  char bytes[2] = {};
  EXPECT_EQ(stream.read(bytes, 2), 2U);
  EXPECT_EQ(std::string(bytes, 2), "ab");
  stream.write("de", 2);
  EXPECT_EQ(stream.rest(), "cde");
  EXPECT_EQ(stream.size(), 5U);
}

TEST(MemStream, ReadAtTheEndGivesNothingUntilRewound) {
  KelpMemStream stream("xy");
  char bytes[4] = {};
  EXPECT_EQ(stream.read(bytes, 4), 2U);
  EXPECT_EQ(stream.read(bytes, 4), 0U);
  stream.rewind();
  EXPECT_EQ(stream.rest(), "xy");
}

TEST(NameTable, EqualNamesAreOneString) {
  const std::string built = std::string("r") + "df";
  EXPECT_STREQ(KelpNameTable::getSharedNameString(built), "rdf");
  EXPECT_EQ(KelpNameTable::getSharedNameString(built), KelpNameTable::getSharedNameString("rdf"));
}

TEST(NameTable, NameOutsideTheTableHasNoSharedString) {
  EXPECT_EQ(KelpNameTable::getSharedNameString("Rdf"), nullptr);
  EXPECT_EQ(KelpNameTable::getSharedNameString(""), nullptr);
}

TEST(Name, ComparesByPrefixAndLocalName) {
  const char* const rdf = KelpNameTable::getSharedNameString("rdf");
  const char* const description = KelpNameTable::getSharedNameString("Description");
  EXPECT_TRUE(KelpName("rdf", "Description", "u").is(rdf, description));
  EXPECT_FALSE(KelpName("rdf", "RDF", "u").is(rdf, description));
  EXPECT_FALSE(KelpName("", "Description", "u").is(rdf, description));
}

TEST(Name, NamesOutsideTheTableEqualNone) { EXPECT_FALSE(KelpName("odd", "names", "").is(nullptr, nullptr)); }

}  // namespace
