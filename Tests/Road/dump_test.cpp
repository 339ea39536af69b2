#include <gmock/gmock.h>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::HasSubstr;

/// Two pages that share a font; the second one turned, without content.
std::string twoPages() {
  return pdf()
      .pageTree({3, 4}, "/MediaBox[0 0 200 100.5]")
      .object(3, "<</Type/Page/Parent 2 0 R/Contents 5 0 R/Resources<</Font<</F 6 0 R>>>>>>")
      .object(
          4,
          "<</Type/Page/Parent 2 0 R/Rotate 90/CropBox[10 10 60 90]/Resources<</Font<</F 6 0 R/G 7 0 R>>>>>>")
      .stream(5, {}, "q Q")
      .object(6, "<</Type/Font>>")
      .object(7, "<</Type/Font/G 1>>")
      .build();
}

class Dump : public RoadTest {
 protected:
  void SetUp() override {
    RoadTest::SetUp();
    file("in.pdf", twoPages());
  }
  /// Line `number` of the dump, counted from 1.
  std::string line(const std::vector<std::string>& options, int number) {
    std::vector<std::string> arguments{"dump", "in.pdf"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    file("dump.json", tessel(arguments).out);
    return shell("sed -n " + std::to_string(number) + "p dump.json | tr -d '\\n'").out;
  }
  std::string unpacked(const std::string& base64) {
    return shell("printf %s " + quoted(base64) + " | base64 -d").out;
  }
};

/// The text between `before` and the next quotation mark.
std::string textAfter(const std::string& line, const std::string& before) {
  const auto start = line.find(before) + before.size();
  return line.substr(start, line.find('"', start) - start);
}

TEST_F(Dump, BeginsWithTheDocument) {
  const std::string first = line({}, 1);
  EXPECT_THAT(first, testing::StartsWith(R"({"init":0,"pages":2,"root":")"));
  EXPECT_THAT(unpacked(textAfter(first, R"("root":")")), HasSubstr("/Type/Catalog"));
}

TEST_F(Dump, WritesAPageByteForByte) {
  // The texts: "<</Type/Font>>\n", "\r\nq Q\n\r" and "<</Font<</F 1 0 R>>>>". A box that the page hasn't is
  // all 0.
  EXPECT_EQ(
      line({}, 2),
      R"({"page":1,"setPageNo":0,"sizeRc":0,"size":[200,100.5],"rotate":0,)"
      R"("boxes":{"media":[0,0,200,100.5],"crop":[0,0,0,0],"bleed":[0,0,0,0],)"
      R"("trim":[0,0,0,0],"art":[0,0,0,0]},"start":1,)"
      R"("objects":[{"num":1,"gen":0,"body":"PDwvVHlwZS9Gb250Pj4K"}],)"
      R"("contentsRc":0,"contents":"DQpxIFEKDQ==","resourcesRc":0,"resources":"PDwvRm9udDw8L0YgMSAwIFI+Pj4+",)"
      R"("old2new":[[6,0,1,0]]})");
}

TEST_F(Dump, GoesOnWithTheNumbersOfThePageBefore) {
  const std::string second = line({}, 3);
  EXPECT_THAT(second, HasSubstr(R"("size":[80,50],"rotate":90,)"));
  EXPECT_THAT(second, HasSubstr(R"("crop":[10,10,60,90])"));
  EXPECT_THAT(second, HasSubstr(R"("start":2,"objects":[{"num":2,)"));
  EXPECT_THAT(second, HasSubstr(R"("contentsRc":0,"contents":"",)"));
  EXPECT_EQ(unpacked(textAfter(second, R"("resources":")")), "<</Font<</F 1 0 R/G 2 0 R>>>>");
  // What was known before stands in both tables of the library, and so comes twice.
  EXPECT_THAT(second, HasSubstr(R"("old2new":[[6,0,1,0],[6,0,1,0],[7,0,2,0]])"));
}

TEST_F(Dump, GoesOnBehindTheNumbersOfDestinations) {
  file("in.pdf", pdf()
                     .pageTree({3, 4}, "/MediaBox[0 0 9 9]")
                     .object(3, "<</Type/Page/Annots[<</Dest[4 0 R/Fit]>><</Dest(name)>>]/Metadata 5 0 R>>")
                     .object(4, "<</Type/Page/Metadata 6 0 R>>")
                     .object(5, "<<>>")
                     .object(6, "<<>>")
                     .build());
  EXPECT_THAT(line({}, 2), HasSubstr(R"("start":1,"objects":[{"num":1,)"));
  EXPECT_THAT(line({}, 3), HasSubstr(R"("start":4,"objects":[{"num":4,)"));
}

TEST_F(Dump, StartsWhereItIsTold) {
  EXPECT_THAT(line({"--start", "50"}, 2), HasSubstr(R"("start":50,"objects":[{"num":50,)"));
}

TEST_F(Dump, TakesThePagesAskedFor) {
  EXPECT_THAT(line({"--pages", "2"}, 2), testing::StartsWith(R"({"page":2,"setPageNo":0,)"));
  EXPECT_EQ(line({"--pages", "2"}, 3), "");
}

TEST_F(Dump, GivesDigestsInTheSummary) {
  const std::string first = line({"--summary"}, 2);
  const std::string expected = shell("printf '\\r\\nq Q\\n\\r' | sha256sum | cut -c 1-64 | tr -d '\\n'").out;
  EXPECT_EQ(textAfter(first, R"("contents":")"), expected);
  EXPECT_EQ(textAfter(first, R"("body":")").size(), 64U);
}

TEST_F(Dump, StandsAloneWhenTheFileCanNotBeOpened) {
  file("bad.pdf", "this is no PDF");
  const Outcome outcome = tessel({"dump", "bad.pdf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.out, "{\"init\":1000,\"pages\":0,\"root\":null}\n");
  EXPECT_EQ(outcome.err, "tessel: bad.pdf: not a readable PDF (1000)\n");
}

TEST_F(Dump, HasNothingMoreOfAPageThatCanNotBeSelected) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 9 9]/Contents 3 0 R").build());
  EXPECT_EQ(line({}, 2), R"({"page":1,"setPageNo":1000})");
}

class Info : public RoadTest {};

TEST_F(Info, DescribesRunsOfLikePages) {
  const std::string page = "<</Type/Page/Parent 2 0 R>>";
  file("in.pdf",
       pdf()
           .header("%PDF-1.5")
           .pageTree({3, 4, 5}, "/MediaBox[0 0 612 792]")
           .object(3, page)
           .object(4, page)
           .object(5, "<</Type/Page/Parent 2 0 R/Rotate 90/CropBox[10 10 110.5 210]/TrimBox[20 20 100 200]>>")
           .build());
  const Outcome outcome = tessel({"info", "in.pdf"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out,
            "in.pdf: PDF 1.5, 3 pages\n"
            "  not tagged\n"
            "  pages 1-2: 612 x 792 pt (Letter)  media [0 0 612 792]\n"
            "  page 3: 200 x 100.5 pt, rotated by 90  media [0 0 612 792]  crop [10 10 110.5 210]"
            "  trim [20 20 100 200]\n");
}

TEST_F(Info, WritesALineOfJsonForEachFile) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 20 10]").build());
  const Outcome outcome = tessel({"info", "--json", "in.pdf", "in.pdf"});
  const std::string line =
      R"({"file":"in.pdf","version":"1.7","encryption":null,"pageCount":1,"pages":[{"page":1,"size":[20,10],"rotate":0,"boxes":)"
      R"({"media":[0,0,20,10],"crop":[0,0,20,10],"bleed":[0,0,20,10],"trim":[0,0,20,10],"art":[0,0,20,10]}}],"tagged":false,"claims":[],"outputIntents":[],)"
      R"("annotations":{},"fields":{},"layers":[],"destinations":[]})"
      "\n";
  EXPECT_EQ(outcome.out, line + line);
}

TEST_F(Info, CountsWhatThereIsBesidesPages) {
  file("in.pdf",
       pdf()
           .onePage("/MediaBox[0 0 20 10]/Annots[10 0 R 11 0 R<</Subtype/Link>>]",
                    "/AcroForm<</Fields[20 0 R 21 0 R]>>/Names<</Dests 30 0 R>>/Dests<</old[3 0 R/Fit]>>"
                    "/OCProperties<</OCGs[40 0 R 41 0 R 42 0 R]/D<</BaseState/OFF/ON[41 0 R]>>>>")
           .object(10, "<</Subtype/Link>>")
           .object(11, "<</Subtype/Text>>")
           .object(20, "<</T(a)/FT/Ch/Kids[22 0 R 23 0 R 20 0 R]>>")
           .object(21, "<</T(b)/FT/Tx/Kids[24 0 R]>>")
           .object(22, "<</T(x)/Ff 131072>>")
           .object(23, "<</T(y)/FT/Sig>>")
           .object(24, "<</Subtype/Widget>>")
           .object(30, "<</Kids[31 0 R 32 0 R 30 0 R]>>")
           .object(31, "<</Names[(one) 3 0 R(two) 3 0 R]>>")
           .object(32, "<</Names[<E4> 3 0 R]>>")
           .object(40, "<</Name(Off)>>")
           .object(41, "<</Name(On)>>")
           .object(42, "<</Name<FEFF00E4>>>")
           .build());
  EXPECT_THAT(tessel({"info", "in.pdf"}).out, HasSubstr("  annotations: 2 Link, 1 Text\n"
                                                        "  form fields: 1 combo, 1 signature, 1 text\n"
                                                        "  layers: 3, 2 of them off\n"
                                                        "  named destinations: 4\n"));
  EXPECT_THAT(tessel({"info", "--json", "in.pdf"}).out,
              HasSubstr(R"("annotations":{"Link":2,"Text":1},"fields":{"combo":1,"signature":1,"text":1},)"
                        R"("layers":[{"name":"Off","shown":false},{"name":"On","shown":true},)"
                        "{\"name\":\"\xC3\xA4\",\"shown\":false}],"
                        "\"destinations\":[\"old\",\"one\",\"two\",\"\xC3\xA4\"]}"));
}

TEST_F(Info, GoesOnBehindABadFile) {
  file("bad.pdf", "this is no PDF");
  file("in.pdf", pdf().onePage("/MediaBox[0 0 20 10]").build());
  const Outcome text = tessel({"info", "bad.pdf", "in.pdf"});
  EXPECT_EQ(text.status, 1);
  EXPECT_EQ(text.err, "tessel: bad.pdf: not a readable PDF (1000)\n");
  EXPECT_THAT(text.out, HasSubstr("in.pdf: PDF 1.7, 1 page\n"));
  const Outcome json = tessel({"info", "--json", "bad.pdf"});
  EXPECT_EQ(json.out, R"({"file":"bad.pdf","error":{"code":1000,"reason":"not a readable PDF"}})"
                      "\n");
}

}  // namespace
}  // namespace tessel_test
