#include "TesselHost/host_access.h"

#include <gtest/gtest.h>

#include <ostream>
#include <sstream>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"

namespace TesselHost {
namespace {

using tessel_test::protectedPdf;
using tessel_test::Protection;

/// A source in memory, opened with these passwords.
struct Opened {
  Opened(const std::string& bytes, const Passwords& passwords)
      : stream(bytes), reader(stream, firstOf(passwords)), opening(openReader(reader, passwords)) {}

  /// Whose password opened it; what kept it closed where none did.
  std::string by() const {
    return opening.result == 0 ? std::string(Access(reader).openerWord()) : opening.reason;
  }
  /// Its content can be read.
  bool reads() {
    const std::string* content = nullptr;
    return reader.setPageNo(1) == 0 && reader.getPageContents(&content) == 0 &&
           content->find("0 0 9 9 re f") != std::string::npos;
  }

  std::istringstream stream;
  TESSEL::CTesselPage reader;
  Opening opening;
};

std::string plainPdf(const std::string& identifier = "0123456789abcdef") {
  return tessel_test::pdf()
      .onePage("/MediaBox[0 0 9 9]/Contents 4 0 R")
      .stream(4, "", "0 0 9 9 re f")
      .trailer("/ID[(" + identifier + ")(1)]")
      .build();
}

constexpr const char* noneOpens = "none of the passwords opens it";

struct Row {
  Passwords passwords;
  std::string by;
};

class SeveralPasswords : public testing::TestWithParam<Protection> {
 protected:
  static std::string make(const std::string& user, const std::string& owner,
                          const std::string& options = {}) {
    return protectedPdf(plainPdf(), GetParam(), {user, owner}, tessel_test::Layout::classicTable, options);
  }

  static void expect(const std::string& bytes, const std::vector<Row>& rows) {
    for (const Row& row : rows) {
      Opened source(bytes, row.passwords);
      EXPECT_EQ(source.by(), row.by) << testing::PrintToString(row.passwords);
      const bool closed = row.by.find(' ') != std::string::npos;  // a reason has several words
      EXPECT_EQ(source.reads(), !closed) << testing::PrintToString(row.passwords);
    }
  }
};

TEST_P(SeveralPasswords, OpenForTheOwnerBeforeTheUserInWhateverOrder) {
  expect(make("use", "own"), {{{"use", "own"}, "owner"},
                              {{"own", "use"}, "owner"},
                              {{"x", "use", "y", "own"}, "owner"},
                              {{"x", "own", "use"}, "owner"},
                              {{"", "use", "own"}, "owner"}});
}

TEST_P(SeveralPasswords, OpenForTheUserWhereNoneIsTheOwners) {
  expect(make("use", "own"), {{{"use", "x"}, "user"},
                              {{"x", "use"}, "user"},
                              {{"x", "use", "y"}, "user"},
                              {{"", "use"}, "user"},
                              {{"use", "use"}, "user"}});
}

TEST_P(SeveralPasswords, ThatDoNotFitAreToldOfAsSuch) {
  expect(make("use", "own"), {{{"x", "y"}, noneOpens},
                              {{"", "x"}, noneOpens},
                              {{"", ""}, noneOpens},
                              {{"x", "us", "owner"}, noneOpens},
                              {{"x"}, "the password doesn't open it"},
                              {{""}, "it needs a password"},
                              {{}, "it needs a password"}});
}

TEST_P(SeveralPasswords, FindTheOwnerAlsoWhereTheEmptyPasswordOpens) {
  expect(make("", "own"), {{{"x", "own"}, "owner"},
                           {{"", "own"}, "owner"},
                           {{"own", "x"}, "owner"},
                           {{"x", "y"}, "none"},
                           {{"x", ""}, "none"}});
}

TEST_P(SeveralPasswords, FindThePasswordOfBoth) {
  expect(make("same", "same"), {{{"x", "same"}, "both"}, {{"same", "x"}, "both"}});
}

TEST_P(SeveralPasswords, AreTriedByAllBytesThatCount) {
  const std::string user(127, 'u');
  const std::string owner(127, 'o');
  expect(make(user, owner), {{{"x", user}, "user"},
                             {{user, "x"}, "user"},
                             {{user, owner}, "owner"},
                             {{"x", user, owner}, "owner"},
                             {{owner + "more", "x"}, "owner"},
                             {{std::string(127, 'x'), "y"}, noneOpens}});
}

TEST_P(SeveralPasswords, LeaveASourceThatNeedsNoneAlone) {
  expect(plainPdf(), {{{"x", "y"}, "none"}, {{"", "x"}, "none"}});
}

TEST_P(SeveralPasswords, LiftRestrictionsByTheOwnersAlone) {
  const std::string bytes = make("use", "own", GetParam().revision == 2 ? "--modify=n" : "--modify=none");
  const auto mayPlace = [&](const Passwords& passwords) {
    return Access(Opened(bytes, passwords).reader).mayPlace();
  };
  EXPECT_TRUE(mayPlace({"use", "own"}));
  EXPECT_TRUE(mayPlace({"own", "use"}));
  EXPECT_FALSE(mayPlace({"use", "x"}));
}

INSTANTIATE_TEST_SUITE_P(Revisions, SeveralPasswords, testing::ValuesIn(tessel_test::allProtections),
                         tessel_test::protectionName);

TEST(Opening, KeepsThePasswordThatWasFound) {
  const Protection& revision6 = tessel_test::allProtections[6];
  Opened source(protectedPdf(plainPdf(), revision6, {"use", "own"}), {"x", "use", "own"});
  EXPECT_EQ(source.reader.getPasswordState(), 3);
  EXPECT_EQ(source.reader.getPasswordState("x"), 5);
  EXPECT_EQ(source.reader.getPasswordState(), 3);
  EXPECT_TRUE(source.reads());
}

TEST(Opening, TriesAllPasswordsInPdfDocEncoding) {
  const Protection& revision3 = tessel_test::allProtections[1];
  const std::string bytes = protectedPdf(plainPdf(), revision3, {"\xA0uro", "p\xE4ss"});
  EXPECT_EQ(Opened(bytes, {"x", "€uro"}).by(), "user");
  EXPECT_EQ(Opened(bytes, {"€uro", "x"}).by(), "user");
  EXPECT_EQ(Opened(bytes, {"€uro", "päss"}).by(), "owner");
  EXPECT_EQ(Opened(bytes, {"pässe", "€ur"}).by(), noneOpens);
}

TEST_P(SeveralPasswords, AreTriedAsSaslPrepMakesThem) {
  const std::string inOne = GetParam().revision < 5 ? "\xE9" : "\xC3\xA9";  // e with an acute
  const std::string inTwo = "e\xCC\x81";
  const std::string bytes = make("u" + inOne, "o" + inOne);
  expect(bytes, {{{"u" + inTwo}, "user"},
                 {{"o" + inTwo}, "owner"},
                 {{"u" + inTwo, "o" + inTwo}, "owner"},
                 {{"x" + inTwo}, "the password doesn't open it"}});
}

TEST(Opening, FindsPasswordsBehindAnIdentifierThatBeginsWithAZeroByte) {
  for (const std::size_t kind : {1U, 2U, 3U}) {
    const std::string bytes =
        protectedPdf(plainPdf("\\000123456789abcde"), tessel_test::allProtections[kind], {"use", "own"});
    EXPECT_EQ(Opened(bytes, {"x", "use"}).by(), "user");
    EXPECT_EQ(Opened(bytes, {"use", "own"}).by(), "owner");
    EXPECT_EQ(Opened(bytes, {"x", "y"}).by(), noneOpens);
  }
}

TEST(Opening, TellsOfAnEncryptionWithoutPasswordsHoweverManyThereAre) {
  const std::string bytes = tessel_test::pdf()
                                .onePage("/MediaBox[0 0 9 9]")
                                .object(9, "<</Filter/Adobe.PubSec/V 2/R 3/P -8>>")
                                .trailer("/Encrypt 9 0 R")
                                .build();
  for (const Passwords& passwords : {Passwords{}, {"x"}, {"x", "y"}, {std::string(40, 'x'), "y"}})
    EXPECT_EQ(Opened(bytes, passwords).by(), "its encryption takes no password");
}

TEST(Opening, TellsWhatIsNoPdfHoweverManyPasswordsThereAre) {
  EXPECT_EQ(Opened("no PDF", {"x", "y"}).by(), "not a readable PDF");
}

}  // namespace
}  // namespace TesselHost
