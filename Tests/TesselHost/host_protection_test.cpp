#include "TesselHost/host_protection.h"

#include <gmock/gmock.h>
#include <sched.h>

#include <algorithm>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_objects.h"
#include "Tests/Support/protected_pdf.h"

namespace TesselHost {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string id = "0123456789abcdef";

struct KindCase {
  const char* name;
  const char* dictionary;  ///< how it begins
  std::size_t dataSize;    ///< of 10 bytes encrypted
  PdfVersion version;
};
std::ostream& operator<<(std::ostream& out, const KindCase& kind) { return out << kind.name; }

class ProtectionKind : public testing::TestWithParam<KindCase> {
 protected:
  static OutputProtection make(const std::string& user, const std::string& owner) {
    return OutputProtection({*parseCipher(GetParam().name), user, owner, {}, false}, id);
  }
};

TEST_P(ProtectionKind, HasItsDictionaryAndVersion) {
  const OutputProtection protection = make("use", "own");
  EXPECT_THAT(protection.dictionary(), testing::StartsWith(GetParam().dictionary));
  EXPECT_EQ(protection.version(), GetParam().version);
}

TEST_P(ProtectionKind, EncryptsAndDecryptsStrings) {
  const OutputProtection protection = make("use", "own");
  const std::string text = "<</A<736563726574>/B 1>>";
  const std::string sealed = protection.withStringsEncrypted(7, text);
  EXPECT_THAT(sealed, Not(HasSubstr("736563726574")));
  EXPECT_EQ(protection.withStringsDecrypted(7, sealed), text);
}

TEST_P(ProtectionKind, EncryptsData) {
  const OutputProtection protection = make("use", "own");
  EXPECT_EQ(protection.encrypted(7, "0123456789").size(), GetParam().dataSize);
  EXPECT_NE(protection.encrypted(7, "0123456789"), "0123456789");
}

/// A file of one page with a string and a stream, as the writer writes it.
std::string fileUnder(const OutputProtection& protection, bool objectStreams) {
  MemorySink sink;
  ObjectWriter writer(sink, {{2, 0}, objectStreams, &protection});
  writer.writeBody({1, 0}, "<</Type/Catalog/Pages 2 0 R>>");
  writer.writeBody({2, 0}, "<</Type/Pages/Kids[3 0 R]/Count 1>>");
  writer.writeBody({3, 0}, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R/Words(secret word)>>");
  writer.writeStream(4, "/Words(secret word)", "q Q % secret");
  writer.writeHarvested({5, 0}, protection.withStringsEncrypted(5, "[(secret word)]"));
  writer.writeBody({6, 0}, "<</Title(secret word)>>");
  writer.finish({1, 6, id});
  return sink.text;
}

TEST_P(ProtectionKind, WritesAFileThatBothPasswordsOpenAndNoOther) {
  const OutputProtection protection = make("use", "own");
  for (const bool objectStreams : {false, true}) {
    const std::string file = fileUnder(protection, objectStreams);
    EXPECT_THAT(file, Not(HasSubstr("secret")));
    for (const char* password : {"use", "own"}) {
      const std::string plain = tessel_test::decryptedByQpdf(file, password);
      EXPECT_THAT(plain, HasSubstr("q Q % secret"));
      EXPECT_THAT(plain, HasSubstr("/Words (secret word)"));
    }
    for (const char* password : {"", "x"}) EXPECT_EQ(tessel_test::decryptedByQpdf(file, password), "");
  }
}

TEST_P(ProtectionKind, EncryptsStringsOfObjectsForTheObject) {
  const std::string file = fileUnder(make("use", "own"), false);
  const std::string plain = tessel_test::decryptedByQpdf(file, "use");
  EXPECT_THAT(plain, HasSubstr("/Title (secret word)"));
}

TEST_P(ProtectionKind, CutsLongPasswordsWhereReadersCutThem) {
  const OutputProtection protection = make(std::string(200, 'u'), std::string(200, 'o'));
  const std::string file = fileUnder(protection, false);
  for (const char letter : {'u', 'o'})
    EXPECT_NE(tessel_test::decryptedByQpdf(file, std::string(127, letter)), "");
}

TEST_P(ProtectionKind, OpensForItsUserAloneWhereThereIsNoOwnerPassword) {
  const std::string file = fileUnder(make("use", ""), false);
  EXPECT_THAT(tessel_test::decryptedByQpdf(file, "use"), HasSubstr("/Words (secret word)"));
  EXPECT_EQ(tessel_test::decryptedByQpdf(file, ""), "");
}

TEST_P(ProtectionKind, DrawsAnOwnerEntryWhereThereIsNoPassword) {
  const std::string entry = "/O";
  const OutputProtection one = make("use", "");
  const OutputProtection two = make("use", "");
  EXPECT_NE(valueOfKey(one.dictionary(), entry), valueOfKey(two.dictionary(), entry));
}

INSTANTIATE_TEST_SUITE_P(
    All, ProtectionKind,
    testing::Values(KindCase{"rc4-40", "<</Filter/Standard/V 1/R 2/Length 40/P -4/O<", 10, {1, 1}},
                    KindCase{"rc4-128", "<</Filter/Standard/V 2/R 3/Length 128/P -4/O<", 10, {1, 4}},
                    KindCase{"aes-128", "<</Filter/Standard/V 4/R 4/Length 128/P -4/O<", 32, {1, 6}},
                    KindCase{"aes-256", "<</Filter/Standard/V 5/R 6/Length 256/P -4/O<", 32, {2, 0}}),
    [](const auto& row) {
      std::string name = row.param.name;
      std::replace(name.begin(), name.end(), '-', '_');
      return name;
    });

TEST(OutputProtection, KnowsItsCiphersByName) {
  EXPECT_EQ(parseCipher("aes-192"), std::nullopt);
  EXPECT_EQ(parseCipher("aes-256"), Cipher::aes256);
}

TEST(OutputProtection, TellsWhenMetadataStaysInTheClear) {
  const OutputProtection clear({Cipher::aes256, "use", "own", {}, true}, id);
  EXPECT_EQ(valueOfKey(clear.dictionary(), "/EncryptMetadata"), "false");
  EXPECT_EQ(valueOfKey(clear.dictionary(), "/CF"), "<</StdCF<</CFM/AESV3/AuthEvent/DocOpen/Length 32>>>>");
}

TEST(OutputProtection, TakesAnotherKeyForEachFileOfAes256) {
  const OutputProtection one({Cipher::aes256, "use", "own", {}, false}, id);
  const OutputProtection two({Cipher::aes256, "use", "own", {}, false}, id);
  for (const char* entry : {"/O", "/U", "/OE", "/UE", "/Perms"})
    EXPECT_NE(valueOfKey(one.dictionary(), entry), valueOfKey(two.dictionary(), entry)) << entry;
}

TEST(OutputProtection, LeavesTheCallersProcessorsAlone) {
  cpu_set_t before, after;
  ASSERT_EQ(sched_getaffinity(0, sizeof before, &before), 0);
  (void)OutputProtection({Cipher::aes256, "use", "own", {}, false}, id).dictionary();
  ASSERT_EQ(sched_getaffinity(0, sizeof after, &after), 0);
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST(RandomIdentifier, HasSixteenBytesOfItsOwn) {
  EXPECT_EQ(randomIdentifier().size(), 16U);
  EXPECT_NE(randomIdentifier(), randomIdentifier());
}

}  // namespace
}  // namespace TesselHost
