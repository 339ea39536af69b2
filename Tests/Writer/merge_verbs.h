#pragma once

#include <string>
#include <utility>
#include <vector>

#include "TesselPage/Structure/tessel_sourfile.h"
#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Support/pdf_builder.h"

/// Sources and an output, for tests that merge pages.
namespace tessel_test {

/// Files and pages, both from 1.
using Selection = std::vector<std::pair<int, int>>;

/// Pages 3, 4, 5, each with a text and with resources 13, 14, 15 that hold the text too: "a3", "a13".
inline PdfBuilder threePages(const std::string& mark) {
  PdfBuilder file = pdf().pageTree({3, 4, 5});
  for (const int page : {3, 4, 5}) {
    const std::string number = std::to_string(page);
    file.object(page, "<</Type/Page/N(" + mark + number + ")/Resources 1" + number + " 0 R>>");
    file.object(page + 10, "<</N(" + mark + "1" + number + ")>>");
  }
  return file;
}

/// An output with two sources, of three pages "a" and three pages "b".
struct Merge {
  Merge() { dest.files = {{1, first.file.get()}, {2, second.file.get()}}; }

  int select(const std::string& text) { return dest.SetReadFileAndPage(text); }

  Source first = threePages("a").open();
  Source second = threePages("b").open();
  TESSEL::CDestFile dest;
};

}  // namespace tessel_test
