// What a host needs to paint the selected page: its content and its resources.

#include <sstream>
#include <string_view>

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_page_writer.h"
#include "TesselPage/Interface/tessel_pageinfo.h"
#include "TesselPage/Interface/tessel_resourcemerger.h"
#include "TesselPage/Interface/tessel_storedstream.h"
#include "TesselPage/Structure/tessel_filter.h"
#include "TesselPage/Syntax/tessel_keywords.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace {

constexpr std::string_view filterKey = "/Filter";
constexpr char streamSeparator = '\r';  // keeps a token from running into the next stream

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

/// Bounds of a stream's data within its object's text.
struct DataBounds {
  std::size_t begin = 0;
  std::size_t end = 0;

  explicit DataBounds(const std::string& text) {
    const std::size_t word = text.find(kwstream);
    if (word != std::string::npos) begin = word + std::string_view(kwstream).size();
    end = text.rfind(kwendstream);
    if (end == std::string::npos) end = begin;
  }
  void trim(const std::string& text) {
    while (begin < text.size() && isLineEnd(text[begin])) ++begin;
    while (end > 0 && isLineEnd(text[end - 1])) --end;
  }
  bool empty() const { return end <= begin; }
  std::string of(const std::string& text) const {
    return empty() ? std::string() : text.substr(begin, end - begin);
  }
};

/// Decodes the data of a stream whose /Filter key stands at `key` of its text.
int decode(const std::string& text, std::size_t key, const DataBounds& data, std::string& decoded) {
  std::istringstream dictionary(text.substr(key + filterKey.size(), data.begin));
  CFilter filter;
  filter.ReadFilter(dictionary, 0);
  decoded = data.of(text);
  int length = static_cast<int>(decoded.size());
  return filter.filterStreamType(decoded, length);
}

/// Appends one content stream, decoded, and the separator.
int appendContent(const std::string& text, std::string& contents) {
  DataBounds data(text);
  const std::size_t key = text.find(filterKey);
  if (key == std::string::npos) {
    contents += data.of(text);
    contents += streamSeparator;
    return Result::success;
  }
  data.trim(text);
  if (!data.empty()) {
    std::string decoded;
    if (const int result = decode(text, key, data, decoded); result != Result::success) return result;
    contents += decoded;
  }
  contents += streamSeparator;
  return Result::success;
}

/// The object's text as a content stream is read: with no references renumbered, and in the clear.
/// @param dropped  when given, whether an entry was lost because its value is a reference
std::string contentText(PageState& state, const SObj& object, bool* dropped = nullptr) {
  if (state.sourFile->pieceFilteredObjs.count(object) != 0) return EMPTY_FORM_TEXT;
  CDestFile writer;
  CObj(object).LocalObj(writer, *state.sourFile, dropped);
  return std::move(static_cast<std::string&>(writer));
}

}  // namespace

int CTesselPage::getPageContents(const std::string** out) {
  std::string& contents = state->contentsString;
  contents.clear();
  for (const SObj& object : state->sourFile->pageContentObjs) {
    const int result = appendContent(contentText(*state, object), contents);
    if (result != Result::success) return result;
  }
  *out = &contents;
  return Result::success;
}

bool CTesselPage::getStoredContents(std::string& data, std::string& filterEntries) const {
  const std::vector<SObj>& objects = state->sourFile->pageContentObjs;
  if (objects.size() != 1) return false;
  bool dropped = false;
  const std::string text = contentText(*state, objects.front(), &dropped);
  return !dropped && splitStoredStream(text, data, filterEntries);
}

namespace {

/// All resource dictionaries that stand as objects of their own, in a row.
int indirectResources(PageState& state, int pageObjNo, std::string& resources) {
  PageWriter writer(state);
  writer.writeAs(pageObjNo);
  for (const SObj& object : state.sourFile->pageResourceObjs) {
    if (state.sourFile->pieceFilteredObjs.count(object) != 0)
      writer.append(EMPTY_FORM_TEXT);
    else if (!CObj(object).LocalObj(writer, *state.sourFile, nullptr))
      return Result::objectNotWritten;
    resources = writer.bodyText();
  }
  return Result::success;
}

}  // namespace

int CTesselPage::getPageRes(const std::string** out, int pageObjNo) {
  std::string& resources = state->resString;
  resources.clear();
  if (!state->sourFile->pageResourceObjs.empty()) {
    const int result = indirectResources(*state, pageObjNo, resources);
    if (result != Result::success) return result;
    const std::string own = CPageInfo(getPageRootString(pageObjNo)).getValueString("Resources");
    if (resources.empty())
      resources = own;
    else if (!own.empty())
      resources = ResourceDictMerger(own, resources).merged();
  } else {
    const CPageInfo page(getPageRootString(pageObjNo));
    state->pageGroup = page.getValueString("Group");
    resources = page.getValueString("Resources");
  }
  if (resources.empty()) resources = "<< >>";
  *out = &resources;
  return Result::success;
}

const std::string& CTesselPage::getPageGroup() const { return state->pageGroup; }

std::string CTesselPage::getPageRootString(int pageObjNo) const {
  CSourFile& source = *state->sourFile;
  PageWriter writer(*state);
  const auto index = static_cast<std::size_t>(state->curPageNo) - 1;
  if (index >= source.pageList.size()) return {};
  SObj current = source.pageList[index];
  std::set<SObj> climbed;
  writer.writeAs(pageObjNo);
  while (climbed.insert(current).second) {
    writer.numberUnlessKnown(current, SObj(pageObjNo, 0));
    CObj(current).LocalObj(writer, source, nullptr);
    if (pageObjNo == 0 || writer.find("/Resources") != std::string::npos) break;
    const auto parent = source.parentMap.find(current);
    if (parent == source.parentMap.end()) break;
    current = parent->second;
  }
  return std::move(static_cast<std::string&>(writer));
}

}  // namespace TESSEL
