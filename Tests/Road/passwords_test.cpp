// Several passwords for several protected inputs, on the whole road.

#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

using Words = std::vector<std::string>;

/// A page painted in a grey of its own.
std::string greyPage(const std::string& grey) {
  return pdf()
      .onePage("/MediaBox[0 0 100 100]/Contents 4 0 R")
      .stream(4, "", grey + " g 0 0 100 100 re f")
      .trailer("/ID[<30313233343536373839616263646566><31>]")
      .build();
}

class PasswordsBase : public RoadTest {
 protected:
  void protect(const std::string& name, const Protection& protection, const Passwords& passwords,
               const std::string& options = {}, Layout layout = Layout::classicTable) const {
    file(name, protectedPdf(greyPage(name == "a.pdf" ? "0" : "0.5"), protection, passwords, layout, options));
  }

  static Words joined(Words all, const Words& more) {
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
  /// `--password` for each.
  static Words options(const Words& passwords) {
    Words all;
    for (const std::string& password : passwords) all = joined(all, {"--password", password});
    return all;
  }

  Outcome place(const Words& inputs, const Words& passwords) const {
    return tessel(joined(joined({"nup", "-o", "out.pdf", "--grid", "1x1"}, options(passwords)), inputs));
  }
  /// What `info` says of who opened the file; "" when nobody could.
  std::string openedWith(const std::string& name, const Words& passwords) const {
    const Outcome outcome = tessel(joined({"info", "--json", name}, options(passwords)));
    const std::string before = R"("openedWith":")";
    const auto found = outcome.out.find(before);
    if (outcome.status != 0 || found == std::string::npos) return "";
    const auto start = found + before.size();
    return outcome.out.substr(start, outcome.out.find('"', start) - start);
  }
  int greyOf(int page) const { return picture("out.pdf", page, Renderer::poppler).at(0.5, 0.5).front(); }
};

class PasswordsOfARevision : public PasswordsBase, public testing::WithParamInterface<Protection> {
 protected:
  void protect(const std::string& name, const Passwords& passwords, const std::string& options = {}) const {
    PasswordsBase::protect(name, GetParam(), passwords, options);
  }
};

TEST_P(PasswordsOfARevision, OpenTwoInputsInEitherOrder) {
  protect("a.pdf", {"use", "own"});
  protect("b.pdf", {"other", "boss"});
  for (const Words& passwords :
       {Words{"use", "other"}, {"other", "use"}, {"boss", "own"}, {"x", "own", "other"}})
    for (const Words& inputs : {Words{"a.pdf", "b.pdf"}, {"b.pdf", "a.pdf"}}) {
      const Outcome outcome = place(inputs, passwords);
      EXPECT_EQ(outcome.status, 0);
      EXPECT_EQ(outcome.err, "");
      EXPECT_EQ(complaintsAbout("out.pdf"), "");
      const bool blackFirst = inputs.front() == "a.pdf";
      EXPECT_NEAR(greyOf(1), blackFirst ? 0 : 128, 2);
      EXPECT_NEAR(greyOf(2), blackFirst ? 128 : 0, 2);
    }
}

TEST_P(PasswordsOfARevision, OpenOneInputByTheOnlyOneThatFits) {
  protect("a.pdf", {"use", "own"});
  for (const Words& passwords : {Words{"use", "x", "y"}, {"x", "use", "y"}, {"x", "y", "use"}})
    EXPECT_EQ(openedWith("a.pdf", passwords), "user");
}

TEST_P(PasswordsOfARevision, MayBeEmptyAmongOthers) {
  protect("a.pdf", {"use", "own"});
  protect("b.pdf", {"", "boss"});
  EXPECT_EQ(openedWith("a.pdf", {"", "use"}), "user");
  EXPECT_EQ(openedWith("b.pdf", {"use", ""}), "none");
  EXPECT_EQ(openedWith("b.pdf", {"", "boss"}), "owner");
  EXPECT_EQ(place({"a.pdf", "b.pdf"}, {"", "use"}).status, 0);
}

TEST_P(PasswordsOfARevision, LiftTheRestrictionsByTheOwnersInWhateverOrder) {
  protect("a.pdf", {"use", "own"}, "--modify=none");
  EXPECT_EQ(place({"a.pdf"}, {"own", "use"}).status, 0);
  EXPECT_EQ(place({"a.pdf"}, {"use", "own"}).status, 0);
  EXPECT_EQ(place({"a.pdf"}, {"x", "use", "y", "own"}).status, 0);
  const Outcome refused = place({"a.pdf"}, {"x", "use"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            "tessel: a.pdf: its permissions forbid to modify or assemble it; its owner password or "
            "--ignore-permissions would do\n");
}

TEST_P(PasswordsOfARevision, LiftTheRestrictionsOfAnInputThatOpensWithoutOne) {
  protect("a.pdf", {"", "own"}, "--modify=none");
  EXPECT_EQ(place({"a.pdf"}, {"x", "own"}).status, 0);
  EXPECT_EQ(place({"a.pdf"}, {"x", "y"}).status, 1);
}

TEST_P(PasswordsOfARevision, OpenNoInputThatHasAnother) {
  protect("a.pdf", {"use", "own"});
  protect("b.pdf", {"other", "boss"});
  const Outcome outcome = place({"a.pdf", "b.pdf"}, {"use", "x"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: b.pdf: none of the passwords opens it (3001)\n");
  EXPECT_THAT(files(), ElementsAre("a.pdf", "b.pdf"));
}

INSTANTIATE_TEST_SUITE_P(Revisions, PasswordsOfARevision,
                         testing::Values(allProtections[1], allProtections[3], allProtections[6]),
                         protectionName);

class SeveralPasswords : public PasswordsBase {
 protected:
  void SetUp() override {
    RoadTest::SetUp();
    protect("a.pdf", allProtections[6], {"use", "own"});
    protect("b.pdf", allProtections[3], {"other", "boss"});
    file("plain.pdf", greyPage("0"));
  }
};

TEST_F(SeveralPasswords, OpenInputsOfDifferentRevisionsBesidesPlainOnes) {
  const Outcome outcome = place({"plain.pdf", "a.pdf", "plain.pdf", "b.pdf"}, {"boss", "use"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(openedWith("b.pdf", {"use", "boss"}), "owner");
}

TEST_F(SeveralPasswords, OpenAnInputWhoseCatalogIsEncryptedAsWell) {
  protect("a.pdf", allProtections[6], {"use", "own"}, {}, Layout::objectStreams);
  EXPECT_EQ(openedWith("a.pdf", {"x", "use"}), "user");
  EXPECT_EQ(openedWith("a.pdf", {"use", "own"}), "owner");
}

TEST_F(SeveralPasswords, ServeEveryCommand) {
  EXPECT_EQ(tessel(joined({"info", "a.pdf", "b.pdf"}, options({"other", "use"}))).status, 0);
  EXPECT_EQ(tessel(joined({"dump", "a.pdf", "--summary"}, options({"x", "use"}))).status, 0);
  EXPECT_EQ(place({"a.pdf", "b.pdf"}, {"other", "use"}).status, 0);
}

TEST_F(SeveralPasswords, ThatDoNotFitAreToldOfByEveryCommand) {
  const std::string refusal = "tessel: a.pdf: none of the passwords opens it (3001)\n";
  const Outcome info = tessel(joined({"info", "--json", "a.pdf"}, options({"x", "y"})));
  EXPECT_EQ(info.status, 1);
  EXPECT_EQ(info.err, refusal);
  EXPECT_EQ(info.out, R"({"file":"a.pdf","error":{"code":3001,"reason":"none of the passwords opens it"}})"
                      "\n");
  const Outcome dump = tessel(joined({"dump", "a.pdf"}, options({"x", "y"})));
  EXPECT_EQ(dump.status, 1);
  EXPECT_EQ(dump.err, refusal);
  EXPECT_EQ(dump.out, "{\"init\":3001,\"pages\":0,\"root\":null}\n");
  EXPECT_EQ(place({"a.pdf"}, {"x", "y"}).err, refusal);
}

TEST_F(SeveralPasswords, LeaveTheMessagesForOneAsTheyAre) {
  EXPECT_EQ(place({"a.pdf"}, {"x"}).err, "tessel: a.pdf: the password doesn't open it (3001)\n");
  EXPECT_EQ(place({"a.pdf"}, {""}).err, "tessel: a.pdf: it needs a password (3001)\n");
  EXPECT_EQ(place({"a.pdf"}, {}).err, "tessel: a.pdf: it needs a password (3001)\n");
}

TEST_F(SeveralPasswords, KeepNoOtherInputFromBeingDescribed) {
  const Outcome outcome = tessel(joined({"info", "a.pdf", "plain.pdf", "b.pdf"}, options({"x", "other"})));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: a.pdf: none of the passwords opens it (3001)\n");
  EXPECT_THAT(outcome.out, HasSubstr("plain.pdf: "));
  EXPECT_THAT(outcome.out, HasSubstr("b.pdf: "));
}

TEST_F(SeveralPasswords, MayComeFromFilesAndTheCommandLineAtOnce) {
  file("first", "use\r\nother\n");
  file("second", "other\n");
  const Words files{"--password-file", "first", "--password-file", "second"};
  EXPECT_EQ(tessel(joined({"info", "a.pdf", "b.pdf"}, files)).status, 0);
  EXPECT_EQ(tessel({"info", "a.pdf", "b.pdf", "--password-file", "first", "--password", "other"}).status, 0);
  EXPECT_EQ(tessel({"info", "a.pdf", "b.pdf", "--password", "other", "--password-file", "first"}).status, 0);
  EXPECT_EQ(tessel({"info", "a.pdf", "b.pdf", "--password", "x", "--password-file", "first"}).err,
            "tessel: b.pdf: none of the passwords opens it (3001)\n");
}

TEST_F(SeveralPasswords, OfWhichAFileCanNotBeReadAreStatus1) {
  const Outcome outcome = tessel({"info", "a.pdf", "--password", "use", "--password-file", "missing"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: missing: the password can't be read: No such file or directory\n");
}

TEST_F(SeveralPasswords, AreALineOfStandardInputEach) {
  const std::string line = quoted(TESSEL_TOOL) + " nup a.pdf b.pdf -o out.pdf --grid 1x1" +
                           " --password-file - --password x --password-file - --encrypt aes-256" +
                           " --user-password-file -";
  const Outcome outcome = shell("printf 'other\\nuse\\nnew\\nmore\\n' | " + line);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(openedWith("out.pdf", {"new"}), "user");
}

TEST_F(SeveralPasswords, KeepTheEnvironmentOut) {
  const std::string info = "TESSEL_PASSWORD=use " + quoted(TESSEL_TOOL) + " info a.pdf ";
  EXPECT_EQ(shell(info).status, 0);
  EXPECT_EQ(shell(info + "--password x --password y").status, 1);
}

TEST_F(SeveralPasswords, TakeOneWordEach) {
  EXPECT_EQ(tessel({"info", "--password", "x", "--password", "use", "a.pdf"}).status, 0);
  EXPECT_EQ(tessel({"info", "--password=x", "--password=use", "a.pdf"}).status, 0);
  EXPECT_THAT(tessel({"info", "--password", "use", "x", "a.pdf"}).err,
              EndsWith("tessel: x: No such file or directory (1000)\n"));
}

}  // namespace
}  // namespace tessel_test
