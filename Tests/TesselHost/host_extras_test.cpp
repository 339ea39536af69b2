#include "TesselHost/host_extras.h"

#include <gtest/gtest.h>

#include "TesselHost/host_annotations.h"

namespace TesselHost {
namespace {

struct Subtype {
  const char* name;
  unsigned bit;
};
class AnnotationNames : public testing::TestWithParam<Subtype> {};

TEST_P(AnnotationNames, StandForTheirSubtype) {
  const auto choice = AnnotationChoice::parse(GetParam().name);
  ASSERT_TRUE(choice);
  EXPECT_EQ(choice->subtypes, GetParam().bit);
  EXPECT_FALSE(choice->widgets);
  EXPECT_TRUE(choice->wants(std::string("/") + GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(
    All, AnnotationNames,
    testing::Values(Subtype{"Link", 0x1}, Subtype{"Text", 0x2}, Subtype{"Sound", 0x4}, Subtype{"Movie", 0x8},
                    Subtype{"Stamp", 0x10}, Subtype{"Line", 0x20}, Subtype{"Square", 0x40},
                    Subtype{"Circle", 0x80}, Subtype{"StrikeOut", 0x100}, Subtype{"Highlight", 0x200},
                    Subtype{"Underline", 0x400}, Subtype{"Ink", 0x800}, Subtype{"FileAttachment", 0x1000},
                    Subtype{"FreeText", 0x2000}, Subtype{"Popup", 0x4000}, Subtype{"Squiggly", 0x8000},
                    Subtype{"PolyLine", 0x10000}, Subtype{"Polygon", 0x20000}, Subtype{"Caret", 0x40000},
                    Subtype{"Screen", 0x80000}, Subtype{"PrinterMark", 0x100000},
                    Subtype{"TrapNet", 0x200000}, Subtype{"WaterMark", 0x400000}, Subtype{"3D", 0x800000},
                    Subtype{"RichMedia", 0x1000000}, Subtype{"Redact", 0x2000000}));

TEST(AnnotationChoice, ListsAddUp) {
  EXPECT_EQ(AnnotationChoice::parse("link,INK"), (AnnotationChoice{0x801, false}));
  EXPECT_EQ(AnnotationChoice::parse("widget"), (AnnotationChoice{0, true}));
  EXPECT_EQ(AnnotationChoice::parse("all"), AnnotationChoice{});
  EXPECT_EQ(AnnotationChoice::parse("none"), (AnnotationChoice{0, false}));
  for (const char* wrong : {"", "links", "link,", ",link", "link;ink", "none,link", "other"})
    EXPECT_FALSE(AnnotationChoice::parse(wrong)) << wrong;
}

struct Type {
  const char* name;
  unsigned bit;
  const char* fieldType;
  const char* flags;
};
class FieldTypes : public testing::TestWithParam<Type> {};

TEST_P(FieldTypes, HaveTheirNamesAndFlags) {
  const Type& type = GetParam();
  EXPECT_EQ(FormChoice::parse(type.name), FormChoice{type.bit});
  EXPECT_EQ(fieldTypeName(type.bit), type.name);
  EXPECT_EQ(fieldTypeOf(type.fieldType, type.flags), type.bit);
}

INSTANTIATE_TEST_SUITE_P(All, FieldTypes,
                         testing::Values(Type{"radio", 0x1, "/Btn", "32768"},
                                         Type{"button", 0x2, "/Btn", "65536"},
                                         Type{"checkbox", 0x4, "/Btn", ""}, Type{"list", 0x8, "/Ch", "0"},
                                         Type{"combo", 0x10, "/Ch", "131072"},
                                         Type{"text", 0x20, "/Tx", "4096"},
                                         Type{"signature", 0x40, "/Sig", ""}));

TEST(FieldTypes, OthersHaveNone) {
  EXPECT_EQ(fieldTypeOf("", ""), 0U);
  EXPECT_EQ(fieldTypeOf("/Foo", "32768"), 0U);
  EXPECT_EQ(fieldTypeName(0), "other");
  EXPECT_FALSE(FormChoice::parse("edit"));
}

TEST(Extras, FieldsNeedTheirAnnotations) {
  Extras extras;
  EXPECT_EQ(extras.fields(), TESSEL::AcroFormsEnableAll);
  extras.annotations.widgets = false;
  EXPECT_EQ(extras.fields(), TESSEL::AcroFormsEnableNone);
  EXPECT_TRUE(extras.anyAnnotation());
  extras.annotations.subtypes = 0;
  EXPECT_FALSE(extras.anyAnnotation());
}

TEST(DirectAnnotation, IsWantedByItsSubtypeAndFieldType) {
  Extras extras;
  extras.forms.types = TESSEL::AcroFormsEnableText;
  EXPECT_TRUE(isWanted(extras, "<</Subtype/Link>>"));
  EXPECT_FALSE(isWanted(extras, "<</Subtype/Foo>>"));
  EXPECT_TRUE(isWanted(extras, "<</Subtype/Widget/FT/Tx>>"));
  EXPECT_FALSE(isWanted(extras, "<</Subtype/Widget/FT/Btn>>"));
}

TEST(Appearances, AreFoundByUseAndState) {
  const auto resolved = [](std::string_view value) {
    if (value == "1 0 R") return std::string("<</BBox[0 0 1 1]>>");
    if (value == "2 0 R") return std::string("<</On 3 0 R/Off 4 0 R>>");
    return std::string(value);
  };
  EXPECT_EQ(appearancesOf("<</AP<</N 1 0 R/D 2 0 R/R<</On 5 0 R>>>>>>", resolved),
            (std::vector<Identity>{{1, 0}, {3, 0}, {4, 0}, {5, 0}}));
  EXPECT_TRUE(appearancesOf("<</Rect[0 0 1 1]>>", resolved).empty());
}

TEST(Appearances, WithoutAMatrixAreTurned) {
  const Affine quarter{0, -0.5, 0.5, 0, 10, 20};
  EXPECT_EQ(turnedAppearance("<</BBox[0 0 1 1]>>\nstream", quarter),
            "<</Matrix[0 -0.5 0.5 0 0 0]/BBox[0 0 1 1]>>\nstream");
  EXPECT_EQ(turnedAppearance("<</Matrix[1 0 0 1 0 0]>>", quarter), "<</Matrix[1 0 0 1 0 0]>>");
  EXPECT_TRUE(turns(quarter));
  EXPECT_TRUE(turns({-1, 0, 0, 1, 0, 0}));
  EXPECT_FALSE(turns({2, 0, 0, 2, 9, 9}));
  EXPECT_TRUE(staysUpright("<</F 20>>"));
  EXPECT_FALSE(staysUpright("<</F 4>>"));
}

}  // namespace
}  // namespace TesselHost
