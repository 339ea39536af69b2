#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/protected_pdf.h"
#include "Tests/Support/road.h"

// What a user of the library does: installs it, builds the examples against what was installed, runs them.

namespace tessel_test {
namespace {

using testing::HasSubstr;

const std::string helvetica = "/Resources<</Font<</F1<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>";

std::string saying(const std::string& word) { return "BT /F1 24 Tf 20 40 Td (" + word + ") Tj ET"; }

/// A page for each word. What all pages have in common, they inherit.
std::string pagesSaying(const std::vector<std::string>& words) {
  PdfBuilder builder;
  std::vector<int> kids;
  for (std::size_t i = 0; i < words.size(); ++i) kids.push_back(static_cast<int>(10 + 2 * i));
  builder.pageTree(kids, "/MediaBox[0 0 300 100]" + helvetica);
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string content = std::to_string(kids[i] + 1);
    builder.object(kids[i], "<</Type/Page/Parent 2 0 R/Contents " + content + " 0 R>>");
    builder.stream(kids[i] + 1, {}, saying(words[i]));
  }
  return builder.build();
}

class Install : public RoadTest {
 protected:
  void SetUp() override {
    RoadTest::SetUp();
    const Outcome installed = shell("cmake --install " + quoted(TESSEL_BUILD_DIR) + " --prefix prefix");
    ASSERT_EQ(installed.status, 0) << installed.err;
  }

  /// Builds one of the examples by their own CMakeLists.txt.
  void buildExample(const std::string& name) {
    const std::string source = quoted(TESSEL_SOURCE_DIR "/Examples");
    const Outcome built = shell(
        "export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1\n"
        "launcher=$(command -v ccache) && launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=$launcher\n"
        "cmake -S " +
        source + " -B examples -G Ninja -DCMAKE_PREFIX_PATH=$PWD/prefix -DCMAKE_CXX_COMPILER=" +
        quoted(TESSEL_EXAMPLE_COMPILER) + " -DCMAKE_CXX_FLAGS=" + quoted(TESSEL_EXAMPLE_FLAGS) +
        " $launcher && cmake --build examples --target " + name);
    ASSERT_EQ(built.status, 0) << built.out << built.err;
  }

  std::string textOf(const std::string& name, int page) const {
    const std::string number = std::to_string(page);
    const Outcome text =
        shell("pdftotext -f " + number + " -l " + number + " " + name + " - | tr -d '\\f\\n'");
    return text.out;
  }

  void expectWords(const std::string& name, const std::vector<std::string>& words) const {
    EXPECT_EQ(complaintsAbout(name), "");
    EXPECT_EQ(shell("qpdf --show-npages " + name).out, std::to_string(words.size()) + "\n");
    for (std::size_t page = 1; page <= words.size(); ++page)
      EXPECT_EQ(textOf(name, static_cast<int>(page)), words[page - 1]) << "page " << page;
  }
};

TEST_F(Install, ProgramFindsItsLibraryWhereverBothAreMoved) {
  const Outcome outcome =
      shell("mv prefix elsewhere && elsewhere/bin/tessel --version && ldd elsewhere/bin/tessel");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_THAT(outcome.out, testing::Not(HasSubstr(TESSEL_BUILD_DIR)));
}

TEST_F(Install, EveryHeaderOfTheClassSetCompilesAgainstTheInstalledTree) {
  const Outcome outcome = shell(
      "cd prefix/include/tessel && find . -name '*.h' | sed 's@^\\./\\(.*\\)@#include <\\1>@' >all.cpp && " +
      quoted(TESSEL_EXAMPLE_COMPILER) + " -std=c++20 -fsyntax-only -I. all.cpp && wc -l <all.cpp");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_GT(std::atoi(outcome.out.c_str()), 50);
}

TEST_F(Install, ExampleEmbedsAPage) {
  buildExample("embed_page");
  file("in.pdf", pagesSaying({"one", "two"}));
  const Outcome outcome = shell("examples/embed_page in.pdf 2 out.pdf");
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  expectWords("out.pdf", {"two"});
  file("locked.pdf", protectedPdf(pagesSaying({"one"}), allProtections[1], {"use", "own"}));
  const Outcome refused = shell("examples/embed_page locked.pdf 1 none.pdf");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.err, "embed_page: the password gave 5\n");
}

TEST_F(Install, ExampleMergesSelectedPagesOfSeveralFiles) {
  buildExample("merge_pages");
  file("a.pdf", pagesSaying({"a1", "a2", "a3", "a4", "a5"}));
  file("b.pdf", pagesSaying({"b1", "b2"}));
  file("c.pdf", pdf()
                    .onePage("/MediaBox[0 0 200 200]/Rotate 90/Contents 4 0 R" + helvetica)
                    .stream(4, {}, saying("c1"))
                    .build());
  ASSERT_EQ(shell("examples/merge_pages some.pdf '2:2 1:1,3~4 3:0' a.pdf b.pdf c.pdf").status, 0);
  expectWords("some.pdf", {"b2", "a1", "a3", "a4", "c1"});
  EXPECT_TRUE(
      difference(picture("some.pdf", 3, Renderer::poppler), picture("a.pdf", 3, Renderer::poppler)).alike());
  EXPECT_TRUE(
      difference(picture("some.pdf", 5, Renderer::mupdf), picture("c.pdf", 1, Renderer::mupdf)).alike());
  ASSERT_EQ(shell("examples/merge_pages all.pdf '0:0' b.pdf a.pdf").status, 0);
  expectWords("all.pdf", {"b1", "b2", "a1", "a2", "a3", "a4", "a5"});
  const Outcome refused = shell("examples/merge_pages none.pdf '1:2~1' a.pdf");
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.err, HasSubstr("1006"));
  file("locked.pdf", protectedPdf(pagesSaying({"one"}), allProtections[1], {"use", "own"}));
  EXPECT_EQ(shell("examples/merge_pages none.pdf '1:0' locked.pdf").err,
            "merge_pages: locked.pdf gave 3001\n");
}

}  // namespace
}  // namespace tessel_test
