#include "TesselHost/host_placer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <set>

#include "TesselHost/host_annotations.h"
#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_paper.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;
namespace Result = TESSEL::Result;

TESSEL::PgCmTD asPlacement(const Affine& m) {
  return {static_cast<float>(m.a), static_cast<float>(m.b), static_cast<float>(m.c),
          static_cast<float>(m.d), static_cast<float>(m.e), static_cast<float>(m.f)};
}

/// The first number behind those that the harvest has given.
int numberBehind(const CTesselPage& page, const std::vector<TESSEL::DestTD>& destinations, int start) {
  int behind = page.empty() ? start : std::max(start, page.rbegin()->first.first + 1);
  for (const auto& pair : page.getNewObjectPairs()) behind = std::max(behind, pair.second.first + 1);
  for (const auto& destination : destinations) behind = std::max(behind, destination.objNum + 1);
  return behind;
}

/// Tells placements apart that turn or mirror a page differently.
int orientationOf(const Affine& m) {
  constexpr double stepsPerRadian = 1000;
  const bool mirrored = m.a * m.d - m.b * m.c < 0;
  return 2 * static_cast<int>(std::lround(std::atan2(m.b, m.a) * stepsPerRadian)) + (mirrored ? 1 : 0);
}

std::string stemOf(const std::string& path) { return std::filesystem::path(path).stem().string(); }

}  // namespace

/// What is known of a source while its pages come.
struct PagePlacer::SourceState {
  explicit SourceState(Source& source) : objects(source.pages()) {}

  SourceObjects objects;
  std::unordered_map<int, PageForm> forms;  ///< by page
  Destinations destinations;
  std::optional<SourceFields> fields;
  std::set<int> orientations;  ///< of the pages with annotations
};

PagePlacer::PagePlacer(ObjectWriter& aWriter, Observer& anObserver, FormUse use, const Extras& someExtras)
    : writer(aWriter),
      observer(anObserver),
      extras(someExtras),
      forms(aWriter, anObserver, use),
      fields(aWriter) {}

PagePlacer::~PagePlacer() = default;

PagePlacer::SourceState& PagePlacer::stateOf(Source& source) {
  std::unique_ptr<SourceState>& state = states[&source];
  if (state) return *state;
  state = std::make_unique<SourceState>(source);
  CTesselPage& reader = source.pages();
  reader.setAnnotsEnable(static_cast<TESSEL::TESSEL_AnnotsEnableE>(extras.annotations.subtypes));
  reader.setAcroFormsEnable(extras.fields());
  if (extras.fields() != TESSEL::AcroFormsEnableNone)
    state->fields.emplace(fields, state->objects, stemOf(source.path()));
  return *state;
}

PlacedPage PagePlacer::place(Source& source, int page, const SheetPlace& place) {
  SourceState& state = stateOf(source);
  const auto known = state.forms.find(page);
  const bool isNew = known == state.forms.end();
  if (!isNew && known->second.number == 0) return {known->second, {}};
  const auto listed = extras.anyAnnotation() ? listedAnnotations(state.objects, page) : ListedAnnotations{};
  if (!isNew && !listed.any) return {known->second, {}};
  const auto geometry = source.geometryOf(page);
  PageForm& form = state.forms[page];
  if (isNew) form = blank(source, page);
  if (!geometry || !select(source, page)) return {form, {}};

  const int number = isNew ? writer.reserve() : 0;
  const Affine matrix = combined(upright(geometry->visible, geometry->quarterTurns), place.matrix);
  state.destinations.notePlace(page, {place.sheet, matrix, geometry->visible, place.wholeSheet});
  source.pages().setPageCm(asPlacement(matrix));
  if (listed.any) prepareAnnotations(state, source, listed.objects, orientationOf(matrix));
  present = &digests[listed.any ? orientationOf(matrix) : 0];
  const int start = harvest(state, source, place);
  PlacedPage placed;
  turned.clear();
  onSheet.clear();
  if (listed.any) placed.annotations = takeAnnotations(state, source, page, turns(matrix));
  if (isNew) form = forms.make(source, page, *geometry, number);
  writeObjects(state, source.pages(), start, matrix);
  placed.form = form;
  return placed;
}

/// The empty place of a page.
PageForm PagePlacer::blank(Source& source, int page) {
  PageForm form;
  const auto geometry = source.geometryOf(page);
  form.size = geometry ? geometry->size() : letterSize;
  if (!geometry) warnOfPage(observer, source, page, "no usable size, its place stays empty");
  return form;
}

bool PagePlacer::select(Source& source, int page) {
  const int result = source.pages().setPageNo(page);
  if (result == Result::success) return true;
  warnOfPage(observer, source, page, fmt::format("{} ({}), its place stays empty", reasonOf(result), result));
  return false;
}

/// Annotations are written anew for each place, and appearances for each way that pages lie.
void PagePlacer::prepareAnnotations(SourceState& state, Source& source,
                                    const std::vector<Identity>& annotations, int orientation) {
  std::vector<Identity> again = annotations;
  state.orientations.insert(orientation);
  if (state.orientations.size() > 1)
    for (const Identity& annotation : annotations) {
      const auto resolve = [&state](std::string_view value) { return state.objects.resolved(value); };
      const auto streams = appearancesOf(state.objects.valueOf(annotation), resolve);
      again.insert(again.end(), streams.begin(), streams.end());
    }
  source.pages().harvestAgain(again);
}

/// @return the first number that the harvest could give
int PagePlacer::harvest(SourceState& state, Source& source, const SheetPlace& place) {
  CTesselPage& page = source.pages();
  page.setOld2NewObjectVector(page.getNewObjectPairs());
  page.setStreamObjMap(present);
  page.setCurPageObj(place.sheet, 0);
  if (writer.protection()) writer.protection()->giveKeyTo(page);
  const int start = writer.nextNumber();
  page.setStartObjNo(start);
  const auto destinations = page.getDestVector();
  state.destinations.noteWanted(destinations);
  writer.reserveThrough(numberBehind(page, destinations, start) - 1);
  oldIds.clear();
  for (const auto& [old, fresh] : page.getNewObjectPairs()) oldIds.emplace(fresh.first, old);
  return start;
}

std::vector<std::string> PagePlacer::takeAnnotations(SourceState& state, Source& source, int page,
                                                     bool turnsPage) {
  const std::string* text = nullptr;
  source.pages().getPageAnnots(&text);
  std::vector<std::string> annotations;
  if (!text) {
    warnOfPage(observer, source, page, "its annotations can't be read, they are left out");
    return annotations;
  }
  for (const auto value : valuesIn(*text)) {
    if (!takeAnnotation(state, source.pages(), value)) continue;
    annotations.emplace_back(value);
    if (turnsPage) noteTurned(source.pages(), value);
  }
  return annotations;
}

/// Whether an element of /Annots stands for an annotation that goes with the page.
bool PagePlacer::takeAnnotation(SourceState& state, const CTesselPage& page, std::string_view value) {
  if (isDictionary(value)) return isWanted(extras, value);
  const auto object = referenceIn(value);
  const auto body = object ? page.find(*object) : page.end();
  if (body == page.end() || body->second.empty()) return false;
  onSheet.insert(*object);
  const auto old = oldIds.find(object->first);
  if (state.fields && old != oldIds.end()) state.fields->notePlaced(old->second, object->first);
  return true;
}

/// The library turns an appearance that has a matrix; the others are turned here.
void PagePlacer::noteTurned(const CTesselPage& page, std::string_view annotation) {
  const auto resolve = [&page](std::string_view value) {
    const auto object = referenceIn(value);
    const auto body = object ? page.find(*object) : page.end();
    return body == page.end() ? std::string(value) : std::string(valueAt(body->second));
  };
  const std::string dictionary = resolve(annotation);
  if (staysUpright(dictionary)) return;
  const auto streams = appearancesOf(dictionary, resolve);
  turned.insert(streams.begin(), streams.end());
}

void PagePlacer::writeObjects(SourceState& state, const CTesselPage& page, int from, const Affine& matrix) {
  for (auto entry = page.lower_bound({from, 0}); entry != page.end(); ++entry) {
    const auto& [object, body] = *entry;
    // An object that couldn't be read stays a free entry, which is null to a reader.
    if (body.empty()) continue;
    // An annotation of another page, which something has led to; that page brings it, placed for its sheet.
    if (onSheet.count(object) == 0 && isPageBound(body)) continue;
    const auto old = oldIds.find(object.first);
    if (state.fields && old != oldIds.end() && state.fields->take(old->second, object, body)) continue;
    writer.writeHarvested(object, turned.count(object) == 0 ? body : turnedAppearance(body, matrix));
    std::string digest = page.getStreamDigest(object);
    if (!digest.empty()) present->emplace(std::move(digest), object);
  }
}

void PagePlacer::finishSource(Source& source) {
  const auto found = states.find(&source);
  if (found == states.end()) return;
  SourceState& state = *found->second;
  if (state.fields) state.fields->finish(source.pages());
  if (extras.layers) layers.add(source.pages());
  lost += state.destinations.write(writer);
  states.erase(found);
}

std::string PagePlacer::catalogEntries() { return fields.write() + layers.write(writer); }

}  // namespace TesselHost
