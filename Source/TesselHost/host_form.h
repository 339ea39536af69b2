#pragma once

#include <string>
#include <string_view>

#include "TesselHost/host_equalstreams.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_objects.h"
#include "TesselHost/host_observer.h"
#include "TesselHost/host_source.h"

namespace TesselHost {

/// A page of a source as a form XObject of the output (ISO 32000-2, 8.10): upright, its lower left corner at
/// the origin.
struct PageForm {
  int number = 0;     ///< of the form's object; 0 when there is nothing to draw
  Size size;          ///< in points; that of a Letter sheet when the page has none
  std::string group;  ///< value of the page's /Group in the output's numbering; empty when it has none
  double userUnit = 1;
};

/// What a form is made for. A page that is all of its sheet is drawn straight into it: the sheet has the
/// page's transparency group and cuts at the page's edge, so the form needs neither, and a renderer makes of
/// it what it makes of the page.
enum class FormUse { placed, wholeSheet };

/// Writes pages as forms. Equal forms, of whatever source, are written once.
class FormMaker {
 public:
  /// Writer and observer must outlive the maker.
  FormMaker(ObjectWriter& aWriter, Observer& anObserver, FormUse aUse)
      : writer(aWriter), observer(anObserver), use(aUse) {}

  /// Writes the form of the page that the source has selected and harvested, counted from 1.
  /// @param number  for the form's object; given back when the output has an equal one
  PageForm make(Source& source, int page, const PageGeometry& geometry, int number);

 private:
  int writeForm(Source& source, int page, const PageGeometry& geometry, const PageForm& form,
                std::string_view dictionary);
  std::string resourcesOf(Source& source, int page, int formNumber, std::string_view dictionary);
  std::string askForResources(Source& source, int page, int pageNumber);
  std::string_view contentsOf(Source& source, int page);

  ObjectWriter& writer;
  Observer& observer;
  FormUse use;
  EqualStreams forms;
  std::string storedContents;
  std::string storedFilters;
};

/// Tells of trouble with a page.
void warnOfPage(Observer& observer, const Source& source, int page, const std::string& what);

}  // namespace TesselHost
