#pragma once

namespace TESSEL {

/// Which annotations of a page go with it, by subtype (ISO 32000-2, table 171): a sum of bits. A source
/// starts with AnnotsEnableNone.
enum TESSEL_AnnotsEnableE : unsigned {
  AnnotsEnableNone = 0,
  AnnotsEnableLink = 0x1,  ///< also lets direct dictionaries of an array be filtered
  AnnotsEnableText = 0x2,
  AnnotsEnableSound = 0x4,
  AnnotsEnableMovie = 0x8,
  AnnotsEnableStamp = 0x10,
  AnnotsEnableLine = 0x20,
  AnnotsEnableSquare = 0x40,
  AnnotsEnableCircle = 0x80,
  AnnotsEnableStrikeOut = 0x100,
  AnnotsEnableHighlight = 0x200,
  AnnotsEnableUnderline = 0x400,
  AnnotsEnableInk = 0x800,
  AnnotsEnableFileAttachment = 0x1000,
  AnnotsEnableFreeText = 0x2000,
  AnnotsEnablePopup = 0x4000,
  AnnotsEnableSquiggly = 0x8000,
  AnnotsEnablePolyLine = 0x10000,
  AnnotsEnablePolygon = 0x20000,
  AnnotsEnableCaret = 0x40000,
  AnnotsEnableScreen = 0x80000,
  AnnotsEnablePrinterMark = 0x100000,
  AnnotsEnableTrapNet = 0x200000,
  AnnotsEnableWaterMark = 0x400000,
  AnnotsEnable3D = 0x800000,
  AnnotsEnableRichMedia = 0x1000000,
  AnnotsEnableRedact = 0x2000000,
  AnnotsEnableOther = 0x40000000,   ///< tested, and without an effect
  AnnotsEnableCustom = 0x80000000,  ///< consult the custom subtypes
  AnnotsEnableAll = 0xFFFFFFFF
};

/// Which form fields go with a page, by field type (ISO 32000-2, 12.7.5): a sum of bits. A source starts with
/// AcroFormsEnableNone.
enum TESSEL_AcroFormsEnableE : unsigned {
  AcroFormsEnableNone = 0,
  AcroFormsEnableRadioButton = 0x1,
  AcroFormsEnablePushButton = 0x2,
  AcroFormsEnableCheckBox = 0x4,
  AcroFormsEnableListBox = 0x8,
  AcroFormsEnableComboBox = 0x10,
  AcroFormsEnableText = 0x20,
  AcroFormsEnableSignature = 0x40,
  AcroFormsEnableAll = 0xFFFFFFFF
};

}  // namespace TESSEL
