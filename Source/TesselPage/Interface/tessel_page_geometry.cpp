// How large a page is and where it lies. The answers come from the record that the reading of the page tree
// keeps for every page, with inheritance and defaults applied; only the box of the selected page is read from
// its own dictionary.

#include <algorithm>
#include <cmath>
#include <sstream>

#include "TesselPage/Finder/pdf_rules.h"
#include "TesselPage/Interface/tessel_page_state.h"
#include "TesselPage/Interface/tessel_pagebox.h"
#include "TesselPage/tessel_page.h"

namespace TESSEL {

namespace privated {

void getIntersectRect(const RectTD& a, const RectTD& b, RectTD& out) {
  out = {std::max(a.left, b.left), std::max(a.bottom, b.bottom), std::min(a.right, b.right),
         std::min(a.top, b.top)};
}

}  // namespace privated

namespace {

constexpr float leastSize = 1e-5F;
constexpr int quarterTurn = 90;
constexpr int rectNumbers = 4;

float width(const RectTD& rect) { return rect.right - rect.left; }
float height(const RectTD& rect) { return rect.top - rect.bottom; }

/// The crop box, or the media box where the crop box has no size; option 5 cuts it to the media box. Options
/// 0 to 4 name no other box: they only turn the cut off.
RectTD workingBox(const CPaperInfo& paper, CTesselPage::EBox option) {
  const RectTD& media = paper.box(PageBox::media);
  const RectTD& crop = paper.box(PageBox::crop);
  RectTD box = height(crop) <= leastSize || width(crop) <= leastSize ? media : crop;
  if (option == CTesselPage::visibleBox) privated::getIntersectRect(box, media, box);
  return box;
}

int sizeResult(float w, float h) {
  return std::fabs(w) < leastSize && std::fabs(h) < leastSize ? Result::pageOutOfRange : Result::success;
}

int uprightSize(const CPaperInfo& paper, CTesselPage::EBox option, float& w, float& h) {
  const RectTD box = workingBox(paper, option);
  w = width(box);
  h = height(box);
  if (paper.rotation / quarterTurn % 2 != 0) std::swap(w, h);
  return sizeResult(w, h);
}

/// The record of a page counted from 1, or null.
const CPaperInfo* paperOf(const PageState& state, int page) {
  const std::vector<SObj>& pages = state.sourFile->pageList;
  if (page < 1 || static_cast<std::size_t>(page) > pages.size()) return nullptr;
  const auto found = state.sourFile->paperInfoMap.find(pages[static_cast<std::size_t>(page) - 1]);
  return found == state.sourFile->paperInfoMap.end() ? nullptr : &found->second;
}

/// The record of the selected page; one of zeros when there is none, so that nothing is read out of bounds.
const CPaperInfo& selectedPaper(const PageState& state) {
  static const CPaperInfo none;
  const CPaperInfo* paper = paperOf(state, state.curPageNo);
  return paper ? *paper : none;
}

void storeRect(const RectTD& rect, float& l, float& b, float& r, float& t) {
  l = rect.left;
  b = rect.bottom;
  r = rect.right;
  t = rect.top;
}

/// Reads the four numbers of a box's rectangle as the page has them. 0, or -1 when there aren't exactly four.
template <class Tokenizer>
int helpFunction_getPageBox(const std::string& page, RectTD& rect) {
  Tokenizer numbers;
  numbers.Tokenize(page.data(), page.data() + page.size());
  if (numbers.size() != rectNumbers) return -1;
  float* const fields[] = {&rect.left, &rect.bottom, &rect.right, &rect.top};
  std::size_t i = 0;
  for (const auto& [begin, end] : numbers.tokens())
    std::istringstream(std::string(begin, end)) >> *fields[i++];
  return 0;
}

int ownBox(const std::string& page, CTesselPage::EBox box, RectTD& rect) {
  switch (box) {
    case CTesselPage::mediaBox:
      return helpFunction_getPageBox<PDF_RULES::MediaBoxTokenizer>(page, rect);
    case CTesselPage::cropBox:
      return helpFunction_getPageBox<PDF_RULES::CropBoxTokenizer>(page, rect);
    case CTesselPage::bleedBox:
      return helpFunction_getPageBox<PDF_RULES::BleedBoxTokenizer>(page, rect);
    case CTesselPage::trimBox:
      return helpFunction_getPageBox<PDF_RULES::TrimBoxTokenizer>(page, rect);
    default:
      return helpFunction_getPageBox<PDF_RULES::ArtBoxTokenizer>(page, rect);
  }
}

}  // namespace

int CTesselPage::getPageCount() const { return static_cast<int>(state->sourFile->pageList.size()); }

int CTesselPage::setBoxOption(EBox box) {
  state->boxOption = box;
  return Result::success;
}

int CTesselPage::getPageSize(float& w, float& h) const {
  if (state->sourFile->pageList.empty()) return Result::success;
  return uprightSize(selectedPaper(*state), state->boxOption, w, h);
}

int CTesselPage::getPageSize(int page, float& w, float& h, EBox box) const {
  w = h = 0;
  const CPaperInfo* paper = paperOf(*state, page);
  return paper ? uprightSize(*paper, box, w, h) : Result::success;
}

int CTesselPage::getPageSizeEx(float& x, float& y, float& w, float& h) const {
  if (state->sourFile->pageList.empty()) return Result::success;
  const RectTD box = workingBox(selectedPaper(*state), state->boxOption);
  x = box.left;
  y = box.bottom;
  w = width(box);
  h = height(box);
  return sizeResult(w, h);
}

int CTesselPage::getPageRotate(int& rotate) const {
  if (!state->sourFile->pageList.empty()) rotate = selectedPaper(*state).rotation;
  return Result::success;
}

int CTesselPage::getPageRotate(int page, int& rotate) const {
  rotate = 0;
  if (state->sourFile->pageList.empty()) return Result::success;
  const CPaperInfo* paper = paperOf(*state, page);
  if (!paper) return Result::pageOutOfRange;
  rotate = paper->rotation;
  return Result::success;
}

int CTesselPage::getPageBox(int page, EBox box, float& l, float& b, float& r, float& t) const {
  if (state->sourFile->pageList.empty()) return Result::success;
  storeRect({}, l, b, r, t);
  const CPaperInfo* paper = paperOf(*state, page);
  if (!paper) return Result::pageOutOfRange;
  if (box < mediaBox || box > artBox) return Result::badRange;
  storeRect(paper->boxes[static_cast<std::size_t>(box)], l, b, r, t);
  return Result::success;
}

int CTesselPage::getPageBox(EBox box, float& l, float& b, float& r, float& t) const {
  const std::string page = getPageRootString(0);
  if (box < mediaBox || box > visibleBox) return Result::success;
  const CPaperInfo& paper = selectedPaper(*state);
  RectTD rect = paper.box(PageBox::media);
  if (box == visibleBox)
    rect = workingBox(paper, visibleBox);
  else if (RectTD own; ownBox(page, box, own) == 0)
    rect = own;
  storeRect(rect, l, b, r, t);
  return Result::success;
}

}  // namespace TESSEL
