#include "TesselPage/Interface/tessel_outputkey.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "PDFEncryption/encryptionmanager.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/tessel_page.h"
#include "Tests/Interface/secret_page.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

struct KeyCase {
  int length;
  int revision;
  int kind;
};

TEST(OutputKey, KindFollowsFromLengthAndRevision) {
  constexpr KeyCase rows[] = {{5, 2, 1},  {16, 3, 1}, {16, 4, 2}, {16, 5, 1},
                              {32, 5, 3}, {32, 4, 1}, {32, 6, 1}, {24, 4, 1}};
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  const std::string key(32, 'k');
  for (const KeyCase& row : rows) {
    EXPECT_EQ(
        open->setEncryptKey(reinterpret_cast<const unsigned char*>(key.data()), row.length, row.revision), 0);
    CEncrypt record;
    open->getEncryptInfo(record);
    EXPECT_EQ(record.method, row.kind) << row.length << ' ' << row.revision;
    EXPECT_EQ(record.keyLength, 8 * row.length);
    EXPECT_EQ(record.R, row.revision);
    EXPECT_EQ(record.V, 4);
    EXPECT_EQ(record.fileKey.first(record.keyBytes()), key.substr(0, record.keyBytes()));
    EXPECT_TRUE(record.activeForWriting());
  }
}

TEST(OutputKey, OfAWrongLengthKeepsTheFormerOne) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  const unsigned char key[40] = {1, 2, 3};
  EXPECT_EQ(open->setEncryptKey(key, 5, 2), 0);
  for (const int length : {4, 33, 0, -1}) EXPECT_EQ(open->setEncryptKey(key, length, 4), 8003) << length;
  CEncrypt record;
  open->getEncryptInfo(record);
  EXPECT_EQ(record.keyLength, 40);
  EXPECT_EQ(record.R, 2);
}

TEST(OutputKey, WithoutOneNothingIsEncrypted) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  CEncrypt record;
  open->getEncryptInfo(record);
  EXPECT_FALSE(record.activeForWriting());
  EXPECT_EQ(record.V, 0);
  EXPECT_TRUE(readsPlain(*open));
}

/// How a host encrypts its file.
struct OutputKind {
  const char* name;
  int revision;
  int version;
  int keyLength;    ///< bits
  int keyRevision;  ///< as setEncryptKey takes it
  int method;
};
std::ostream& operator<<(std::ostream& out, const OutputKind& kind) { return out << kind.name; }

constexpr OutputKind outputKinds[] = {{"RC40", 2, 1, 40, 2, 1},
                                      {"RC128", 3, 2, 128, 3, 1},
                                      {"AES128", 4, 4, 128, 4, 2},
                                      {"AES256", 6, 5, 256, 5, 3}};

pcrypt::EncryptInfo makeSecurity(const OutputKind& kind) {
  pcrypt::EncryptOption option;
  option.userPassword = "use";
  option.ownerPassword = "own";
  option.keyLength = kind.keyLength;
  pcrypt::EncryptInfo info;
  info.R = kind.revision;
  info.V = kind.version;
  info.keyLength = kind.keyLength;
  info.method = kind.method;
  info.fileIdentifier = "0123456789abcdef";
  const pcrypt::PDFEncryptionManager maker;
  if (info.R < 5) maker.calculateOKey(option, info);
  maker.createKey(info, option.userPassword);
  maker.calculateUKey(option, info);
  if (info.R >= 5) maker.calculateOKey(option, info);
  maker.calculatePerms(option, info);
  return info;
}

std::string dictionaryOf(const pcrypt::EncryptInfo& info) {
  std::string text = "<</Filter/Standard/P -4/R " + std::to_string(info.R) + "/V " + std::to_string(info.V) +
                     "/Length " + std::to_string(info.keyLength) + "/O<" + toHex(info.O) + ">/U<" +
                     toHex(info.U) + ">";
  if (info.V >= 5)
    text += "/OE<" + toHex(info.OE) + ">/UE<" + toHex(info.UE) + ">/Perms<" + toHex(info.Perms) + ">";
  if (info.V >= 4)
    text += std::string("/CF<</StdCF<</AuthEvent/DocOpen/CFM/AESV") + (info.V == 4 ? "2" : "3") + "/Length " +
            std::to_string(info.keyLength / 8) + ">>>>/StmF/StdCF/StrF/StdCF";
  return text + ">>";
}

void setKey(CTesselPage& page, const pcrypt::EncryptInfo& info, const OutputKind& kind) {
  EXPECT_EQ(page.setEncryptKey(reinterpret_cast<const unsigned char*>(info.fileKey.data()),
                               static_cast<int>(info.fileKey.size()), kind.keyRevision),
            0);
}

class OutputOfKind : public testing::TestWithParam<OutputKind> {
 protected:
  /// A file that a host makes of a source's only page, its resources in page 3 of the output.
  std::string placed(const std::string& source, const std::string& password) {
    const pcrypt::EncryptInfo info = makeSecurity(GetParam());
    OpenPage open = PdfBuilder::openPageBytes(source, password);
    setKey(*open, info, GetParam());
    EXPECT_EQ(open->setPageNo(1), 0);
    open->setStartObjNo(10);
    const std::string* contents = nullptr;
    const std::string* resources = nullptr;
    EXPECT_EQ(open->getPageContents(&contents), 0);
    EXPECT_EQ(open->getPageRes(&resources, 3), 0);
    PdfBuilder builder;
    builder.onePage("/MediaBox[0 0 200 200]/Contents 4 0 R/Resources " + *resources);
    builder.stream(4, "", encryptedFor(4, info, *contents));
    for (const auto& [object, text] : *open)
      if (!text.empty()) builder.object(object, text);
    builder.object(5, dictionaryOf(info));
    builder.trailer("/Encrypt 5 0 R/ID[<" + toHex(info.fileIdentifier) + "><" + toHex(info.fileIdentifier) +
                    ">]");
    return builder.build();
  }
  static std::string encryptedFor(int number, const pcrypt::EncryptInfo& info, std::string data) {
    CEncrypt record;
    resaveEncryptInfo(info, record);
    const SObj object(number, 0);
    encryptString(record, &object, data);
    return data;
  }
};

TEST_P(OutputOfKind, IsReadByOthersAndByUs) {
  const std::string output = placed(plainFile(), "");
  EXPECT_EQ(output.find("secret"), output.npos);
  EXPECT_EQ(output.find("direct text"), output.npos);
  EXPECT_EQ(output.find(fontData), output.npos);
  for (const char* password : {"use", "own"}) {
    const std::string decrypted = decryptedByQpdf(output, password);
    EXPECT_TRUE(opens(decrypted, "")) << password;
    EXPECT_TRUE(opens(output, password)) << password;
  }
  EXPECT_EQ(decryptedByQpdf(output, "x"), "");
  EXPECT_FALSE(opens(output, "x"));
}

TEST_P(OutputOfKind, TakesAProtectedSourceOfEachRevision) {
  for (const Protection& protection : allProtections) {
    const std::string source = protectedPdf(plainFile(), protection, {"a", "b"}, Layout::objectStreams);
    const std::string decrypted = decryptedByQpdf(placed(source, "a"), "use");
    EXPECT_TRUE(opens(decrypted, "")) << protection;
  }
}

TEST_P(OutputOfKind, GettersEncryptForTheObjectThatTheyAreToldOrNotAtAll) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  setKey(*open, makeSecurity(GetParam()), GetParam());
  open->setPageNo(1);
  open->setStartObjNo(10);
  EXPECT_TRUE(holdsString(open->getPageRootString(0), "direct text"));
  EXPECT_FALSE(holdsString(open->getPageRootString(3), "direct text"));
  const std::string* contents = nullptr;
  open->getPageContents(&contents);
  EXPECT_TRUE(contents->starts_with("\r\n" + content));
}

TEST_P(OutputOfKind, DigestsAreThoseOfThePlainTexts) {
  OpenPage plain = PdfBuilder::openPageBytes(plainFile());
  plain->setPageNo(1);
  plain->setStartObjNo(10);
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  setKey(*open, makeSecurity(GetParam()), GetParam());
  open->setPageNo(1);
  open->setStartObjNo(10);
  int streams = 0;
  for (const auto& [object, text] : *plain) {
    std::string digest;
    if (!CTesselPage::isStreamObj(text, digest)) continue;
    ++streams;
    EXPECT_EQ(open->getStreamDigest(object), digest);
  }
  EXPECT_EQ(streams, 1);
}

TEST_P(OutputOfKind, EqualStreamsOfTwoSourcesAreShared) {
  const pcrypt::EncryptInfo info = makeSecurity(GetParam());
  CTesselPage::StreamObjMap digests;
  OpenPage first = PdfBuilder::openPageBytes(plainFile());
  OpenPage second = PdfBuilder::openPageBytes(plainFile());
  for (OpenPage* open : {&first, &second}) {
    setKey(**open, info, GetParam());
    (*open)->setPageNo(1);
    (*open)->setStreamObjMap(&digests);
    (*open)->setStartObjNo(open == &first ? 10 : 50);
    for (const auto& [object, text] : **open)
      if (const std::string digest = (*open)->getStreamDigest(object); !digest.empty())
        digests.emplace(digest, object);
  }
  EXPECT_EQ(digests.size(), 1U);
  EXPECT_NE(allTexts(*first).find("stream"), std::string::npos);
  EXPECT_EQ(allTexts(*second).find("stream"), std::string::npos);
}

std::string kindName(const testing::TestParamInfo<OutputKind>& row) { return row.param.name; }

INSTANTIATE_TEST_SUITE_P(AllKinds, OutputOfKind, testing::ValuesIn(outputKinds), kindName);

TEST(OutputKey, StringsBehindRCAndDSStayInTheClearInACatalog) {
  OpenPage open = pdf().onePage("", "/RC(rich)/DS<7374796c65>/Lang(en)").openPage();
  setKey(*open, makeSecurity(outputKinds[1]), outputKinds[1]);
  const std::string text = open->getRootString(7);
  EXPECT_NE(text.find("/RC(rich)"), text.npos);
  EXPECT_NE(text.find("/DS<7374796c65>"), text.npos);
  EXPECT_EQ(text.find("(en)"), text.npos);
  EXPECT_NE(open->getRootString(0).find("/Lang(en)"), text.npos);
}

std::string harvestedWithSeed(unsigned seed) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  setKey(*open, makeSecurity(outputKinds[2]), outputKinds[2]);
  open->setPageNo(1);
  std::srand(seed);
  open->setStartObjNo(10);
  return allTexts(*open);
}

TEST(OutputKey, InitialVectorsComeFromTheSystemOnceAHostAsksForThat) {
  EXPECT_EQ(harvestedWithSeed(7), harvestedWithSeed(7));
  pcrypt::PDFEncryptionManager::useSystemRandom(true);
  EXPECT_NE(harvestedWithSeed(7), harvestedWithSeed(7));
  pcrypt::PDFEncryptionManager::useSystemRandom(false);
}

// Lengths of AES streams.

class StreamLengths : public testing::Test {
 protected:
  void SetUp() override { open = PdfBuilder::openPageBytes(plainFile()); }
  std::string& text(int number) { return (*open)[{number, 0}]; }

  OpenPage open;
};

TEST_F(StreamLengths, AreRoundedUpToBlocks) {
  text(5) = "<</Length 33 >>stream\n" + std::string(33, 'x') + "\nendstream";
  text(6) = "<</Length 32>>stream\n" + std::string(32, 'x') + "\nendstream";
  text(7) = "<</Length 0>>stream\r\n\nendstream";
  text(8) = "<</Type/Font>>";
  roundStreamLengths(*open);
  EXPECT_TRUE(text(5).starts_with("<</Length 48  >>stream"));
  EXPECT_TRUE(text(6).starts_with("<</Length 32 >>stream"));
  EXPECT_TRUE(text(7).starts_with("<</Length 0>>stream"));
  EXPECT_EQ(text(8), "<</Type/Font>>");
}

TEST_F(StreamLengths, AreRoundedInAnObjectOfTheirOwn) {
  text(5) = "<</Length 9 0 R>>stream\n" + std::string(33, 'x') + "\nendstream";
  text(9) = "33 ";
  roundStreamLengths(*open);
  EXPECT_EQ(text(9), "48 ");
  EXPECT_TRUE(text(5).starts_with("<</Length 9 0 R>>"));
}

TEST_F(StreamLengths, OfAStreamWithoutOneStayMissing) {
  text(5) = "<<>>stream\n" + std::string(33, 'x') + "\nendstream";
  const std::string before = text(5);
  roundStreamLengths(*open);
  EXPECT_EQ(text(5), before);
}

TEST_F(StreamLengths, OfTheEmptyFormThatStandsInForAnObjectStays) {
  setKey(*open, makeSecurity(outputKinds[2]), outputKinds[2]);
  text(5) = EMPTY_FORM_TEXT;
  exemptStrings(*open, open->find({5, 0}));
  roundStreamLengths(*open);
  EXPECT_EQ(text(5),
            "<</Type/XObject /Subtype/Form /Length 0 /BBox[0.0 0.0 1.0 1.0] >>\r\nstream\r\nendstream\r\n");
}

TEST_F(StreamLengths, CiphertextThatEndsLikeALineEndCountsWhole) {
  text(5) = "<</Length 32>>stream\r\n" + std::string(30, 'x') + "\r\n\nendstream";
  roundStreamLengths(*open);
  EXPECT_TRUE(text(5).starts_with("<</Length 32 >>"));
}

}  // namespace
