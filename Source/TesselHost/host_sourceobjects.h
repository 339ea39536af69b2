#pragma once

#include <string>
#include <string_view>

#include "TesselHost/host_objects.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

/// Reads objects of a source as they stand there, in its own numbering: what belongs to the whole document
/// and to no page.
class SourceObjects {
 public:
  /// The reader must outlive this object.
  explicit SourceObjects(const TESSEL::CTesselPage& aReader) : reader(aReader) {}

  /// The value of an object, of a stream its dictionary; empty when there is none.
  std::string valueOf(const Identity& object) const;
  /// The value, or that of the object which it refers to; a chain of references ends after some steps.
  std::string resolved(std::string_view value) const;
  /// The same of a dictionary's entry.
  std::string entry(std::string_view dictionary, std::string_view key) const;

  std::string catalog() const { return valueOf(reader.getRootObject()); }
  /// Dictionary of a page, counted from 1.
  std::string page(int page) const { return valueOf(reader.getPageObject(page)); }

 private:
  const TESSEL::CTesselPage& reader;
};

}  // namespace TesselHost
