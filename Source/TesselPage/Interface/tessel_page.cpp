#include "TesselPage/tessel_page.h"

#include <algorithm>

#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Model/tessel_catalog.h"
#include "TesselPage/Model/tessel_pageobj.h"
#include "TesselPage/Structure/tessel_sourcebuffer.h"
#include "TesselPage/Syntax/tessel_obj.h"
#include "TesselPage/Writer/tessel_destfile.h"

namespace TESSEL {

namespace {

/// How many pages may be selected until the memory behind a mapped source is let go.
constexpr unsigned pagesBetweenReleases = 128;

/// Runs `step`, which gives a result, and turns exceptions into results.
template <class Step>
int asResult(Step&& step) {
  try {
    return step();
  } catch (const CFileError&) {
    return Result::notReadable;
  } catch (const std::exception&) {
    return Result::exceptionCaught;
  }
}

}  // namespace

int readDocument(PageState& state) {
  CSourFile& source = *state.sourFile;
  CDestFile text;
  // The table is empty, so what stays of the catalog is its direct entries.
  if (!CObj(source.catalogObj->identity()).LocalObj(text, source, nullptr)) return Result::objectNotWritten;
  state.rootString = std::move(text);
  state.versionString = source.version;
  const CFileID& id = source.fileInfo.fileId;
  state.idString = CFileID::asCString(id.first) + CFileID::asCString(id.second);
  return Result::success;
}

CTesselPage::CTesselPage(const char* path, const std::string& password)
    : state(std::make_unique<PageState>()) {
  state->sourcePath = path;
  state->password = password;
  state->ownStream = std::make_unique<SourceStream>(path);
  state->sourceStream = state->ownStream.get();
}

CTesselPage::CTesselPage(std::istream& in, const std::string& password)
    : state(std::make_unique<PageState>()) {
  state->sourceStream = &in;
  state->password = password;
}

CTesselPage::~CTesselPage() = default;

int CTesselPage::init() {
  return asResult([this] {
    state->sourFile = std::make_unique<CSourFile>(*state->sourceStream);
    CSourFile& source = *state->sourFile;
    source.fileInfo.encrypt.setPassword(state->password);
    source.fileInfo.encrypt.heedsIdentity = state->heedsIdentityFilters;
    if (state->sourceStream->fail()) return Result::notReadable;
    const int opened = source.CheckAndInit();
    if (opened != Result::success) return opened;
    const int read = readDocument(*state);
    if (read != Result::success) return read;
    SetSourcePassword();
    findIntents(*state);
    return Result::success;
  });
}

int CTesselPage::setPageNo(int pageNo) {
  if (pageNo == state->curPageNo) return Result::success;
  CSourFile& source = *state->sourFile;
  clear();
  // Stored before the range test: a rejected number leaves the map empty and counts as selected.
  state->curPageNo = pageNo;
  source.curPage = pageNo;
  const auto index = static_cast<unsigned>(pageNo);
  if (index == 0 || index > source.pageList.size()) return Result::pageOutOfRange;
  CPage page;
  page.setIdentity(source.pageList[index - 1]);
  page.selectorA = state->pageStringA;
  page.selectorB = state->pageStringB;
  page.selectorC = state->pageStringC;
  source.clear();  // whatever a getter of the former page has run into
  // A large file would otherwise stay in memory whole, page after page.
  if (index % pagesBetweenReleases == 0) releaseMapped(source.rdbuf());
  try {
    page.fromStream(source);
    state->pageString = page.pageGroup;
  } catch (int result) {
    return result;
  } catch (const std::exception&) {
    return Result::exceptionCaught;
  }
  return Result::success;
}

int CTesselPage::next(iterator& it) {
  ++it;
  return Result::success;
}

int CTesselPage::next(const_iterator& it) {
  ++it;
  return Result::success;
}

void CTesselPage::setCurPageObj(int num, int gen) { state->curPageObj = {num, gen}; }

}  // namespace TESSEL
