// A password and an encryption dictionary that an enemy wrote, in a file that is sound otherwise.
#include <sstream>

#include "Fuzz/fuzz_target.h"
#include "TesselPage/tessel_page.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string password = input.line();
  const std::string file =
      fuzz::pdfOf({"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1/MediaBox[0 0 9 9]>>",
                   "<</Type/Page/Parent 2 0 R/Contents 4 0 R/Resources<</Note(some text)/Font 6 0 R>>>>",
                   "<</Length 16>>\nstream\n0123456789abcdef\nendstream", "<<" + input.rest() + ">>",
                   "<</F1(a string of a font)>>"},
                  "/Encrypt 5 0 R/ID[<0123456789abcdef0123456789abcdef><00>]");
  std::istringstream stream(file);
  TESSEL::CTesselPage page(stream, password);
  if (page.init() != 0) return 0;
  page.SetSourcePassword("owner");
  if (page.setPageNo(1) != 0) return 0;
  page.setStartObjNo(10);
  const std::string* text = nullptr;
  page.getPageContents(&text);
  page.getPageRes(&text, 5);
  return 0;
}
