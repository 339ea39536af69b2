// The value search on any text, against its steps taken one by one, and in a file whose objects an enemy
// wrote.
#include <sstream>

#include "Fuzz/fuzz_target.h"
#include "TesselPage/Finder/tessel_finderexception.h"
#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/tessel_page.h"
#include "Tests/Finder/finder_compare.h"

namespace {

/// The steps taken one by one look at a text once for each key.
constexpr std::size_t longestCompared = 400;

void searchFile(const std::string& catalogEntries, const std::string& object) {
  std::istringstream stream(fuzz::pdfOf({"<</Type/Catalog/Pages 2 0 R/Metadata 5 0 R" + catalogEntries + ">>",
                                         "<</Type/Pages/Kids[3 0 R]/Count 1>>",
                                         "<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>", object, object},
                                        "/Info 4 0 R"));
  TESSEL::CTesselPage page(stream, "");
  if (page.init() != 0) return;
  page.getVersion();
  icu::UnicodeString text;
  for (unsigned short i = 0; i < page.getOutputIntentsCount() && i < 4; ++i) {
    page.getOPIInfo(i, text);
    page.getOPIDestOutputProfile(i);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  TESSEL::getXFString(text);
  if (text.size() <= longestCompared && text.find('R') == std::string::npos) {
    TESSEL::CSourFile nothing{std::string()};
    finder_compare::Answers answers;
    try {
      finder_compare::ask(text, &nothing, answers);
      fuzz::require(finder_compare::told(answers.fast) == finder_compare::told(answers.literal));
    } catch (const TESSEL::BaseException&) {
      // Data that can't be decoded stop both.
    }
  }
  fuzz::Input input(data, size);
  const std::string entries = input.line();
  searchFile(entries, input.rest());
  return 0;
}
