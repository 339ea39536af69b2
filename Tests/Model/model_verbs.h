#pragma once

#include <string>
#include <vector>

#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "Tests/Support/pdf_builder.h"

/// What the tests of the document readers do again and again.
namespace tessel_test {

using ObjectNumbers = std::vector<int>;

/// Reads a page, counted from 1, as the front door selects it.
inline bool readPage(const Source& source, std::size_t page = 1) {
  TESSEL::CPage reader;
  reader.setIdentity(source->pageList.at(page - 1));
  return reader.fromStream(*source);
}

/// Numbers of the objects that the page readers have entered, but for the mark of a climb that found nothing
/// (number 0).
inline ObjectNumbers harvested(const Source& source) {
  ObjectNumbers found;
  for (int number : numbers(source->pageObjects))
    if (number != 0) found.push_back(number);
  return found;
}

/// Flags of a page object; -1 when there is none of that number.
inline int flagsOf(const Source& source, int number) {
  const auto found = source->pageObjects.find(TESSEL::SObj(number, 0));
  return found == source->pageObjects.end() ? -1 : found->objFlags;
}

}  // namespace tessel_test
