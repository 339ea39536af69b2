#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "TesselPage/tessel_enables.h"

namespace TesselHost {

/// Which annotations go with a page, by subtype (ISO 32000-2, table 171).
struct AnnotationChoice {
  unsigned subtypes = TESSEL::AnnotsEnableAll;
  bool widgets = true;  ///< the annotations of form fields

  /// "all", "none" or subtypes such as "link,text,widget", in any case. Nothing for any other text.
  static std::optional<AnnotationChoice> parse(std::string_view text);
  /// @param subtype  such as "/Link"
  bool wants(std::string_view subtype) const;
  friend bool operator==(const AnnotationChoice&, const AnnotationChoice&) = default;
};

/// Which form fields go with a page, by type (ISO 32000-2, 12.7.5).
struct FormChoice {
  unsigned types = TESSEL::AcroFormsEnableAll;

  /// "all", "none" or types of radio, button, checkbox, list, combo, text, signature, with commas between.
  static std::optional<FormChoice> parse(std::string_view text);
  friend bool operator==(const FormChoice&, const FormChoice&) = default;
};

/// The name that FormChoice::parse knows a type by; "other" for none of them.
std::string fieldTypeName(unsigned type);

/// What goes with a page besides its content.
struct Extras {
  AnnotationChoice annotations;
  FormChoice forms;
  bool layers = true;  ///< which content is off stays off

  /// Fields are seen through their annotations, so both choices must want them.
  TESSEL::TESSEL_AcroFormsEnableE fields() const {
    return annotations.widgets ? static_cast<TESSEL::TESSEL_AcroFormsEnableE>(forms.types)
                               : TESSEL::AcroFormsEnableNone;
  }
  bool anyAnnotation() const {
    return annotations.subtypes != TESSEL::AnnotsEnableNone || fields() != TESSEL::AcroFormsEnableNone;
  }
  /// The choice as a text that tells it from every other.
  std::string text() const;
};

}  // namespace TesselHost
