// What the security queries tell of dictionaries that are incomplete, or written in another order.

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>

#include "TesselPage/Security/tessel_encrypt.h"
#include "TesselPage/tessel_page.h"
#include "Tests/Interface/probed_page.h"
#include "Tests/Interface/secret_page.h"
#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

/// A source with this encryption dictionary in object 9.
OpenPage openWith(const std::string& dictionary, const std::string& password = {}) {
  return pdf().onePage("").object(9, dictionary).trailer("/Encrypt 9 0 R/ID[(a)(b)]").openPage(password);
}

struct Security {
  PASSWORD_TYPE type = passwordOfTwo;
  int permissions = 77;
};

Security securityOf(const OpenPage& open) {
  Security security;
  EXPECT_EQ(open->getSecurity(security.type, security.permissions), 0);
  return security;
}

struct TypeCase {
  const char* dictionary;
  std::string password;
  int state;
  PASSWORD_TYPE type;
};

// The states that no password leads to: 1 it can't be tried, 8 none is needed.
TEST(SecurityEdges, StatesWithoutATestHaveTheirTypesToo) {
  const std::string long33(33, 'p');
  const TypeCase rows[] = {
      {"<</Filter/Adobe.PubSec/V 2/R 3/P -8>>", "x", 1, passwordRestricted},
      {"<</Filter/Adobe.PPKLite/V 2/R 3/P -8>>", "x", 1, passwordRestricted},
      {"<</Filter/Entrust.PPKEF/V 2/R 3/P -8>>", "", 1, passwordRestricted},
      {"<</Filter/Standard/V 2/R 3/P -8/O(o)/U(u)>>", long33, 1, passwordRestricted},
      {"<</Filter/Standard/V 2/P -8/O(o)/U(u)>>", "x", 8, passwordUnrestricted},     // no revision: no search
      {"<</Filter/Standard/V 2/P -8/O(o)/U(u)>>", long33, 8, passwordUnrestricted},  // before the length
      {"<</Filter/Foo/V 2/R 3/P -8>>", "x", 8, passwordUnrestricted},
      {"<</Filter/Standard/V 2/R 3/P -8/O(o)/U(u)>>", "x", 5, passwordRestricted},
  };
  for (const TypeCase& row : rows) {
    const OpenPage open = openWith(row.dictionary, row.password);
    EXPECT_EQ(open.result, 0) << row.dictionary;
    EXPECT_EQ(open->SetSourcePassword(), row.state) << row.dictionary;
    const Security security = securityOf(open);
    EXPECT_EQ(security.type, row.type) << row.dictionary;
    EXPECT_EQ(security.permissions, -8) << row.dictionary;
  }
}

/// A page whose content is of one block, which decryption would take for a vector without data.
std::string withAttachmentsEncrypted() {
  return pdf()
      .onePage("/Contents 4 0 R")
      .stream(4, "", "0 0 10 10 re f  ")
      .object(9,
              "<</Filter/Standard/V 5/R 6/Length 256/P -4/O(o)/U(u)/OE(o)/UE(u)/Perms(p)"
              "/CF<</StdCF<</CFM/AESV3>>>>/EFF/StdCF/StmF/Identity/StrF/Identity>>")
      .trailer("/Encrypt 9 0 R/ID[(a)(b)]")
      .build();
}

std::string contentOf(CTesselPage& page) {
  const std::string* content = nullptr;
  EXPECT_EQ(page.setPageNo(1), 0);
  EXPECT_EQ(page.getPageContents(&content), 0);
  return *content;
}

TEST(SecurityEdges, IdentityFiltersCountForHostsThatAskForIt) {
  std::istringstream file(withAttachmentsEncrypted());
  CTesselPage page(file, "");
  page.heedIdentityFilters();
  EXPECT_EQ(page.init(), 0);
  EXPECT_EQ(page.getPasswordState(), 6);
  EXPECT_EQ(page.SetSourcePassword(), 5);
  EXPECT_EQ(contentOf(page), "\r\n0 0 10 10 re f  \n\r");
}

TEST(SecurityEdges, IdentityFiltersArePassedOverOtherwise) {
  const OpenPage open = PdfBuilder::openPageBytes(withAttachmentsEncrypted());
  EXPECT_EQ(open.result, 0);
  EXPECT_EQ(open->getPasswordState(), 5);
  EXPECT_EQ(contentOf(*open.page), "\r\n\n\r");
}

struct PermissionsCase {
  const char* entries;
  int permissions;
};

// The text is searched for "/P" wherever it stands, and the number is taken for a signed one.
TEST(SecurityEdges, PermissionsAreReadFromTheText) {
  constexpr PermissionsCase rows[] = {
      {"/P -8/R 3", -8},
      {"/R 3/P -8", -8},
      {"/P\n-8 /Perms(x)/R 3", -8},
      {"/P 2147483647/R 3", 2147483647},
      {"/P 4294967292/R 3", 2147483647},
      {"/Perms(x)/P -8/R 3", 0},
      {"/R 3", -4},
  };
  for (const PermissionsCase& row : rows) {
    const OpenPage open = openWith(std::string("<</Filter/Standard/V 2/O(o)/U(u)") + row.entries + ">>");
    EXPECT_EQ(securityOf(open).permissions, row.permissions) << row.entries;
  }
}

TEST(SecurityEdges, EncryptStringIsTheDictionaryAsItStands) {
  const std::string entry = "\x01\xff\\(\\)\\\\ sixteen and more";
  const std::string text =
      "<</Filter /Standard /V 2/R 3 /P -8/O(" + entry + ")/U<0102fF>/X 3 0 R/Length 128>>";
  EXPECT_EQ(openWith(text)->getEncryptString(),
            "<</Filter /Standard /V 2/R 3 /P -8/O(" + entry + ")/U<0102ff>/Length 128>>\nendobj\n");
}

TEST(SecurityEdges, AZeroByteEndsThePassword) {
  OpenPage open = PdfBuilder::openPageBytes(protectedPdf(plainFile(), allProtections[1], {"use", "own"}));
  EXPECT_EQ(open->SetSourcePassword(std::string("use\0x", 5)), 4);
  EXPECT_EQ(open->SetSourcePassword(std::string("own\0", 4)), 3);
  EXPECT_TRUE(readsPlain(*open));
}

TEST(SecurityEdges, AShorterPasswordLeavesNothingOfTheOneBefore) {
  OpenPage open = PdfBuilder::openPageBytes(protectedPdf(plainFile(), allProtections[1], {"use", "own"}));
  EXPECT_EQ(open->SetSourcePassword("owner of all"), 5);
  EXPECT_EQ(open->SetSourcePassword("own"), 3);
}

// The form without an argument is a query in name: it leaves the key of the password at hand behind.
TEST(SecurityEdges, TheKeyThatAPasswordLeadsToIsKept) {
  const Probe open = probeBytes(protectedPdf(plainFile(), allProtections[3], {"use", "own"}),
                                "a longer password that is wrong");
  const CEncrypt& record = open->state->sourFile->fileInfo.encrypt;
  for (const char* password : {"own", "use"}) {
    open->state->password = "x";
    EXPECT_EQ(open->SetSourcePassword(), 5);
    const std::string wrong = record.fileKey.first(16);
    open->state->password = password;
    EXPECT_EQ(open->SetSourcePassword(), *password == 'u' ? 4 : 3);
    EXPECT_EQ(record.passwordText(), password);
    EXPECT_NE(record.fileKey.first(16), wrong);
    EXPECT_TRUE(readsPlain(*open)) << password;
  }
}

struct StateCase {
  const char *user, *owner, *given;
  int told;
  int known;
};

// The state that is told leaves such an identifier out of its test; the file opens nevertheless.
TEST(SecurityEdges, AnIdentifierBehindAZeroByteSpoilsTheStateAndNotTheSource) {
  const std::string whole = plainFile();
  const std::string digits = "<3031";
  std::string plain = whole;
  plain.replace(plain.find(digits), digits.size(), "<0031");
  constexpr StateCase rows[] = {{"use", "own", "use", 5, 4}, {"use", "own", "own", 5, 3},
                                {"use", "own", "x", 5, 5},   {"", "own", "own", 6, 2},
                                {"", "own", "x", 6, 6},      {"a", "a", "a", 5, 7}};
  for (const Protection& protection : {allProtections[1], allProtections[2], allProtections[3]}) {
    for (const StateCase& row : rows) {
      const std::string bytes = protectedPdf(plain, protection, {row.user, row.owner});
      OpenPage open = PdfBuilder::openPageBytes(bytes, row.given);
      EXPECT_EQ(open->SetSourcePassword(), row.told) << row.given;
      EXPECT_EQ(open->getPasswordState(), row.known) << row.given;
      EXPECT_EQ(readsPlain(*open), row.known != 5) << row.given;
    }
  }
}

TEST(SecurityEdges, PasswordStateIsElsewhereTheOneThatIsTold) {
  constexpr StateCase rows[] = {{"use", "own", "use", 4, 4}, {"use", "own", "own", 3, 3},
                                {"use", "own", "x", 5, 5},   {"", "own", "own", 2, 2},
                                {"", "own", "x", 6, 6},      {"a", "a", "a", 7, 7}};
  for (const Protection& protection : allProtections) {
    for (const StateCase& row : rows) {
      const std::string bytes = protectedPdf(plainFile(), protection, {row.user, row.owner});
      const OpenPage open = PdfBuilder::openPageBytes(bytes, row.given);
      EXPECT_EQ(open->getPasswordState(), row.known) << protection << ' ' << row.given;
    }
  }
  EXPECT_EQ(PdfBuilder::openPageBytes(plainFile())->getPasswordState(), Result::notProtected);
  EXPECT_EQ(openWith("<</Filter/Adobe.PubSec/V 2/R 3>>")->getPasswordState(), Result::passwordNotTried);
}

TEST(SecurityEdges, PasswordStateOfAnotherPasswordLeavesTheSourceOpen) {
  constexpr StateCase rows[] = {{"use", "own", "use", 4, 4},
                                {"use", "own", "own", 3, 3},
                                {"use", "own", "x", 5, 5},
                                {"use", "own", "", 5, 5}};
  for (const Protection& protection : allProtections) {
    const std::string bytes = protectedPdf(plainFile(), protection, {"use", "own"});
    for (const char* atHand : {"use", "own"}) {
      OpenPage open = PdfBuilder::openPageBytes(bytes, atHand);
      const int before = open->getPasswordState();
      for (const StateCase& row : rows) EXPECT_EQ(open->getPasswordState(row.given), row.known) << protection;
      EXPECT_EQ(open->getPasswordState(), before) << protection;
      EXPECT_TRUE(readsPlain(*open)) << protection;
    }
    EXPECT_EQ(PdfBuilder::openPageBytes(bytes, "x")->getPasswordState("own"), 3) << protection;
  }
}

TEST(SecurityEdges, PasswordStateOfAnotherPasswordCountsAsManyBytesAsTheSourceTakes) {
  const std::string user(127, 'u');
  for (const Protection& protection : allProtections) {
    const OpenPage open = PdfBuilder::openPageBytes(protectedPdf(plainFile(), protection, {user, "own"}));
    EXPECT_EQ(open->getPasswordState(user + "more"), 4) << protection;
    EXPECT_EQ(open->getPasswordState(user.substr(0, 32)), protection.revision < 5 ? 4 : 5) << protection;
  }
}

TEST(SecurityEdges, PasswordStateOfAnotherPasswordKnowsWhereNoneIsTried) {
  EXPECT_EQ(PdfBuilder::openPageBytes(plainFile())->getPasswordState("x"), Result::notProtected);
  EXPECT_EQ(openWith("<</Filter/Adobe.PubSec/V 2/R 3>>")->getPasswordState("x"), Result::passwordNotTried);
}

struct FingerprintCase {
  std::size_t size;
  const char* digest;
};

// The bytes are read in blocks of 4096; these are two whole ones, and two and a part.
TEST(SecurityEdges, FileKeyTakesEveryBlock) {
  constexpr FingerprintCase rows[] = {{8192, "97913f0faec4cf434cc275b1ab7b367e"},
                                      {10000, "ae78a3c9e02ee3099e3c57dbf5ab4351"}};
  for (const FingerprintCase& row : rows) {
    const std::string head = "%PDF-1.7\n";
    OpenPage open = PdfBuilder::openPageBytes(head + std::string(row.size - head.size(), 'x'));
    open.stream->clear();
    open.stream->seekg(5000);
    const SFileKey key = open->getFileKey();
    EXPECT_STREQ(key.digest, row.digest);
    EXPECT_EQ(key.fileSize, row.size);
    EXPECT_EQ(open.stream->tellg(), 5000);
  }
}

TEST(SecurityEdges, FileInfoTellsTheRecordAndNotTheHeader) {
  SFileInfo info;
  EXPECT_EQ(openWith("<</Filter/Standard/V 2/R 3/P 4294967292/O(o)/U(u)>>")->GetSourceFileInfo(info), 1);
  EXPECT_EQ(info.permissions, -4);
  EXPECT_TRUE(info.ownerAccess);
  EXPECT_STREQ(info.version, "PDF-1.3");
}

// The key of the output.

TEST(SecurityEdges, ARefusedOutputKeyChangesNothingOfTheFormerOne) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  const unsigned char former[] = "0123456789abcdef";
  const unsigned char refused[] = "................................";
  EXPECT_EQ(open->setEncryptKey(former, 16, 4), 0);
  for (const int length : {-1, 0, 4, 33}) EXPECT_EQ(open->setEncryptKey(refused, length, 5), 8003) << length;
  CEncrypt record;
  open->getEncryptInfo(record);
  EXPECT_EQ(record.fileKey.first(17), std::string("0123456789abcdef\0", 17));
  EXPECT_EQ(record.keyLength, 128);
  EXPECT_EQ(record.method, 2);
  EXPECT_EQ(record.R, 4);
}

TEST(SecurityEdges, BothBoundsOfAnOutputKeyCountAsGood) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  const unsigned char key[33] = {};
  EXPECT_EQ(open->setEncryptKey(key, 5, 2), 0);
  EXPECT_EQ(open->setEncryptKey(key, 32, 5), 0);
}

TEST(SecurityEdges, WithoutAnOutputKeyTheVersionOfTheRecordStays) {
  OpenPage open = PdfBuilder::openPageBytes(plainFile());
  CEncrypt record;
  record.V = 2;
  record.R = 3;
  record.method = 2;
  record.keyLength = 40;
  open->getEncryptInfo(record);
  EXPECT_EQ(record.V, 2);
  EXPECT_EQ(record.R, 0);
  EXPECT_EQ(record.method, 0);
  EXPECT_EQ(record.keyLength, 0);
}

}  // namespace
