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

/// Writes pages as forms, with all the objects that they need. Objects that pages share, and equal streams of
/// whatever source, are written once.
class FormMaker {
 public:
  /// Writer and observer must outlive the maker.
  FormMaker(ObjectWriter& aWriter, Observer& anObserver, FormUse aUse)
      : writer(aWriter), observer(anObserver), use(aUse) {}

  /// Writes a page, counted from 1. A page that can't be read, or has no size, becomes an empty place and a
  /// warning. The source's pages must all be made by one maker.
  PageForm make(Source& source, int page);

 private:
  bool select(Source& source, int page);
  void harvest(TESSEL::CTesselPage& page, int formNumber);
  void writeObjects(const TESSEL::CTesselPage& page);
  int writeForm(Source& source, int page, const PageGeometry& geometry, const PageForm& form,
                std::string_view dictionary);
  std::string resourcesOf(Source& source, int page, int formNumber, std::string_view dictionary);
  std::string askForResources(Source& source, int page, int pageNumber);
  std::string_view contentsOf(Source& source, int page);
  void warn(const Source& source, int page, const std::string& what);

  ObjectWriter& writer;
  Observer& observer;
  FormUse use;
  TESSEL::CTesselPage::StreamObjMap digests;  ///< streams that the output has
  EqualStreams forms;
  std::string storedContents;
  std::string storedFilters;
};

}  // namespace TesselHost
