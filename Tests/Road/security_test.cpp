// Protected sources and protected outputs on the whole road, the sources made and the outputs judged by
// others.

#include <gmock/gmock.h>

#include <algorithm>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Paints what strings and streams of its objects tell: an image, a colour space with a palette, a form.
PdfBuilder colourfulDocument() {
  const std::string image =
      "/Type/XObject/Subtype/Image/Width 2/Height 2/BitsPerComponent 8/ColorSpace/DeviceRGB";
  return pdf()
      .pageTree({3},
                "/Resources<</XObject<</Im 5 0 R/Fm 6 0 R>>/ColorSpace<</Cs 7 0 R>>"
                "/Properties<</M<</Words(a secret text)>>>>/Font<</F 8 0 R>>>>")
      .object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Contents 4 0 R>>")
      .stream(4, "",
              "q 80 0 0 80 10 110 cm /Im Do Q q 1 0 0 1 110 110 cm /Fm Do Q /Cs cs 1 sc 10 10 80 80 re f "
              "0 g BT /F 30 Tf 100 40 Td (Tessel) Tj ET")
      .stream(5, image, "\x10\x20\xF0\xF0\x80\x10\x20\xF0\x30\x80\x80\x80")
      .stream(6, "/Type/XObject/Subtype/Form/BBox[0 0 80 80]", "0 0.5 0 rg 0 0 80 80 re f")
      .object(7, "[/Indexed/DeviceRGB 1(\\377\\377\\377\\320\\040\\040)]")
      .object(8, "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>")
      .object(9, "<</Title(a secret title)>>");
}

constexpr const char* colourfulTrailer = "/Info 9 0 R/ID[<30313233343536373839616263646566><31>]";

std::string colourfulPage() { return colourfulDocument().trailer(colourfulTrailer).build(); }

class Security : public RoadTest {
 protected:
  void SetUp() override {
    RoadTest::SetUp();
    file("plain.pdf", colourfulPage());
  }

  /// What `info` says of who opened the file; "" when nobody could.
  std::string openedWith(const std::string& name, const std::string& password) const {
    const Outcome outcome = tessel({"info", "--json", "--password", password, name});
    if (outcome.status != 0) return "";
    const std::string before = R"("openedWith":")";
    const auto start = outcome.out.find(before) + before.size();
    return outcome.out.substr(start, outcome.out.find('"', start) - start);
  }

  /// Both programs draw the page as they draw the plain source.
  void expectSameLook(const std::string& name, const std::string& password = {}) const {
    for (const Renderer renderer : {Renderer::poppler, Renderer::mupdf}) {
      const Difference off =
          difference(picture("plain.pdf", 1, renderer), picture(name, 1, renderer, password));
      EXPECT_TRUE(off.alike()) << off;
    }
  }

  Outcome place(const std::string& source, std::vector<std::string> options) const {
    options.insert(options.begin(), {"nup", source, "-o", "out.pdf", "--grid", "1x1"});
    return tessel(options);
  }

  std::string protect(const std::string& name, const Protection& protection, const Passwords& passwords,
                      Layout layout = Layout::classicTable, const std::string& options = {}) const {
    return file(name, protectedPdf(colourfulPage(), protection, passwords, layout, options));
  }
};

// Sources.

struct Opening {
  Protection protection;
  Layout layout = Layout::classicTable;
};
std::ostream& operator<<(std::ostream& out, const Opening& opening) { return out << opening.protection; }

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

class ProtectedSource : public Security, public testing::WithParamInterface<Opening> {
 protected:
  void make(const Passwords& passwords) const {
    protect("in.pdf", GetParam().protection, passwords, GetParam().layout);
  }
  bool sealed() const { return GetParam().protection.revision >= 5; }
  /// Bytes of a password that count.
  std::size_t counted() const { return sealed() ? 127 : 32; }
};

TEST_P(ProtectedSource, OpensWithEachOfItsPasswordsAndNoOther) {
  make({"use", "own"});
  EXPECT_EQ(openedWith("in.pdf", "use"), "user");
  EXPECT_EQ(openedWith("in.pdf", "own"), "owner");
  for (const char* wrong : {"", "us", "Use", "owner"}) EXPECT_EQ(openedWith("in.pdf", wrong), "") << wrong;
  const Outcome outcome = place("in.pdf", {"--password", "x"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: in.pdf: the password doesn't open it (3001)\n");
  EXPECT_EQ(place("in.pdf", {}).err, "tessel: in.pdf: it needs a password (3001)\n");
}

TEST_P(ProtectedSource, WithAnEmptyUserPasswordOpensAlwaysAndKnowsItsOwner) {
  make({"", "own"});
  EXPECT_EQ(openedWith("in.pdf", ""), "none");
  EXPECT_EQ(openedWith("in.pdf", "x"), "none");
  EXPECT_EQ(openedWith("in.pdf", "own"), "owner");
}

TEST_P(ProtectedSource, WithEqualPasswordsOpensForBoth) {
  make({"same", "same"});
  EXPECT_EQ(openedWith("in.pdf", "same"), "both");
  EXPECT_EQ(openedWith("in.pdf", ""), "");
}

TEST_P(ProtectedSource, WithAnEmptyOwnerPasswordOpensForTheUser) {
  make({"use", ""});
  EXPECT_EQ(openedWith("in.pdf", "use"), sealed() ? "user" : "both");
  EXPECT_EQ(openedWith("in.pdf", "x"), "");
}

TEST_P(ProtectedSource, WithLongPasswordsOpensByTheBytesThatCount) {
  const std::size_t made = sealed() ? 127 : 200;
  make({std::string(made, 'u'), std::string(made, 'o')});
  for (const std::size_t size : {counted(), std::size_t{127}, std::size_t{200}}) {
    EXPECT_EQ(openedWith("in.pdf", std::string(size, 'u')), "user") << size;
    EXPECT_EQ(openedWith("in.pdf", std::string(size, 'o')), "owner") << size;
  }
  EXPECT_EQ(openedWith("in.pdf", std::string(counted() - 1, 'u')), "");
}

TEST_P(ProtectedSource, LooksLikeThePlainOne) {
  make({"use", "own"});
  for (const char* password : {"use", "own"}) {
    const Outcome outcome = place("in.pdf", {"--password", password});
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(complaintsAbout("out.pdf"), "");
    expectSameLook("out.pdf");
  }
}

INSTANTIATE_TEST_SUITE_P(AllRevisions, ProtectedSource, testing::ValuesIn(allOpenings()), openingName);

TEST_F(Security, ASourceWhoseIdentifierBeginsWithAZeroByteOpens) {
  std::string plain = colourfulPage();
  plain.replace(plain.find("<3031"), 5, "<0031");
  for (const std::size_t kind : {1U, 2U, 3U}) {
    file("in.pdf", protectedPdf(plain, allProtections[kind], {"use", "own"}));
    EXPECT_EQ(openedWith("in.pdf", "use"), "user");
    EXPECT_EQ(openedWith("in.pdf", "own"), "owner");
    EXPECT_EQ(openedWith("in.pdf", "x"), "");
    EXPECT_EQ(place("in.pdf", {"--password", "use"}).status, 0);
    expectSameLook("out.pdf");
  }
  file("in.pdf", protectedPdf(plain, allProtections[3], {"", "own"}, Layout::classicTable, "--modify=none"));
  EXPECT_EQ(openedWith("in.pdf", "own"), "owner");
  EXPECT_EQ(place("in.pdf", {"--password", "own"}).status, 0);
  EXPECT_EQ(place("in.pdf", {}).status, 1);
}

TEST_F(Security, ASourceForCertificatesIsRefused) {
  file("in.pdf", pdf()
                     .onePage("/MediaBox[0 0 9 9]")
                     .object(9, "<</Filter/Adobe.PubSec/V 2/R 3/P -8>>")
                     .trailer("/Encrypt 9 0 R")
                     .build());
  const Outcome outcome = tessel({"info", "in.pdf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: in.pdf: its encryption takes no password (1)\n");
}

TEST_F(Security, ASourceBehindAnUnknownEncryptionIsRefused) {
  file("in.pdf", pdf()
                     .onePage("/MediaBox[0 0 9 9]")
                     .object(9, "<</Filter/Foo/V 2/R 3>>")
                     .trailer("/Encrypt 9 0 R")
                     .build());
  EXPECT_EQ(tessel({"info", "in.pdf"}).err, "tessel: in.pdf: its encryption isn't known (1)\n");
}

TEST_F(Security, AnEncryptionThatIsNullIsNone) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 9 9]").object(9, "null").trailer("/Encrypt 9 0 R").build());
  EXPECT_EQ(tessel({"info", "in.pdf"}).status, 0);
}

TEST_F(Security, AFailureIsToldOfInJson) {
  protect("in.pdf", allProtections[5], {"use", "own"});
  EXPECT_EQ(tessel({"info", "--json", "in.pdf"}).out,
            R"({"file":"in.pdf","error":{"code":3001,"reason":"it needs a password"}})"
            "\n");
  EXPECT_EQ(tessel({"dump", "in.pdf"}).out, "{\"init\":3001,\"pages\":0,\"root\":null}\n");
}

TEST_F(Security, APasswordInLatin1OpensWithTheSameLettersInUtf8) {
  protect("in.pdf", allProtections[1], {"p\xE4ssw\xF6rt", "own"});
  EXPECT_EQ(openedWith("in.pdf", "pässwört"), "user");
  EXPECT_EQ(openedWith("in.pdf", "pässwort"), "");
}

TEST_F(Security, APasswordInPdfDocEncodingOpensWithTheSameLettersInUtf8) {
  protect("in.pdf", allProtections[3], {"\xA0uro", "own"}, Layout::classicTable, "");
  EXPECT_EQ(openedWith("in.pdf", "€uro"), "user");
}

// Where a password comes from.

class PasswordSource : public Security {
 protected:
  void SetUp() override {
    Security::SetUp();
    protect("in.pdf", allProtections[6], {"use", "own"});
  }
  int status(const std::string& before, const std::string& after) const {
    return shell(before + " " + quoted(TESSEL_TOOL) + " info in.pdf " + after).status;
  }
};

TEST_F(PasswordSource, IsAFilesFirstLine) {
  file("good", "use\r\nmore");
  file("bad", "x\nuse\n");
  EXPECT_EQ(status("", "--password-file good"), 0);
  EXPECT_EQ(status("", "--password-file bad"), 1);
  EXPECT_EQ(status("echo own |", "--password-file -"), 0);
}

TEST_F(PasswordSource, IsTheEnvironmentWithoutAnOption) {
  EXPECT_EQ(status("TESSEL_PASSWORD=use", ""), 0);
  EXPECT_EQ(status("TESSEL_PASSWORD=x", ""), 1);
  EXPECT_EQ(status("TESSEL_PASSWORD=use", "--password x"), 1);
  EXPECT_EQ(status("TESSEL_PASSWORD=x", "--password use"), 0);
}

TEST_F(PasswordSource, MayHaveBlanksAndNoLineEnd) {
  protect("in.pdf", allProtections[6], {" a b ", "own"});
  file("password", " a b ");
  EXPECT_EQ(status("", "--password-file password"), 0);
  EXPECT_EQ(status("", "--password ' a b '"), 0);
}

TEST_F(PasswordSource, ThatIsGivenEmptyIsNotTheEnvironments) {
  file("empty", "");
  EXPECT_EQ(status("TESSEL_PASSWORD=use", "--password ''"), 1);
  EXPECT_EQ(status("TESSEL_PASSWORD=use", "--password-file empty"), 1);
  EXPECT_EQ(status("TESSEL_PASSWORD=use", "--password-file ''"), 1);
}

TEST_F(PasswordSource, IsALineForEachOptionThatReadsStandardInput) {
  const Outcome outcome =
      shell("printf 'own\\nnewuser\\nnewowner\\n' | " + quoted(TESSEL_TOOL) +
            " nup in.pdf -o out.pdf --grid 1x1 --password-file - --encrypt aes-256 --user-password-file -"
            " --owner-password-file -");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(openedWith("out.pdf", "newuser"), "user");
  EXPECT_EQ(openedWith("out.pdf", "newowner"), "owner");
}

TEST_F(PasswordSource, ThatIsNoLineOfTextIsRefused) {
  file("zero", std::string("use\0x", 5));
  EXPECT_EQ(tessel({"info", "in.pdf", "--password-file", "zero"}).err,
            "tessel: zero: its first line is no password\n");
  EXPECT_EQ(tessel({"info", "in.pdf", "--password-file", "/dev/zero"}).err,
            "tessel: /dev/zero: its first line is no password\n");
  EXPECT_EQ(tessel({"info", "in.pdf", "--password-file", "."}).err,
            "tessel: .: the password can't be read\n");
}

TEST_F(PasswordSource, ThatCanNotBeReadIsStatus1) {
  const Outcome outcome = tessel({"info", "in.pdf", "--password-file", "missing"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: missing: the password can't be read: No such file or directory\n");
}

TEST_F(PasswordSource, ServesAllInputsAndIsIgnoredByThoseThatNeedNone) {
  EXPECT_EQ(tessel({"info", "plain.pdf", "in.pdf", "--password", "use"}).status, 0);
  EXPECT_EQ(tessel({"dump", "in.pdf", "--password", "use", "--summary"}).status, 0);
  const Outcome outcome = tessel({"nup", "plain.pdf", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--paper",
                                  "auto", "--password", "use"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  expectSameLook("out.pdf");
}

// What is told, and what is allowed.

TEST_F(Security, InfoTellsMethodRevisionAndPermissions) {
  protect("in.pdf", allProtections[7], {"", "own"}, Layout::classicTable, "--modify=none --print=low");
  EXPECT_THAT(
      tessel({"info", "in.pdf"}).out,
      HasSubstr("\n  encrypted with AES-256, revision 6, metadata in the clear, opened with no password; "
                "allowed without the owner password: print-low, copy, accessibility\n"));
  EXPECT_THAT(tessel({"info", "--json", "in.pdf", "--password", "own"}).out,
              HasSubstr(R"("encryption":{"method":"AES-256","revision":6,"metadataEncrypted":false,)"
                        R"("openedWith":"owner","allowed":["print-low","copy","accessibility"]},)"));
}

TEST_F(Security, InfoTellsTheMethodOfEachRevision) {
  const char* const methods[] = {"RC4-40, revision 2",  "RC4-128, revision 3", "RC4-128, revision 4",
                                 "AES-128, revision 4", "AES-128, revision 4", "AES-256, revision 5",
                                 "AES-256, revision 6", "AES-256, revision 6"};
  for (std::size_t i = 0; i < std::size(allProtections); ++i) {
    protect("in.pdf", allProtections[i], {"", "own"});
    EXPECT_THAT(tessel({"info", "in.pdf"}).out, HasSubstr(methods[i]));
  }
}

class ForbiddenSource : public Security, public testing::WithParamInterface<const char*> {};

TEST_P(ForbiddenSource, IsPlacedForItsOwnerOrWhenToldTo) {
  protect("in.pdf", allProtections[3], {"", "own"}, Layout::classicTable, GetParam());
  const Outcome refused = place("in.pdf", {});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err,
            "tessel: in.pdf: its permissions forbid to modify or assemble it; its owner password or "
            "--ignore-permissions would do\n");
  EXPECT_THAT(files(), ElementsAre("in.pdf", "plain.pdf"));
  EXPECT_EQ(place("in.pdf", {"--password", "own"}).status, 0);
  EXPECT_EQ(place("in.pdf", {"--ignore-permissions"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(Permissions, ForbiddenSource,
                         testing::Values("--assemble=n", "--modify-other=n", "--modify=none"));

TEST_F(Security, ASourceThatForbidsOtherThingsIsPlaced) {
  protect("in.pdf", allProtections[3], {"", "own"}, Layout::classicTable, "--print=none --extract=n");
  EXPECT_EQ(place("in.pdf", {}).status, 0);
}

// Outputs.

constexpr const char* ciphers[] = {"rc4-40", "rc4-128", "aes-128", "aes-256"};

struct OutputKind {
  const char* cipher;
  const char* layout;  ///< an option
};
std::ostream& operator<<(std::ostream& out, const OutputKind& kind) {
  return out << kind.cipher << ' ' << kind.layout;
}

std::vector<OutputKind> allOutputs() {
  std::vector<OutputKind> kinds;
  for (const char* layout : {"--quiet", "--object-streams"})
    for (const char* cipher : ciphers) kinds.push_back({cipher, layout});
  return kinds;
}

class ProtectedOutput : public Security, public testing::WithParamInterface<OutputKind> {
 protected:
  Outcome placeProtected(const std::string& source, std::vector<std::string> more = {}) const {
    more.insert(more.end(), {"--encrypt", GetParam().cipher, GetParam().layout, "--user-password", "use",
                             "--owner-password", "own"});
    return place(source, more);
  }
};

TEST_P(ProtectedOutput, IsSoundAndLooksLikeItsSourceWithBothPasswords) {
  ASSERT_EQ(placeProtected("plain.pdf").status, 0);
  EXPECT_THAT(contentOf("out.pdf"), Not(HasSubstr("secret")));
  for (const char* password : {"use", "own"}) EXPECT_EQ(complaintsAbout("out.pdf", password), "");
  expectSameLook("out.pdf", "use");
}

TEST_P(ProtectedOutput, OpensWithBothPasswordsAndNoOther) {
  ASSERT_EQ(placeProtected("plain.pdf").status, 0);
  const std::vector<std::pair<std::string, bool>> rows{{"use", true},    {"own", true}, {"''", false},
                                                       {"x", false},     {"us", false}, {"USE", false},
                                                       {"useown", false}};
  for (const auto& [password, good] : rows) {
    EXPECT_EQ(shell("qpdf --check --password=" + password + " out.pdf").status == 0, good) << password;
    EXPECT_EQ(shell("pdfinfo -upw " + password + " -opw " + password + " out.pdf").status == 0, good)
        << password;
    EXPECT_EQ(shell("mutool draw -q -F txt -p " + password + " out.pdf").status == 0, good) << password;
    EXPECT_EQ(tessel({"info", "out.pdf", "--password", password == "''" ? "" : password}).status == 0, good);
  }
}

TEST_P(ProtectedOutput, IsASourceAgain) {
  ASSERT_EQ(placeProtected("plain.pdf").status, 0);
  EXPECT_EQ(openedWith("out.pdf", "use"), "user");
  EXPECT_EQ(openedWith("out.pdf", "own"), "owner");
  const Outcome outcome = tessel({"nup", "out.pdf", "-o", "again.pdf", "--grid", "1x1", "--password", "use"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  expectSameLook("again.pdf");
}

TEST_P(ProtectedOutput, HoldsEqualStreamsOnce) {
  file("copy.pdf", colourfulPage() + "% another file\n");
  const auto objects = [this](const std::string& password) {
    return shell("qpdf --json --json-key=objects --password=" + password + " out.pdf | grep -c '\"stream'")
        .out;
  };
  ASSERT_EQ(place("plain.pdf", {"copy.pdf", GetParam().layout}).status, 0);
  const std::string plain = objects("");
  ASSERT_EQ(placeProtected("plain.pdf", {"copy.pdf"}).status, 0);
  EXPECT_EQ(objects("use"), plain);
}

TEST_P(ProtectedOutput, OfEachKindOfProtectedSourceLooksLikeIt) {
  for (const std::size_t kind : {0U, 1U, 3U, 6U}) {
    protect("in.pdf", allProtections[kind], {"a", "b"}, Layout::objectStreams);
    ASSERT_EQ(placeProtected("in.pdf", {"--password", "a"}).status, 0);
    EXPECT_EQ(complaintsAbout("out.pdf", "use"), "");
    expectSameLook("out.pdf", "use");
  }
}

INSTANTIATE_TEST_SUITE_P(AllKinds, ProtectedOutput, testing::ValuesIn(allOutputs()), [](const auto& row) {
  std::string name = row.param.cipher + std::string(row.param.layout[2] == 'q' ? "Table" : "ObjectStreams");
  name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
  return name;
});

TEST_F(Security, AnOutputHasThePermissionsAskedFor) {
  EXPECT_EQ(
      place("plain.pdf", {"--encrypt", "aes-256", "--owner-password", "own", "--allow", "copy,print"}).status,
      0);
  EXPECT_THAT(
      tessel({"info", "out.pdf"}).out,
      HasSubstr("opened with no password; allowed without the owner password: print, copy, accessibility\n"));
  EXPECT_THAT(shell("pdfinfo out.pdf").out,
              HasSubstr("yes (print:yes copy:yes change:no addNotes:no algorithm:AES-256)"));
}

TEST_F(Security, AnOutputWithoutAnOwnerPasswordHasNoOwner) {
  EXPECT_EQ(place("plain.pdf", {"--encrypt", "aes-128", "--user-password", "use", "--allow", "none"}).status,
            0);
  EXPECT_EQ(openedWith("out.pdf", "use"), "user");
}

TEST_F(Security, AnOutputTakesItsPasswordsFromFilesAndTheEnvironment) {
  file("user", "use\n");
  const Outcome outcome =
      shell("TESSEL_OWNER_PASSWORD=own " + quoted(TESSEL_TOOL) +
            " nup plain.pdf -o out.pdf --grid 1x1 --encrypt rc4-128 --user-password-file user");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(openedWith("out.pdf", "use"), "user");
  EXPECT_EQ(openedWith("out.pdf", "own"), "owner");
}

TEST_F(Security, AnOutputTellsThatItsMetadataIsInTheClear) {
  EXPECT_EQ(
      place("plain.pdf", {"--encrypt", "aes-256", "--user-password", "use", "--cleartext-metadata"}).status,
      0);
  EXPECT_THAT(tessel({"info", "out.pdf", "--password", "use"}).out, HasSubstr("metadata in the clear"));
  EXPECT_EQ(complaintsAbout("out.pdf", "use"), "");
}

TEST_F(Security, AnOutputLeavesMetadataOfImagesInTheClearAndSaysSo) {
  file("in.pdf", pdf()
                     .onePage("/MediaBox[0 0 9 9]/Contents 4 0 R/Resources<</XObject<</Im 5 0 R>>>>")
                     .stream(4, "", "/Im Do")
                     .stream(5,
                             "/Type/XObject/Subtype/Image/Width 1/Height 1/BitsPerComponent 8"
                             "/ColorSpace/DeviceGray/Metadata 6 0 R",
                             "x")
                     .stream(6, "/Type/Metadata/Subtype/XML", "<words>of the image</words>")
                     .build());
  const std::string words = "<words>of the image</words>";
  for (const char* cipher : {"aes-128", "aes-256"}) {
    place("in.pdf", {"--encrypt", cipher, "--user-password", "use", "--cleartext-metadata"});
    EXPECT_THAT(contentOf("out.pdf"), HasSubstr(words));
    EXPECT_EQ(complaintsAbout("out.pdf", "use"), "");
    // What says itself that it isn't encrypted stays so.
    tessel({"nup", "out.pdf", "-o", "again.pdf", "--grid", "1x1", "--password", "use", "--encrypt", cipher,
            "--user-password", "use"});
    EXPECT_THAT(shell("qpdf --qdf --decrypt --password=use again.pdf -").out, HasSubstr(words));
    place("in.pdf", {"--encrypt", cipher, "--user-password", "use"});
    EXPECT_THAT(contentOf("out.pdf"), Not(HasSubstr(words)));
    EXPECT_THAT(shell("qpdf --qdf --decrypt --password=use out.pdf -").out, HasSubstr(words));
  }
}

TEST_F(Security, AnOutputWithAnEmptyUserPasswordIsNotTheEnvironments) {
  const Outcome outcome =
      shell("TESSEL_USER_PASSWORD=env " + quoted(TESSEL_TOOL) +
            " nup plain.pdf -o out.pdf --grid 1x1 --encrypt aes-256 --user-password '' --owner-password own");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(openedWith("out.pdf", ""), "none");
}

TEST_F(Security, APasswordOfAnOutputOpensItElsewhere) {
  for (const char* cipher : ciphers) {
    ASSERT_EQ(place("plain.pdf", {"--encrypt", cipher, "--user-password", "pässwört €"}).status, 0);
    EXPECT_EQ(shell("mutool draw -q -F txt -o /dev/null -p 'pässwört €' out.pdf").status, 0) << cipher;
    EXPECT_EQ(complaintsAbout("out.pdf", "pässwört €"), "") << cipher;
    EXPECT_EQ(openedWith("out.pdf", "pässwört €"), "user") << cipher;
  }
}

TEST_F(Security, ASourceWithAttachedFilesEncryptedAloneNeedsNoPassword) {
  file("source.pdf", colourfulDocument()
                         .object(10,
                                 "<</Filter/Standard/V 5/R 6/Length 256/P -4/O(o)/U(u)/OE(o)/UE(u)/Perms(p)"
                                 "/CF<</StdCF<</CFM/AESV3>>>>/EFF/StdCF/StmF/Identity/StrF/Identity>>")
                         .trailer(std::string(colourfulTrailer) + "/Encrypt 10 0 R")
                         .build());
  EXPECT_EQ(openedWith("source.pdf", ""), "none");
  EXPECT_EQ(openedWith("source.pdf", "any"), "none");
  EXPECT_EQ(place("source.pdf", {}).status, 0);
  expectSameLook("out.pdf");
}

TEST_F(Security, DoubtfulPasswordsAreToldOf) {
  const std::vector<std::string> options{"--encrypt", "aes-128", "--owner-password", "x", "--user-password"};
  const auto warnings = [&](const std::string& password, const std::string& allowed) {
    std::vector<std::string> all = options;
    all.insert(all.end(), {password, "--allow", allowed});
    const Outcome outcome = place("plain.pdf", all);
    EXPECT_EQ(outcome.status, 0);
    return outcome.err;
  };
  EXPECT_EQ(warnings("use", "none"), "");
  EXPECT_EQ(warnings("x", "all"), "");
  EXPECT_EQ(warnings("x", "none"),
            "tessel: warning: user and owner have the same password, so nothing is forbidden\n");
  EXPECT_EQ(warnings(std::string(33, 'u'), "all"),
            "tessel: warning: only the first 32 bytes of the user password count\n");
  EXPECT_EQ(warnings("пароль", "all"),
            "tessel: warning: the user password has characters that aes-128 doesn't know, and many readers "
            "won't take it; aes-256 knows all\n");
}

TEST_F(Security, PermissionsThatTheCipherHasNoBitsForAreToldOf) {
  const auto warning = [&](const std::string& allowed) {
    const Outcome outcome =
        place("plain.pdf", {"--encrypt", "rc4-40", "--user-password", "use", "--allow", allowed});
    EXPECT_EQ(outcome.status, 0);
    return outcome.err;
  };
  EXPECT_EQ(warning("print,copy,accessibility"), "");
  EXPECT_EQ(
      warning("print-low"),
      "tessel: warning: rc4-40 knows print, modify, copy and annotate only; what else is allowed follows "
      "from these\n");
}

TEST_F(Security, TwoRunsHaveNoKeyInCommon) {
  const std::vector<std::string> options{"--encrypt", "aes-256", "--user-password", "use"};
  place("plain.pdf", options);
  const std::string first = contentOf("out.pdf");
  place("plain.pdf", options);
  EXPECT_NE(contentOf("out.pdf"), first);
}

}  // namespace
}  // namespace tessel_test
