#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "TesselHost/host_equalstreams.h"
#include "TesselHost/host_form.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_objects.h"
#include "TesselHost/host_pagetree.h"

namespace TesselHost {

/// One page of a source on a sheet.
struct Placement {
  PageForm form;
  Affine matrix;        ///< from the form's upright coordinates to the sheet's
  bool framed = false;  ///< a thin line around the page
};

/// A page of the output.
struct Sheet {
  int number = 0;  ///< of its object, from OutputDocument::reserveSheet
  Size size;
  double userUnit = 1;  ///< ISO 32000-2, 7.7.3.3, /UserUnit
  std::vector<Placement> placements;
  std::vector<std::string> annotations;  ///< references and dictionaries (ISO 32000-2, 12.5.2)
};

/// The PDF that the host writes: sheets, one after the other. One thread at a time.
class OutputDocument {
 public:
  /// Writes the header. The sink must outlive the document.
  /// @param id  16 bytes that tell this output from others
  OutputDocument(ByteSink& sink, const ObjectWriter::Options& options, std::string id);

  ObjectWriter& objects() { return writer; }
  /// A number for a sheet's object, so that others can refer to it before it is written.
  int reserveSheet() { return writer.reserve(); }
  /// Writes a sheet as the next page.
  void add(const Sheet& sheet);
  /// Writes page tree, catalog, information and trailer. At least one sheet must have been added.
  /// @param catalogEntries  what the catalog holds besides the page tree
  void finish(std::string_view catalogEntries = {});

 private:
  int contentsFor(const Sheet& sheet);

  ObjectWriter writer;
  PageTree tree;
  EqualStreams contents;
  std::string id;
};

}  // namespace TesselHost
