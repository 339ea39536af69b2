#include <gtest/gtest.h>

#include "TesselPage/Model/tessel_ocproperties.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Model/tessel_pages.h"
#include "Tests/Writer/merge_verbs.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

/// Copies pages as any other object.
class WholePage : public CPage {
 public:
  bool WriteObj(CDestFile& dest, CSourFile& source, bool* dropped) override {
    return CObj::WriteObj(dest, source, dropped);
  }
};

class WholePages : public CDestFile {
 public:
  bool WritePage(CSourFile& source, const SObj& page) override {
    nodes.push_back(source.newRoot);
    WholePage writer;
    writer.setIdentity(page);
    return writer.Write(*this, source);
  }
  std::vector<SObj> nodes;  ///< of the page tree, as they were known to each page
};

const char* const boxed = "<</Type/Page/MediaBox[0 0 9 9]>>";

template <class Output>
void merge(Output& dest, CSourFile& source) {
  dest.files = {{1, &source}};
  ASSERT_EQ(dest.SetReadFileAndPage("1:0"), 0);
  dest.Read();
  dest.TidyObj();
  dest.Write();
}

}  // namespace

TEST(MergePages, AreCopiedWithoutTheirBoxUnlessTheCallerWritesThem) {
  const Source source = pdf().pageTree({3, 4}).object(3, boxed).object(4, boxed).open();
  CDestFile dest;
  merge(dest, *source);
  EXPECT_EQ(dest.find("/MediaBox"), std::string::npos);
  EXPECT_NE(dest.find("obj <</Type/Page>>\nendobj"), std::string::npos) << dest;
}

TEST(MergePages, CallerMayWriteThemOtherwiseIntoANodeThatHasItsNumber) {
  const Source source = pdf().pageTree({3, 4}).object(3, boxed).object(4, boxed).open();
  WholePages dest;
  merge(dest, *source);
  ASSERT_EQ(dest.nodes.size(), 2U);
  EXPECT_EQ(dest.nodes[0], source->newRoot);
  EXPECT_EQ(dest.pages.at(source->newRoot)->kids.size(), 2U);
  EXPECT_NE(dest.find("2 0 obj <</Type/Page/MediaBox[0 0 9 9]>>\nendobj"), std::string::npos) << dest;
}

TEST(MergeObjects, OfAContentsArrayThatIsAnObjectAreWrittenToo) {
  const Source source = pdf()
                            .pageTree({3})
                            .object(3, "<</Type/Page/Contents 4 0 R>>")
                            .object(4, "[5 0 R 6 0 R]")
                            .stream(5, {}, "q")
                            .stream(6, {}, "Q")
                            .open();
  CDestFile dest;
  merge(dest, *source);
  EXPECT_NE(dest.find("3 0 obj [ 4 0 R 5 0 R]\nendobj"), std::string::npos) << dest;
  EXPECT_NE(dest.find("5 0 obj <</Length 1 >>\nstream\r\nQ"), std::string::npos) << dest;
}

TEST(MergeTable, EntryOfTheObjectBehindANewOneIsRight) {
  CSourFile none{std::string()};
  CDestFile dest;
  COCProperties layers;
  layers.setIdentity(SObj(1, 0));
  layers.Write(dest, none);
  const std::size_t behind = dest.size();
  layers.setIdentity(SObj(2, 0));
  layers.Write(dest, none);
  EXPECT_EQ(dest.fileInfo.objEntries.at(SObj(2, 0)).entryOffset, static_cast<long long>(behind));
}
