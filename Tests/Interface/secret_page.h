#pragma once

#include <string>

#include "TesselPage/tessel_page.h"
#include "Tests/Support/hex.h"
#include "Tests/Support/pdf_builder.h"

/// A file whose strings and streams a wrong key would spoil, and whether it reads as it should.
namespace tessel_test {

inline const std::string content = "0.25 g 10 10 80 80 re f";
inline const std::string fontData = "not much of a font";

/// A page whose content, strings and streams a wrong key would spoil.
inline std::string plainFile() {
  return pdf()
      .onePage(
          "/MediaBox[0 0 200 200]/Contents 4 0 R/Resources<</Properties<</M 5 0 R/D<</T(direct "
          "text)>>>>/Font<</F 6 0 R>>>>",
          "/Metadata 8 0 R")
      .stream(4, "", content)
      .object(5, "<</S(a secret text)/H<736563726574>>>")
      .stream(6, "/Subtype/Type1C", fontData)
      .object(7, "<</Title(the title)>>")
      .stream(8, "/Type/Metadata/Subtype/XML", "<xml/>")
      .trailer("/Info 7 0 R/ID[<30313233343536373839616263646566><31>]")
      .build();
}

/// Whether a string of that value stands in the text, literal or hexadecimal.
inline bool holdsString(const std::string& text, const std::string& value) {
  return text.find('(' + value + ')') != text.npos || text.find('<' + toHex(value) + '>') != text.npos;
}

inline std::string allTexts(const TESSEL::CTesselPage& page) {
  std::string all;
  for (const auto& [object, text] : page) all += text;
  return all;
}

/// Whether the page's content, strings and streams are as in the plain file.
inline bool readsPlain(TESSEL::CTesselPage& page) {
  const std::string* found = nullptr;
  if (page.setPageNo(1) != 0 || page.getPageContents(&found) != 0) return false;
  if (found->find(content) == std::string::npos) return false;
  page.setStartObjNo(10);
  const std::string texts = allTexts(page);
  return holdsString(texts, "a secret text") && holdsString(texts, "secret") &&
         texts.find(fontData) != std::string::npos && holdsString(page.getPageRootString(0), "direct text");
}

inline bool opens(const std::string& file, const std::string& password) {
  OpenPage open = PdfBuilder::openPageBytes(file, password);
  return open.result == 0 && readsPlain(*open);
}

}  // namespace tessel_test
