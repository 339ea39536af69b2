#include "TesselHost/host_form.h"

#include <fmt/format.h>

#include <algorithm>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_number.h"
#include "TesselHost/host_paper.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;
namespace Result = TESSEL::Result;

constexpr std::string_view emptyDictionary = "<<>>";

bool isReference(std::string_view value) { return !value.empty() && value.back() == 'R'; }

/// The value, unless it is neither a dictionary nor a reference to one.
std::string_view orEmptyDictionary(std::string_view value) {
  return isDictionary(value) || isReference(value) ? value : emptyDictionary;
}

bool isBlankDictionary(std::string_view value) {
  return isDictionary(value) && valueAt(insideOf(value)).empty();
}

/// The value of /Group when it tells of transparency: a dictionary or a reference, which isn't looked into.
std::string groupIn(std::string_view pageDictionary) {
  const std::string_view group = valueOfKey(pageDictionary, "/Group");
  return isDictionary(group) || isReference(group) ? std::string(group) : std::string();
}

double userUnitIn(std::string_view pageDictionary) {
  const auto unit = parseDecimal(valueOfKey(pageDictionary, "/UserUnit"));
  return unit && *unit > 0 ? *unit : 1.0;
}

std::string boxText(const Rect& box) {
  return fmt::format("[{} {} {} {}]", decimal(box.x), decimal(box.y), decimal(box.x + box.width),
                     decimal(box.y + box.height));
}

std::string matrixText(const Affine& m) {
  return fmt::format("[{} {} {} {} {} {}]", decimal(m.a), decimal(m.b), decimal(m.c), decimal(m.d),
                     decimal(m.e), decimal(m.f));
}

/// A renderer smooths the edge of a clip, so a form that is cut at the sheet's own edge would fade there.
constexpr double edgeAllowance = 1;  // points

Rect clipOf(const Rect& visible, FormUse use) {
  if (use == FormUse::placed) return visible;
  return {visible.x - edgeAllowance, visible.y - edgeAllowance, visible.width + 2 * edgeAllowance,
          visible.height + 2 * edgeAllowance};
}

std::string formEntries(const PageGeometry& geometry, const PageForm& form, FormUse use,
                        std::string_view resources) {
  std::string entries = fmt::format("/Type/XObject/Subtype/Form/BBox{}/Matrix{}/Resources {}",
                                    boxText(clipOf(geometry.visible, use)),
                                    matrixText(upright(geometry.visible, geometry.quarterTurns)), resources);
  if (!form.group.empty() && use == FormUse::placed) entries += "/Group " + form.group;
  return entries;
}

/// Whether `value` is a reference to an object that the output has, or gets from this page.
bool isWrittenReference(std::string_view value, const CTesselPage& page) {
  if (!isReference(value)) return false;
  const auto number = parseCount(value.substr(0, value.find(' ')));
  const auto found = number ? page.find({*number, 0}) : page.end();
  return number && (found == page.end() || !found->second.empty());
}

}  // namespace

void warnOfPage(Observer& observer, const Source& source, int page, const std::string& what) {
  observer.warn(fmt::format("{}: page {}: {}", source.path(), page, what));
}

PageForm FormMaker::make(Source& source, int page, const PageGeometry& geometry, int number) {
  PageForm form;
  form.number = number;
  form.size = geometry.size();
  const std::string dictionary = source.pages().getPageRootString(0);
  form.group = groupIn(dictionary);
  form.userUnit = userUnitIn(dictionary);
  form.number = writeForm(source, page, geometry, form, dictionary);
  return form;
}

/// The number of the form's object: another one than `form` has when the output holds an equal one.
int FormMaker::writeForm(Source& source, int page, const PageGeometry& geometry, const PageForm& form,
                         std::string_view dictionary) {
  std::string entries = formEntries(geometry, form, use, resourcesOf(source, page, form.number, dictionary));
  const bool stored = source.pages().getStoredContents(storedContents, storedFilters);
  const std::string_view data = stored ? storedContents : contentsOf(source, page);
  if (stored) entries += storedFilters;
  const int number = forms.numberFor(entries, data, form.number);
  if (number != form.number)
    writer.giveBack(form.number);
  else if (stored)
    writer.writeStream(number, entries, data);
  else
    writer.writePackedStream(number, entries, data);
  return number;
}

std::string FormMaker::resourcesOf(Source& source, int page, int formNumber, std::string_view dictionary) {
  // What the page itself has is complete. The library's answer joins it with dictionaries that it met
  // elsewhere, and only asked with a number it looks into those of the page's ancestors.
  const std::string_view own = valueOfKey(dictionary, "/Resources");
  if (isDictionary(own) || isWrittenReference(own, source.pages())) return std::string(own);
  std::string indirect = askForResources(source, page, 0);
  if (!isBlankDictionary(indirect)) return indirect;
  std::string inherited = askForResources(source, page, formNumber);
  // Asked with a number the library encrypts for it; the writer wants plain text.
  return writer.protection() ? writer.protection()->withStringsDecrypted(formNumber, inherited) : inherited;
}

std::string FormMaker::askForResources(Source& source, int page, int pageNumber) {
  const std::string* resources = nullptr;
  const int result = source.pages().getPageRes(&resources, pageNumber);
  if (result == Result::success) return std::string(orEmptyDictionary(valueAt(*resources)));
  warnOfPage(observer, source, page, fmt::format("resources: {} ({})", reasonOf(result), result));
  return std::string(emptyDictionary);
}

std::string_view FormMaker::contentsOf(Source& source, int page) {
  const std::string* contents = nullptr;
  const int result = source.pages().getPageContents(&contents);
  if (result == Result::success) return *contents;
  warnOfPage(observer, source, page,
             fmt::format("content: {} ({}), its place stays empty", reasonOf(result), result));
  return {};
}

}  // namespace TesselHost
