#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "TesselHost/host_destinations.h"
#include "TesselHost/host_extras.h"
#include "TesselHost/host_form.h"
#include "TesselHost/host_forms.h"
#include "TesselHost/host_layers.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_objects.h"
#include "TesselHost/host_observer.h"
#include "TesselHost/host_source.h"
#include "TesselHost/host_sourceobjects.h"

namespace TesselHost {

/// Where a page goes.
struct SheetPlace {
  int sheet = 0;            ///< number of the sheet's object
  Affine matrix;            ///< from the page's upright coordinates to the sheet's
  bool wholeSheet = false;  ///< the page is all of the sheet
};

/// What a sheet gets of a page.
struct PlacedPage {
  PageForm form;
  std::vector<std::string> annotations;  ///< references and dictionaries, in the output's numbering
};

/// Brings pages of sources into the output, with all that they need: their forms, shared objects, annotations
/// with the places that these lead to, fields and layers. Objects that pages share, and equal streams of
/// whatever source, are written once.
class PagePlacer {
 public:
  /// Writer and observer must outlive the placer.
  PagePlacer(ObjectWriter& aWriter, Observer& anObserver, FormUse use, const Extras& someExtras);
  ~PagePlacer();
  PagePlacer(const PagePlacer&) = delete;
  PagePlacer& operator=(const PagePlacer&) = delete;

  /// Writes what a page, counted from 1, needs at this place. A page that can't be read, or has no size,
  /// becomes an empty place and a warning. A page may come more than once.
  PlacedPage place(Source& source, int page, const SheetPlace& place);
  /// Writes what belongs to all pages of a source together. Once for each source, behind its last page; the
  /// source isn't needed any more.
  void finishSource(Source& source);
  /// Writes what belongs to all sources together. Once, at the end.
  /// @return entries for the catalog
  std::string catalogEntries();
  /// Links to pages that didn't come.
  int lostLinks() const { return lost; }

 private:
  struct SourceState;

  SourceState& stateOf(Source& source);
  PageForm blank(Source& source, int page);
  bool select(Source& source, int page);
  int harvest(SourceState& state, Source& source, const SheetPlace& place);
  static void prepareAnnotations(SourceState& state, Source& source, const std::vector<Identity>& annotations,
                                 int orientation);
  std::vector<std::string> takeAnnotations(SourceState& state, Source& source, int page, bool turnsPage);
  bool takeAnnotation(SourceState& state, const TESSEL::CTesselPage& page, std::string_view value);
  void noteTurned(const TESSEL::CTesselPage& page, std::string_view annotation);
  void writeObjects(SourceState& state, const TESSEL::CTesselPage& page, int from, const Affine& matrix);

  ObjectWriter& writer;
  Observer& observer;
  Extras extras;
  FormMaker forms;
  FormFields fields;
  Layers layers;
  std::map<const Source*, std::unique_ptr<SourceState>> states;
  /// Streams that the output has. Appearances are turned with their page, so pages that lie differently share
  /// none.
  std::map<int, TESSEL::CTesselPage::StreamObjMap> digests;
  TESSEL::CTesselPage::StreamObjMap* present = nullptr;  ///< of the page at hand
  std::unordered_map<int, Identity> oldIds;              ///< by number in the output, of the page at hand
  std::set<Identity> onSheet;                            ///< annotations of the page at hand
  std::set<Identity> turned;  ///< appearances of the page at hand that turn with it
  int lost = 0;
};

}  // namespace TesselHost
