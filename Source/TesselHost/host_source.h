#pragma once

#include <memory>
#include <optional>
#include <string>

#include "TesselHost/host_access.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_version.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

/// A page of a source as it lies in its own coordinates.
struct PageGeometry {
  Rect visible;          ///< what is to be seen, before rotation, in points
  int quarterTurns = 0;  ///< clockwise

  /// Size as it stands upright.
  Size size() const;
};

/// One source PDF that has been opened.
class Source {
 public:
  /// What the library is to hand over: streams as they are, or within seven bits where it can.
  enum class Form { asStored, ascii };

  /// Throws SourceError when the file can't be used, or none of the passwords opens it.
  explicit Source(const std::string& path, const Passwords& passwords = {}, Form form = Form::asStored);

  const std::string& path() const { return file; }
  int pageCount() const { return reader->getPageCount(); }
  /// Who has opened it.
  Access access() const { return Access(*reader); }
  /// The higher one of the header's version and the catalog's /Version, where that is a version of PDF.
  PdfVersion version() const;
  /// Geometry of any page, counted from 1, selected or not; nothing when the page has no usable size.
  std::optional<PageGeometry> geometryOf(int page) const;

  TESSEL::CTesselPage& pages() { return *reader; }
  const TESSEL::CTesselPage& pages() const { return *reader; }

 private:
  std::string file;
  std::unique_ptr<TESSEL::CTesselPage> reader;
};

}  // namespace TesselHost
