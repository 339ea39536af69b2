#include "TesselHost/host_source.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_error.h"
#include "TesselHost/host_number.h"
#include "TesselPage/ctesselpage_encode.h"

namespace TesselHost {

namespace {

using TESSEL::CTesselPage;

/// Left, bottom, right, top, as the library hands them out.
struct Corners {
  float left = 0;
  float bottom = 0;
  float right = 0;
  float top = 0;

  bool usable() const {
    constexpr float smallest = 1e-5F;
    const bool finite =
        std::isfinite(left) && std::isfinite(bottom) && std::isfinite(right) && std::isfinite(top);
    return finite && right - left > smallest && top - bottom > smallest;
  }
  Rect rect() const {
    const double x = unblurred(left, left);
    const double y = unblurred(bottom, bottom);
    return {x, y, unblurred(right, right) - x, unblurred(top, top) - y};
  }
  Corners cutTo(const Corners& other) const {
    return {std::max(left, other.left), std::max(bottom, other.bottom), std::min(right, other.right),
            std::min(top, other.top)};
  }
};

Corners boxOf(const CTesselPage& reader, int page, CTesselPage::EBox box) {
  Corners corners;
  reader.getPageBox(page, box, corners.left, corners.bottom, corners.right, corners.top);
  return corners;
}

std::unique_ptr<CTesselPage> readerOf(const std::string& path, const std::string& password,
                                      Source::Form form) {
  if (form == Source::Form::ascii)
    return std::make_unique<TESSEL::CTesselPage_Encode>(path.c_str(), password);
  return std::make_unique<CTesselPage>(path.c_str(), password);
}

}  // namespace

Size PageGeometry::size() const {
  const Size lying{visible.width, visible.height};
  return quarterTurns % 2 == 0 ? lying : lying.turned();
}

Source::Source(const std::string& path, const Passwords& passwords, Form form)
    : file(path), reader(readerOf(path, firstOf(passwords), form)) {
  const Opening opening = openFile(*reader, path, passwords);
  if (opening.result != TESSEL::Result::success) throw SourceError(path, opening.result, opening.reason);
}

PdfVersion Source::version() const {
  const PdfVersion header = PdfVersion::parse(reader->getHeaderVersion());
  const PdfVersion catalog = PdfVersion::parse(valueOfKey(reader->getRootString(0), "/Version"));
  return catalog.exists() ? std::max(header, catalog) : header;
}

std::optional<PageGeometry> Source::geometryOf(int page) const {
  int degrees = 0;
  if (reader->getPageRotate(page, degrees) != TESSEL::Result::success) return std::nullopt;
  const Corners media = boxOf(*reader, page, CTesselPage::mediaBox);
  const Corners crop = boxOf(*reader, page, CTesselPage::cropBox);
  // A crop box that lies outside the paper hides nothing, and a paper that has no size bounds nothing.
  const std::array candidates = {crop.usable() ? crop.cutTo(media) : media, media, crop};
  const auto* shown =
      std::find_if(candidates.begin(), candidates.end(), [](auto& box) { return box.usable(); });
  if (shown == candidates.end()) return std::nullopt;
  return PageGeometry{shown->rect(), quarterTurnsOf(degrees)};
}

}  // namespace TesselHost
