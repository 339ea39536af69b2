// The library alone, as the rivals are: open FILE | boxes FILE. What writes a file is measured through the
// `tessel` program.

#include <cstdio>
#include <cstring>

#include "TesselPage/tessel_page.h"

namespace {

using TESSEL::CTesselPage;

double sumOfBoxes(const CTesselPage& source) {
  double sum = 0;
  for (int page = 1; page <= source.getPageCount(); ++page)
    for (int box = CTesselPage::mediaBox; box <= CTesselPage::artBox; ++box) {
      float l = 0, b = 0, r = 0, t = 0;
      source.getPageBox(page, static_cast<CTesselPage::EBox>(box), l, b, r, t);
      sum += l + b + r + t;
    }
  return sum;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) return 2;
  CTesselPage source(arguments[2], "");
  if (source.init() != 0) return 1;
  if (std::strcmp(arguments[1], "boxes") == 0)
    std::printf("%.6g\n", sumOfBoxes(source));
  else
    std::printf("%d\n", source.getPageCount());
  return 0;
}
