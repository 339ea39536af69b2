#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TesselHost/host_objects.h"
#include "TesselHost/host_sourceobjects.h"
#include "TesselPage/tessel_page.h"

namespace TesselHost {

/// The form (ISO 32000-2, 12.7.3) of the output, made of those of all sources.
///
/// A field whose name an earlier source has taken, and a field that is placed once more, goes under a parent
/// that is named after its source, so that each keeps a value of its own.
class FormFields {
 public:
  explicit FormFields(ObjectWriter& aWriter) : writer(aWriter) {}

  /// Writes the form, if there is any field.
  /// @return the catalog's entry for it; empty when there is none
  std::string write();

 private:
  friend class SourceFields;

  /// A name that no field has, `wanted` itself if it is free.
  std::string freeName(const std::string& wanted);

  ObjectWriter& writer;
  std::set<std::string> names;  ///< of the fields at the top, in UTF-8
  std::string fields;           ///< references in a row, as the next one
  std::string calculationOrder;
  std::map<std::string, std::map<std::string, std::string>> resources;  ///< by category and name
  std::string appearance;                                               ///< value of /DA
  std::string quadding;                                                 ///< value of /Q
  bool needsAppearances = false;
};

/// The fields of one source on their way into the output.
///
/// Fields that have kids are kept back until the source's last page is placed, since kids on later pages
/// belong to them too.
class SourceFields {
 public:
  /// @param aName  names the parent of fields whose names are taken, in UTF-8
  SourceFields(FormFields& aForm, const SourceObjects& someObjects, std::string aName);

  /// An annotation of a page has been put onto a sheet: its identity in the source and its number in the
  /// output. Nobody asks for those of a source without fields.
  void notePlaced(const Identity& old, int number) {
    if (!roots.empty()) placed[old].push_back(number);
  }
  /// Whether an object is a field that this one writes, now or later. To be called behind notePlaced.
  bool take(const Identity& old, const Identity& object, const std::string& body);
  /// Writes what was kept back and adds the fields to the form. Once, after the last page.
  void finish(const TESSEL::CTesselPage& reader);

 private:
  using NewIds = std::map<Identity, Identity>;
  struct Kept {
    Identity object;
    std::string body;
  };
  /// A parent that is named after the source.
  struct Wrapper {
    int number = 0;
    std::string kids;
  };

  std::string nameOf(const Identity& root) const;
  bool isNameTaken(const Identity& root) const { return form.names.count(nameOf(root)) != 0; }
  std::string parentEntry(std::size_t copy, int kid);
  std::string inheritedEntries(const Identity& root, int number) const;
  std::string entriesOfRoot(const Identity& root, int number, std::size_t copy);
  std::string kidsOf(const Identity& old) const;
  void writeKept();
  void addRoots();
  void addFormEntries(const NewIds& ids);
  void addResources(const NewIds& ids);
  void writeWrappers();

  FormFields& form;
  const SourceObjects& objects;
  std::string name;
  std::string dictionary;       ///< the source's form
  std::string appearance;       ///< its /DA
  std::string quadding;         ///< its /Q
  std::vector<Identity> roots;  ///< its fields, in order
  std::set<Identity> rootSet;
  std::map<Identity, std::vector<int>> placed;
  std::map<Identity, Kept> kept;
  std::map<Identity, int> atTop;  ///< roots that are at the top of the output's form too
  std::vector<Wrapper> wrappers;  ///< by copy
};

}  // namespace TesselHost
