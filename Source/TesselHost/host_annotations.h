#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "TesselHost/host_extras.h"
#include "TesselHost/host_layout.h"
#include "TesselHost/host_sourceobjects.h"

namespace TesselHost {

/// What stands in the /Annots array of a page (ISO 32000-2, 12.5.2).
struct ListedAnnotations {
  bool any = false;
  std::vector<Identity> objects;  ///< those that are objects of their own, in the source's numbering
};

/// The annotations of a page, counted from 1, wanted or not.
ListedAnnotations listedAnnotations(const SourceObjects& objects, int page);

/// Whether an annotation that is written directly in the array is wanted.
bool isWanted(const Extras& extras, std::string_view annotation);

/// Whether an object's body is an annotation that means nothing off its page; a popup goes with another one.
bool isPageBound(std::string_view body);

/// The appearance streams (ISO 32000-2, 12.5.5) that an annotation refers to.
/// @param resolved  gives the value behind a reference
std::vector<Identity> appearancesOf(std::string_view annotation,
                                    const std::function<std::string(std::string_view)>& resolved);

/// Whether the annotation stays upright when its page is turned.
bool staysUpright(std::string_view annotation);

/// Whether a placement turns or mirrors pages, so that appearances must do as well.
bool turns(const Affine& matrix);

/// An appearance stream's body that is turned with its page; one that has a /Matrix of its own stays as it
/// is.
std::string turnedAppearance(const std::string& body, const Affine& matrix);

/// Mask of a form field's type (TESSEL_AcroFormsEnableE), by its values of /FT and /Ff; 0 when it has none.
unsigned fieldTypeOf(std::string_view type, std::string_view flags);

}  // namespace TesselHost
