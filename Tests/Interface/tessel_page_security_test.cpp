#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "PDFEncryption/encryptionmanager.h"
#include "TesselPage/Interface/tessel_outputkey.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/Security/tessel_encryptbridge.h"
#include "TesselPage/tessel_page.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

const std::string content = "0.25 g 10 10 80 80 re f";
const std::string fontData = "not much of a font";

/// A page whose content, strings and streams a wrong key would spoil.
std::string plainFile() {
  return pdf()
      .onePage(
          "/MediaBox[0 0 200 200]/Contents 4 0 R/Resources<</Properties<</M 5 0 R/D<</T(direct "
          "text)>>>>/Font<</F 6 0 R>>>>",
          "/Metadata 8 0 R")
      .stream(4, "", content)
      .object(5, "<</S(a secret text)/H<736563726574>>>")
      .stream(6, "/Subtype/Type1C", fontData)
      .object(7, "<</Title(the title)>>")
      .stream(8, "/Type/Metadata/Subtype/XML", "<xml/>")
      .trailer("/Info 7 0 R/ID[<30313233343536373839616263646566><31>]")
      .build();
}

std::string hexOf(const std::string& bytes) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const char c : bytes) {
    text += digits[static_cast<unsigned char>(c) >> 4];
    text += digits[static_cast<unsigned char>(c) & 15];
  }
  return text;
}

/// Whether a string of that value stands in the text, literal or hexadecimal.
bool holdsString(const std::string& text, const std::string& value) {
  return text.find('(' + value + ')') != text.npos || text.find('<' + hexOf(value) + '>') != text.npos;
}

std::string allTexts(const CTesselPage& page) {
  std::string all;
  for (const auto& [object, text] : page) all += text;
  return all;
}

/// Whether the page's content, strings and streams are as in the plain file.
bool readsPlain(CTesselPage& page) {
  const std::string* found = nullptr;
  if (page.setPageNo(1) != 0 || page.getPageContents(&found) != 0) return false;
  if (found->find(content) == std::string::npos) return false;
  page.setStartObjNo(10);
  const std::string texts = allTexts(page);
  return holdsString(texts, "a secret text") && holdsString(texts, "secret") &&
         texts.find(fontData) != std::string::npos && holdsString(page.getPageRootString(0), "direct text");
}

bool opens(const std::string& file, const std::string& password) {
  OpenPage open = PdfBuilder::openPageBytes(file, password);
  return open.result == 0 && readsPlain(*open);
}

/// As SetSourcePassword, with the thrown result below 0.
int tryPassword(CTesselPage& page, const std::string& password) {
  try {
    return page.SetSourcePassword(password);
  } catch (int thrown) {
    return -thrown;
  }
}

TEST(PlainFile, ReadsPlain) { EXPECT_TRUE(opens(plainFile(), "")); }

// Opening.

struct Opening {
  Protection protection;
  Layout layout = Layout::classicTable;
};
std::ostream& operator<<(std::ostream& out, const Opening& opening) { return out << opening.protection; }

class ProtectedSource : public testing::TestWithParam<Opening> {
 protected:
  std::string file(const Passwords& passwords) const {
    return protectedPdf(plainFile(), GetParam().protection, passwords, GetParam().layout);
  }
  bool sealed() const { return GetParam().protection.revision >= 5; }
};

TEST_P(ProtectedSource, OpensWithEachOfItsPasswordsAndNoOther) {
  const std::string bytes = file({"use", "own"});
  EXPECT_TRUE(opens(bytes, "use"));
  EXPECT_TRUE(opens(bytes, "own"));
  for (const char* wrong : {"", "us", "user", "Own", "x"}) EXPECT_FALSE(opens(bytes, wrong)) << wrong;
}

TEST_P(ProtectedSource, OpensWithAnythingWhenTheUserPasswordIsEmpty) {
  const std::string bytes = file({"", "own"});
  for (const char* any : {"", "own", "x"}) EXPECT_TRUE(opens(bytes, any)) << any;
}

TEST_P(ProtectedSource, OpensWithThePasswordThatIsBoth) {
  const std::string bytes = file({"same", "same"});
  EXPECT_TRUE(opens(bytes, "same"));
  EXPECT_FALSE(opens(bytes, ""));
}

TEST_P(ProtectedSource, AnEmptyOwnerPasswordStandsForTheUsersBelowRevision5AndForItselfFromThereOn) {
  const std::string bytes = file({"use", ""});
  EXPECT_TRUE(opens(bytes, "use"));
  EXPECT_EQ(opens(bytes, ""), sealed());
  EXPECT_FALSE(opens(bytes, "x"));
}

TEST_P(ProtectedSource, KeepsItsRecord) {
  const OpenPage open = PdfBuilder::openPageBytes(file({"", "own"}), "");
  const std::string text = open->getEncryptString();
  EXPECT_NE(text.find("/R " + std::to_string(GetParam().protection.revision)), text.npos);
  EXPECT_NE(text.find("/Filter /Standard"), text.npos);
}

/// SetSourceLongPassword, with the thrown result below 0.
int tryLongPassword(CTesselPage& page, const std::string& password) {
  try {
    return page.SetSourceLongPassword(password);
  } catch (int thrown) {
    return -thrown;
  }
}

// 32 bytes count up to revision 4, and a file may be made with more. From revision 5 on 127 do, which is more
// than the interface takes in its other operations.
TEST_P(ProtectedSource, OfLongPasswordsOpensByTheBytesThatCount) {
  const std::size_t made = sealed() ? 127 : 200;
  const std::string bytes = file({std::string(made, 'u'), std::string(made, 'o')});
  for (const std::size_t size : {127U, 200U})
    for (const char letter : {'u', 'o'}) {
      const std::string password(size, letter);
      EXPECT_EQ(opens(bytes, password), !sealed());
      OpenPage open = PdfBuilder::openPageBytes(bytes, "");
      EXPECT_EQ(tryLongPassword(*open, password), letter == 'u' ? 4 : 3) << size;
      EXPECT_TRUE(readsPlain(*open)) << size;
      PASSWORD_TYPE type{};
      int permissions = 0;
      open->getSecurity(type, permissions);
      EXPECT_EQ(type, passwordOfTwo);
    }
}

TEST_P(ProtectedSource, OfLongPasswordsOpensWithNoOther) {
  const std::string bytes = file({std::string(127, 'u'), std::string(127, 'o')});
  OpenPage open = PdfBuilder::openPageBytes(bytes, "");
  for (const std::size_t place : {0U, 31U}) {
    std::string password(127, 'u');
    password[place] = 'x';
    EXPECT_EQ(tryLongPassword(*open, password), 5) << place;
  }
  std::string password(127, 'u');
  password.back() = 'x';
  EXPECT_EQ(tryLongPassword(*open, password), sealed() ? 5 : 4);
}

struct StateCase {
  const char* user;
  const char* owner;
  const char* given;
  int state;
  PASSWORD_TYPE type;
};

constexpr StateCase states[] = {
    {"", "own", "own", 2, passwordUnrestricted}, {"use", "own", "own", 3, passwordOfTwo},
    {"use", "own", "use", 4, passwordOfTwo},     {"use", "own", "x", 5, passwordRestricted},
    {"", "own", "x", 6, passwordRestricted},     {"same", "same", "same", 7, passwordUnrestricted},
};

TEST_P(ProtectedSource, ReachesEveryState) {
  for (const StateCase& row : states) {
    OpenPage open = PdfBuilder::openPageBytes(file({row.user, row.owner}), row.given);
    EXPECT_EQ(open->SetSourcePassword(), row.state) << row.given;
    PASSWORD_TYPE type{};
    int permissions = 0;
    EXPECT_EQ(open->getSecurity(type, permissions), 0);
    EXPECT_EQ(type, row.type) << row.state;
    EXPECT_EQ(permissions, -4) << row.state;
    EXPECT_EQ(opens(file({row.user, row.owner}), row.given), row.state != 5) << row.state;
  }
}

TEST_P(ProtectedSource, OpensAnewWithTheRightPasswordAfterAWrongOne) {
  const std::string bytes = file({"use", "own"});
  const bool compressed = GetParam().layout == Layout::objectStreams;
  for (const char* password : {"use", "own"}) {
    OpenPage open = PdfBuilder::openPageBytes(bytes, "wrong");
    EXPECT_EQ(open.result, 0);
    EXPECT_EQ(open->getPageCount(), compressed ? 0 : 1);
    EXPECT_EQ(tryPassword(*open, password), *password == 'u' ? 4 : 3);
    EXPECT_EQ(open->getPageCount(), 1);
    EXPECT_TRUE(readsPlain(*open)) << password;
  }
}

TEST_P(ProtectedSource, ForgetsWhatAnotherKeyHadDecoded) {
  OpenPage open = PdfBuilder::openPageBytes(file({"use", "own"}), "wrong");
  EXPECT_EQ(tryPassword(*open, "alsowrong"), 5);
  open->setPageNo(1);
  EXPECT_EQ(tryPassword(*open, "own"), 3);
  open->setPageNo(2);
  EXPECT_TRUE(readsPlain(*open));
}

std::vector<Opening> allOpenings() {
  std::vector<Opening> rows;
  for (const Layout layout : {Layout::classicTable, Layout::objectStreams})
    for (const Protection& protection : allProtections) rows.push_back({protection, layout});
  return rows;
}

std::string openingName(const testing::TestParamInfo<Opening>& row) {
  const bool compressed = row.param.layout == Layout::objectStreams;
  return std::string(row.param.protection.name) + (compressed ? "ObjectStreams" : "ClassicTable");
}

INSTANTIATE_TEST_SUITE_P(AllRevisions, ProtectedSource, testing::ValuesIn(allOpenings()), openingName);

TEST(ProtectedCatalog, InAnObjectStreamBehindAWrongKeyCantBeWritten) {
  OpenPage open = pdf()
                      .compressed(9, 1, "<</Type/Catalog/Pages 2 0 R>>")
                      .compressed(9, 2, "<</Type/Pages/Kids[3 0 R]/Count 1>>")
                      .object(3, "<</Type/Page>>")
                      .object(8, "<</Filter/Standard/V 2/R 3/Length 128/P -4/O(o)/U(u)>>")
                      .trailer("/Encrypt 8 0 R/ID[(a)(b)]")
                      .openPage("x");
  EXPECT_EQ(open.result, Result::objectNotWritten);
  EXPECT_EQ(tryPassword(*open, "y"), -Result::objectNotWritten);
}

// Queries.

TEST(SourceSecurity, OfAPlainSourceIsUnrestricted) {
  const OpenPage open = PdfBuilder::openPageBytes(plainFile());
  PASSWORD_TYPE type = passwordRestricted;
  int permissions = 0;
  EXPECT_EQ(open->getSecurity(type, permissions), 0);
  EXPECT_EQ(type, 0);
  EXPECT_EQ(permissions, -4);
  EXPECT_EQ(open->getEncryptString(), "");
  EXPECT_EQ(open->SetSourcePassword(), Result::notProtected);
}

TEST(SourceSecurity, PermissionsAreThoseOfTheDictionary) {
  const std::string bytes = protectedPdf(plainFile(), allProtections[6], {"", "own"}, Layout::classicTable,
                                         "--print=none --modify=none --extract=n");
  const OpenPage open = PdfBuilder::openPageBytes(bytes);
  PASSWORD_TYPE type{};
  int permissions = 0;
  open->getSecurity(type, permissions);
  EXPECT_EQ(permissions, -4 - 4 - 8 - 16 - 32 - 256 - 1024 - 2048);
  SFileInfo info;
  EXPECT_EQ(open->GetSourceFileInfo(info), 1);
  EXPECT_EQ(info.permissions, permissions);
}

TEST(SourceSecurity, APasswordOfMoreThan32BytesIsNotTried) {
  OpenPage open = PdfBuilder::openPageBytes(protectedPdf(plainFile(), allProtections[3], {"", "own"}),
                                            std::string(40, 'p'));
  EXPECT_EQ(open.result, 0);
  EXPECT_EQ(open->SetSourcePassword(), Result::passwordNotTried);
  EXPECT_EQ(open->SetSourcePassword(std::string(33, 'p')), Result::passwordNotTried);
  PASSWORD_TYPE type{};
  int permissions = 0;
  open->getSecurity(type, permissions);
  EXPECT_EQ(type, passwordRestricted);
  EXPECT_TRUE(readsPlain(*open));
  EXPECT_EQ(open->SetSourcePassword(std::string(32, 'p')), 6);
}

TEST(SourceSecurity, AHandlerWithoutPasswordsIsNotTried) {
  OpenPage open = pdf()
                      .onePage("")
                      .object(9, "<</Filter/Adobe.PubSec/V 2/R 3/P -8>>")
                      .trailer("/Encrypt 9 0 R")
                      .openPage("x");
  EXPECT_EQ(open.result, 0);
  EXPECT_EQ(open->SetSourcePassword(), Result::passwordNotTried);
  PASSWORD_TYPE type{};
  int permissions = 0;
  open->getSecurity(type, permissions);
  EXPECT_EQ(type, passwordRestricted);
  EXPECT_EQ(permissions, -8);
}

TEST(SourceSecurity, AnUnknownHandlerNeedsNoPassword) {
  OpenPage open =
      pdf().onePage("").object(9, "<</Filter/Foo/V 2/R 3>>").trailer("/Encrypt 9 0 R").openPage("x");
  EXPECT_EQ(open.result, 0);
  EXPECT_EQ(open->SetSourcePassword(), Result::notProtected);
}

TEST(SourceSecurity, ADirectDictionaryOpensAndIsToldAsNone) {
  const std::string bytes = protectedPdf(plainFile(), allProtections[1], {"", "own"});
  const std::string reference = "/Encrypt ";
  const std::size_t key = bytes.rfind(reference);
  ASSERT_NE(key, bytes.npos);
  const OpenPage indirect = PdfBuilder::openPageBytes(bytes);
  std::string dictionary = indirect->getEncryptString();
  dictionary.resize(dictionary.rfind(">>") + 2);
  std::string direct = bytes;
  direct.replace(key + reference.size(), bytes.find('R', key) + 1 - key - reference.size(), dictionary);
  OpenPage open = PdfBuilder::openPageBytes(direct);
  EXPECT_EQ(open.result, 0);
  EXPECT_TRUE(readsPlain(*open));
  EXPECT_EQ(open->getEncryptString(), "");
  EXPECT_EQ(open->SetSourcePassword("own"), 2);
  open->setPageNo(0);
  EXPECT_EQ(open->getPageCount(), 1);
}

TEST(SourceSecurity, FileInfoTellsPagesFlagsAndVersion) {
  const OpenPage plain = PdfBuilder::openPageBytes(plainFile());
  SFileInfo info;
  EXPECT_EQ(plain->GetSourceFileInfo(info), 1);
  EXPECT_EQ(info.pageCount, 1);
  EXPECT_EQ(info.permissions, -1);
  EXPECT_FALSE(info.passwordNeed || info.ownerAccess);
  EXPECT_STREQ(info.version, "PDF-1.3");

  const OpenPage empty = PdfBuilder::openPageBytes(protectedPdf(plainFile(), allProtections[3], {"", "own"}));
  empty->GetSourceFileInfo(info);
  EXPECT_TRUE(info.passwordNeed);
  EXPECT_FALSE(info.ownerAccess);
  const OpenPage needed =
      PdfBuilder::openPageBytes(protectedPdf(plainFile(), allProtections[3], {"use", "own"}));
  needed->GetSourceFileInfo(info);
  EXPECT_FALSE(info.passwordNeed);
  EXPECT_TRUE(info.ownerAccess);
}

TEST(SourceSecurity, FileKeyIsTheDigestOfTheBytesAndKeepsThePosition) {
  OpenPage open = PdfBuilder::openPageBytes("%PDF-1.7\n");  // too short to open, and still known again
  open.stream->clear();
  open.stream->seekg(4);
  const SFileKey key = open->getFileKey();
  EXPECT_STREQ(key.digest, "b491de58ba84d5e12333a236add6ddb5");
  EXPECT_EQ(key.fileSize, 9U);
  EXPECT_EQ(key.pageCount, 0U);
  EXPECT_EQ(key.reserved, 0);
  EXPECT_TRUE(std::all_of(key.digest + 32, std::end(key.digest), [](char c) { return c == '\0'; }));
  EXPECT_EQ(open.stream->tellg(), 4);
}

TEST(SourceSecurity, FileKeyRunsBetweenTwoGetters) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  open->setPageNo(1);
  open->setStartObjNo(10);
  const SFileKey key = open->getFileKey();
  EXPECT_EQ(key.fileSize, plainFile().size());
  EXPECT_EQ(key.pageCount, 1U);
  EXPECT_EQ(std::strlen(key.digest), 32U);
  EXPECT_TRUE(readsPlain(*open));
}

// The key of the output.

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
                     "/Length " + std::to_string(info.keyLength) + "/O<" + hexOf(info.O) + ">/U<" +
                     hexOf(info.U) + ">";
  if (info.V >= 5)
    text += "/OE<" + hexOf(info.OE) + ">/UE<" + hexOf(info.UE) + ">/Perms<" + hexOf(info.Perms) + ">";
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
    builder.trailer("/Encrypt 5 0 R/ID[<" + hexOf(info.fileIdentifier) + "><" + hexOf(info.fileIdentifier) +
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
