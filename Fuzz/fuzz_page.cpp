// A file that an enemy wrote: opened, its first pages harvested with everything that the front door hands
// over.
#include <algorithm>
#include <map>
#include <sstream>

#include "Fuzz/fuzz_target.h"
#include "TesselPage/tessel_page.h"

using TESSEL::CTesselPage;

namespace {

constexpr int mostPages = 4;

void takePage(CTesselPage& page, int number) {
  if (page.setPageNo(number) != 0) return;
  page.setStartObjNo(10);
  const std::string* text = nullptr;
  page.getPageContents(&text);
  page.getPageRes(&text, 5);
  page.getPageAnnots(&text);
  page.getAcroFormFields(&text, 6);
  page.getNames(&text);
  std::string data, entries;
  page.getStoredContents(data, entries);
  page.getPageRootString(7);
  float w = 0, h = 0, x = 0, y = 0;
  page.getPageSize(w, h);
  page.getPageSizeEx(x, y, w, h);
  for (auto entry = page.begin(); entry != page.end(); ++entry) {
    std::string digest;
    CTesselPage::isStreamObj(entry->second, digest);
    page.getStreamDigest(entry->first);
    page.calcStreamLength(entry);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
  CTesselPage page(stream, "");
  if (page.init() != 0) return 0;
  page.setAnnotsEnable(TESSEL::AnnotsEnableAll);
  page.setAcroFormsEnable(TESSEL::AcroFormsEnableAll);
  for (int number = 1; number <= std::min(page.getPageCount(), mostPages); ++number) takePage(page, number);
  page.getRootString(3);
  page.getVersion();
  page.getOPIDestOutputProfile(0);
  std::map<CTesselPage::Identity, bool> shown;
  std::vector<CTesselPage::Identity> order;
  page.getCatalogOCProperties(shown, order);
  return 0;
}
