#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TesselPage/Model/tessel_annot.h"
#include "TesselPage/Structure/tessel_objflags.h"

using namespace TESSEL;

namespace {

/// Flags that the filter by subtype leaves of `flags`.
int filtered(const std::string& subtype, unsigned enable, const std::vector<std::string>& custom = {},
             int flags = 0) {
  CAnnot().checkEnableAnnots(subtype, static_cast<TESSEL_AnnotsEnableE>(enable), flags, custom);
  return flags;
}

int fieldFiltered(const std::string& type, int fieldFlags, unsigned enable, int flags = 0) {
  CAnnot().checkEnableAcroForms(fieldFlags, type, static_cast<TESSEL_AcroFormsEnableE>(enable), flags);
  return flags;
}

constexpr int kept = 0x80000;
constexpr int keptByBoth = 0x180000;
constexpr unsigned everything = 0xFFFFFFFF;

// By subtype
// ----------------------------------------------------------------------------------------------------------

struct SubtypeCase {
  const char* subtype;
  unsigned mask;
};

class SubtypeBit : public testing::TestWithParam<SubtypeCase> {};

TEST_P(SubtypeBit, KeepsItsSubtype) { EXPECT_EQ(filtered(GetParam().subtype, GetParam().mask), kept); }

TEST_P(SubtypeBit, IsTheOnlyOneThatDoes) {
  EXPECT_EQ(filtered(GetParam().subtype, 0x3FFFFFFF & ~GetParam().mask), 0);
}

TEST_P(SubtypeBit, IsSetInAll) { EXPECT_EQ(filtered(GetParam().subtype, everything), kept); }

INSTANTIATE_TEST_SUITE_P(
    Subtypes, SubtypeBit,
    testing::Values(SubtypeCase{"/Link", 0x1}, SubtypeCase{"/Text", 0x2}, SubtypeCase{"/Sound", 0x4},
                    SubtypeCase{"/Movie", 0x8}, SubtypeCase{"/Stamp", 0x10}, SubtypeCase{"/Line", 0x20},
                    SubtypeCase{"/Square", 0x40}, SubtypeCase{"/Circle", 0x80},
                    SubtypeCase{"/StrikeOut", 0x100}, SubtypeCase{"/Highlight", 0x200},
                    SubtypeCase{"/Underline", 0x400}, SubtypeCase{"/Ink", 0x800},
                    SubtypeCase{"/FileAttachment", 0x1000}, SubtypeCase{"/FreeText", 0x2000},
                    SubtypeCase{"/Popup", 0x4000}, SubtypeCase{"/Squiggly", 0x8000},
                    SubtypeCase{"/PolyLine", 0x10000}, SubtypeCase{"/Polygon", 0x20000},
                    SubtypeCase{"/Caret", 0x40000}, SubtypeCase{"/Screen", 0x80000},
                    SubtypeCase{"/PrinterMark", 0x100000}, SubtypeCase{"/TrapNet", 0x200000},
                    SubtypeCase{"/WaterMark", 0x400000}, SubtypeCase{"/3D", 0x800000},
                    SubtypeCase{"/RichMedia", 0x1000000}, SubtypeCase{"/Redact", 0x2000000}));

TEST(SubtypeFilter, KeepsNothingAtZero) { EXPECT_EQ(filtered("/Link", 0), 0); }

TEST(SubtypeFilter, NeverKeepsAWidgetOrAnUnknownSubtype) {
  for (const char* subtype : {"/Widget", "/Foo", "/Watermark", "Link", "/link", ""})
    EXPECT_EQ(filtered(subtype, everything), 0) << subtype;
}

TEST(SubtypeFilter, LeavesAVerdictThatStands) {
  EXPECT_EQ(filtered("/Link", 0x2, {}, kept | 0x1000), kept | 0x1000);
}

TEST(SubtypeFilter, AddsToOtherFlags) { EXPECT_EQ(filtered("/Link", 0x1, {}, 0x1002), kept | 0x1002); }

TEST(SubtypeFilter, CustomSubtypeMustBeOneOfTheTable) {
  EXPECT_EQ(filtered("/Foo", 0x80000000, {"/Foo"}), 0);
  EXPECT_EQ(filtered("/Text", 0x80000000, {"/Foo", "/Text"}), kept);
  EXPECT_EQ(filtered("/Text", 0x80000000, {"/Tex", "/Text ", ""}), 0);
}

TEST(SubtypeFilter, CustomSubtypesCountOnlyWithTheirBit) { EXPECT_EQ(filtered("/Text", 0x1, {"/Text"}), 0); }

TEST(SubtypeFilter, Bit30KeepsNothingAndEndsTheSearch) {
  EXPECT_EQ(filtered("/Text", 0x40000000), 0);
  EXPECT_EQ(filtered("/Text", 0xC0000000, {"/Text"}), 0);
}

// By field type
// ----------------------------------------------------------------------------------------------------------

struct FieldCase {
  const char* type;
  int flags;
  int fieldType;
  unsigned mask;
};

class FieldBit : public testing::TestWithParam<FieldCase> {};

TEST_P(FieldBit, NamesTheFieldsType) {
  EXPECT_EQ(CAnnot().getFieldType(GetParam().flags, GetParam().type), GetParam().fieldType);
}

TEST_P(FieldBit, KeepsItsFields) {
  const int expected = GetParam().mask != 0 ? keptByBoth : 0;
  EXPECT_EQ(fieldFiltered(GetParam().type, GetParam().flags, GetParam().mask), expected);
}

TEST_P(FieldBit, IsTheOnlyOneThatDoes) {
  EXPECT_EQ(fieldFiltered(GetParam().type, GetParam().flags, 0x7FFFFFFF & ~GetParam().mask), 0);
}

TEST_P(FieldBit, IsSetInAll) {
  EXPECT_EQ(fieldFiltered(GetParam().type, GetParam().flags, everything), keptByBoth);
}

INSTANTIATE_TEST_SUITE_P(Fields, FieldBit,
                         testing::Values(FieldCase{"/Btn", 0x10000, 0, 0x2},
                                         FieldCase{"/Btn", 0x18000, 0, 0x2},
                                         FieldCase{"/Btn", 0x8000, 1, 0x1}, FieldCase{"/Btn", 0, 2, 0x4},
                                         FieldCase{"/Btn", 0x20000, 2, 0x4}, FieldCase{"/Ch", 0, 3, 0x8},
                                         FieldCase{"/Ch", 0x20000, 4, 0x10},
                                         FieldCase{"/Tx", 0x1000, 5, 0x20}, FieldCase{"/Sig", 0, 6, 0x40},
                                         FieldCase{"/Foo", 0, 8, 0}, FieldCase{"", 0, 8, 0}));

TEST(FieldFilter, KeepsNothingAtZero) { EXPECT_EQ(fieldFiltered("/Tx", 0, 0), 0); }

TEST(FieldFilter, LeavesAVerdictThatStands) {
  EXPECT_EQ(fieldFiltered("/Tx", 0, everything, 0x100000), 0x100000);
}

TEST(DropTest, DropsWhatStandsInASubtreeAndWasNotKept) {
  EXPECT_TRUE(ObjFlag::dropped(0x1000));
  EXPECT_TRUE(ObjFlag::dropped(0x201002));
  EXPECT_FALSE(ObjFlag::dropped(0x81000));
  EXPECT_FALSE(ObjFlag::dropped(0x101000));
  EXPECT_FALSE(ObjFlag::dropped(0x2));
  EXPECT_FALSE(ObjFlag::dropped(0));
}

}  // namespace
