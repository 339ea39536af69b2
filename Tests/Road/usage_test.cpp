#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::string aPage() { return pdf().onePage("/MediaBox[0 0 100 100]").build(); }

/// A page whose content is too long for the small files that a test allows, and doesn't get smaller.
std::string bigPage() {
  std::string noise;
  unsigned state = 1;
  for (int i = 0; i < 400'000; ++i) {
    state = state * 1664525U + 1013904223U;
    noise += static_cast<char>(state >> 24U);
  }
  return pdf().onePage("/MediaBox[0 0 100 100]/Contents 4 0 R").stream(4, {}, noise).build();
}

class Usage : public RoadTest {};

TEST_F(Usage, TellsItsVersion) {
  const Outcome outcome = tessel({"--version"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.out, HasSubstr("tessel 0."));
}

TEST_F(Usage, HelpsWithEveryCommand) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"nup", "--help"}, {"info", "--help"}, {"dump", "--help"}}) {
    const Outcome outcome = tessel(arguments);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("Usage: "));
  }
}

class WrongUsage : public RoadTest, public testing::WithParamInterface<const char*> {};

TEST_P(WrongUsage, IsStatus2AndOneLine) {
  file("in.pdf", aPage());
  const Outcome outcome = shell(quoted(TESSEL_TOOL) + " " + GetParam());
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.err, testing::MatchesRegex("tessel: [^\n]+\n"));
  EXPECT_THAT(files(), ElementsAre("in.pdf"));
}

INSTANTIATE_TEST_SUITE_P(
    Lines, WrongUsage,
    testing::Values(
        "", "fly in.pdf", "info", "info in.pdf --loud", "dump", "dump in.pdf --start 0",
        "dump in.pdf --start x", "dump in.pdf --pages 0", "nup in.pdf", "nup in.pdf -o out.pdf",
        "nup -o out.pdf --grid 1x1", "nup in.pdf -o out.pdf --grid 0x1", "nup in.pdf -o out.pdf --grid 2by2",
        "nup in.pdf -o out.pdf --grid 1x1 --paper A99", "nup in.pdf -o out.pdf --grid 1x1 --pages 3-x",
        "nup in.pdf -o out.pdf --grid 1x1 --margin -3", "nup in.pdf -o out.pdf --grid 1x1 --gutter 3px",
        "nup in.pdf -o in.pdf --grid 1x1", "nup in.pdf -o ./in.pdf --grid 1x1",
        "info in.pdf --password x --password",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt aes-512 --user-password x",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt aes-256",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt aes-256 --user-password x --user-password-file y",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt aes-256 --user-password x --user-password y",
        "nup in.pdf -o out.pdf --grid 1x1 --user-password x",
        "nup in.pdf -o out.pdf --grid 1x1 --allow print",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt aes-256 --user-password x --allow fly",
        "nup in.pdf -o out.pdf --grid 1x1 --encrypt rc4-40 --user-password x "
        "--cleartext-metadata"));

TEST_F(Usage, AMissingSourceIsStatus1AndOneLine) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"info", "no.pdf"},
                                                    {"dump", "no.pdf"},
                                                    {"nup", "no.pdf", "-o", "out.pdf", "--grid", "1x1"}}) {
    const Outcome outcome = tessel(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "tessel: no.pdf: No such file or directory (1000)\n");
  }
}

TEST_F(Usage, ASourceThatIsNoPdfIsToldOfByWhatItIs) {
  file("empty.pdf", "");
  file("x.pdf", "x");
  const auto said = [this](const std::string& name) { return tessel({"info", name}).err; };
  EXPECT_EQ(said("empty.pdf"), "tessel: empty.pdf: the file is empty (1000)\n");
  EXPECT_EQ(said("x.pdf"), "tessel: x.pdf: not a readable PDF (1000)\n");
  EXPECT_EQ(said("."), "tessel: .: a directory, not a PDF (1000)\n");
  EXPECT_EQ(said("x.pdf/y"), "tessel: x.pdf/y: Not a directory (1000)\n");
}

TEST_F(Usage, ACommandThatIsNoneIsNamed) {
  EXPECT_EQ(tessel({"fly", "in.pdf"}).err,
            "tessel: 'fly' is none of the commands info, nup and dump; tessel --help tells more\n");
  EXPECT_EQ(tessel({}).err, "tessel: a command is missing: info, nup or dump; tessel --help tells more\n");
  EXPECT_EQ(tessel({"nup", "in.pdf"}).err, "tessel: --output is required; tessel nup --help tells more\n");
}

TEST_F(Usage, ASourceMayComeThroughAPipe) {
  file("in.pdf", aPage());
  file("other.pdf", pdf().onePage("/MediaBox[0 0 100 100]/Contents 4 0 R").stream(4, {}, "f").build());
  const std::string line = quoted(TESSEL_TOOL) + " nup /dev/stdin --grid 1x1 -o ";
  EXPECT_EQ(shell("cat in.pdf | " + line + "a.pdf && cat other.pdf | " + line + "b.pdf").status, 0);
  const auto identifier = [this](const std::string& name) {
    const std::string text = contentOf(name);
    return text.substr(text.rfind("/ID["));
  };
  EXPECT_NE(identifier("a.pdf"), identifier("b.pdf"));
  // A pipe with a name is there again after it was read, and would be waited for.
  EXPECT_EQ(shell("mkfifo pipe; cat in.pdf > pipe & timeout 20 " + quoted(TESSEL_TOOL) +
                  " nup pipe --grid 1x1 -o c.pdf")
                .status,
            0);
}

TEST_F(Usage, StandardOutputThatIsAnInputIsRefused) {
  file("in.pdf", aPage());
  const Outcome outcome = shell(quoted(TESSEL_TOOL) + " nup in.pdf --grid 1x1 -o - 1<>in.pdf");
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.err, "tessel: in.pdf: the output would overwrite this input\n");
  EXPECT_EQ(contentOf("in.pdf"), aPage());
}

TEST_F(Usage, SheetsThatNoReaderShowsAreRefused) {
  file("in.pdf", aPage());
  for (const char* options : {"--grid 200x1", "--grid 1x1 --margin 8000pt"}) {
    const Outcome outcome = shell(quoted(TESSEL_TOOL) + " nup in.pdf -o out.pdf " + options);
    EXPECT_EQ(outcome.status, 2) << options;
    EXPECT_THAT(files(), ElementsAre("in.pdf")) << options;
  }
  file("huge.pdf", pdf().onePage("/MediaBox[0 0 20000 100]").build());
  EXPECT_EQ(tessel({"nup", "huge.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 0);
}

struct SignalCase {
  const char* name;
  int status;  ///< 128 and the signal
};

/// An input that nobody writes to keeps the tool waiting.
class Interrupted : public RoadTest, public testing::WithParamInterface<SignalCase> {};

TEST_P(Interrupted, EndsByTheSignalAndLeavesNothing) {
  // Opening the pipe waits for the tool.
  const Outcome outcome = shell("mkfifo pipe; env --default-signal " + quoted(TESSEL_TOOL) +
                                " nup pipe -o out.pdf --grid 1x1 & exec 3>pipe; kill -" + GetParam().name +
                                " $!; exec 3>&-; wait $!");
  EXPECT_EQ(outcome.status, GetParam().status);
  // The shell has a line of its own for some signals.
  EXPECT_THAT(outcome.err, testing::StartsWith("tessel: interrupted\n"));
  EXPECT_THAT(files(), ElementsAre("pipe"));
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupted,
                         testing::Values(SignalCase{"INT", 130}, SignalCase{"TERM", 143},
                                         SignalCase{"HUP", 129}),
                         [](const auto& row) { return row.param.name; });

TEST_F(Usage, AnInterruptThatIsIgnoredFromTheStartStaysSo) {
  file("in.pdf", aPage());
  const Outcome outcome = shell(
      "mkfifo pipe; env --ignore-signal=HUP " + quoted(TESSEL_TOOL) +
      " nup pipe -o out.pdf --grid 1x1 & exec 3>pipe; kill -HUP $!; cat in.pdf >&3; exec 3>&-; wait $!");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
}

TEST_F(Usage, OneBadSourceOfSeveralLeavesNoOutput) {
  file("good.pdf", aPage());
  file("bad.pdf", "this is no PDF");
  const Outcome outcome = tessel({"nup", "good.pdf", "bad.pdf", "-o", "out.pdf", "--grid", "2x1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: bad.pdf: not a readable PDF (1000)\n");
  EXPECT_THAT(files(), ElementsAre("bad.pdf", "good.pdf"));
}

TEST_F(Usage, AnOldOutputStaysWhenASourceIsBad) {
  file("bad.pdf", "this is no PDF");
  file("out.pdf", "the old one");
  EXPECT_EQ(tessel({"nup", "bad.pdf", "-o", "out.pdf", "--grid", "1x1"}).status, 1);
  EXPECT_EQ(contentOf("out.pdf"), "the old one");
}

TEST_F(Usage, NoPageToPlaceIsStatus1) {
  file("in.pdf", aPage());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--pages", "7-"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: in.pdf: no page to place\n");
  EXPECT_THAT(files(), ElementsAre("in.pdf"));
}

TEST_F(Usage, AnOutputThatCanNotBeMadeIsStatus1) {
  file("in.pdf", aPage());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "missing/out.pdf", "--grid", "1x1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: missing/out.pdf: can't be written: No such file or directory\n");
}

TEST_F(Usage, ADiskThatFillsUpLeavesNoHalfFile) {
  file("in.pdf", bigPage());
  const Outcome outcome = shell("ulimit -f 64; " + quoted(TESSEL_TOOL) + " nup in.pdf -o out.pdf --grid 1x1");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: out.pdf: can't be written: File too large\n");
  EXPECT_THAT(files(), ElementsAre("in.pdf"));
}

TEST_F(Usage, AHelpThatCanNotBeWrittenIsStatus1) {
  const Outcome outcome = shell(quoted(TESSEL_TOOL) + " nup --help >/dev/full");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: standard output: can't be written\n");
}

TEST_F(Usage, AFullDeviceIsReported) {
  file("in.pdf", aPage());
  const Outcome outcome = tessel({"nup", "in.pdf", "-o", "/dev/full", "--grid", "1x1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "tessel: /dev/full: can't be written: No space left on device\n");
}

TEST_F(Usage, APipeThatClosesIsReported) {
  file("in.pdf", bigPage());
  const Outcome outcome =
      shell("{ " + quoted(TESSEL_TOOL) + " dump in.pdf; echo status $? >&2; } | head -c 10 >/dev/null");
  EXPECT_EQ(outcome.err, "tessel: standard output: can't be written: Broken pipe\nstatus 1\n");
}

}  // namespace
}  // namespace tessel_test
