#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "TesselPage/tessel_page.h"
#include "Tests/Interface/secret_page.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

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

// The text of a dictionary whose nested /Length is no number breaks off.
TEST(SourceSecurity, APasswordIsTriedAlsoBehindADictionaryThatBreaksOff) {
  OpenPage open = pdf()
                      .onePage("")
                      .object(9, "<</Filter/Standard/V 1/R 2/P -8/CF<</StdCF<</Length/CFM/V2>>>>>>")
                      .trailer("/Encrypt 9 0 R")
                      .openPage("x");
  EXPECT_EQ(open.result, 0);
  EXPECT_EQ(open->getEncryptString(), "");
  EXPECT_EQ(tryPassword(*open, "y"), 5);
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

}  // namespace
