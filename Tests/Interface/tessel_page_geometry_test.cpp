#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>

#include "TesselPage/Interface/tessel_pagebox.h"
#include "Tests/Interface/probed_page.h"

using namespace TESSEL;
using namespace tessel_test;

namespace {

constexpr float untouched = -77;

/// What a query gave.
struct Answer {
  int result;
  float w, h;
  friend bool operator==(const Answer&, const Answer&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Answer& a) {
    return out << a.result << ": " << a.w << " x " << a.h;
  }
};

struct BoxAnswer {
  int result;
  float l, b, r, t;
  friend bool operator==(const BoxAnswer&, const BoxAnswer&) = default;
  friend std::ostream& operator<<(std::ostream& out, const BoxAnswer& a) {
    return out << a.result << ": " << a.l << ' ' << a.b << ' ' << a.r << ' ' << a.t;
  }
};

Answer size(const CTesselPage& page) {
  Answer a{-1, untouched, untouched};
  a.result = page.getPageSize(a.w, a.h);
  return a;
}

Answer size(const CTesselPage& page, int number, CTesselPage::EBox box) {
  Answer a{-1, untouched, untouched};
  a.result = page.getPageSize(number, a.w, a.h, box);
  return a;
}

BoxAnswer sizeEx(const CTesselPage& page) {
  BoxAnswer a{-1, untouched, untouched, untouched, untouched};
  a.result = page.getPageSizeEx(a.l, a.b, a.r, a.t);
  return a;
}

BoxAnswer box(const CTesselPage& page, int which) {
  BoxAnswer a{-1, untouched, untouched, untouched, untouched};
  a.result = page.getPageBox(static_cast<CTesselPage::EBox>(which), a.l, a.b, a.r, a.t);
  return a;
}

BoxAnswer box(const CTesselPage& page, int number, int which) {
  BoxAnswer a{-1, untouched, untouched, untouched, untouched};
  a.result = page.getPageBox(number, static_cast<CTesselPage::EBox>(which), a.l, a.b, a.r, a.t);
  return a;
}

/// Page 1 of a document, selected.
OpenPage selected(const std::string& entries, const std::string& treeEntries = {}) {
  OpenPage open =
      pdf().pageTree({3}, treeEntries).object(3, "<</Type/Page/Parent 2 0 R" + entries + ">>").openPage();
  open->setPageNo(1);
  return open;
}

OpenPage noPages() { return pdf().pageTree({}).openPage(); }

// Sizes.

struct SizeRow {
  const char* name;
  const char* entries;
  CTesselPage::EBox option;
  Answer size;
  BoxAnswer sizeEx;
};
std::ostream& operator<<(std::ostream& out, const SizeRow& row) { return out << row.name; }

class PageSize : public testing::TestWithParam<SizeRow> {};

TEST_P(PageSize, OfTheSelectedPageFollowsTheOption) {
  const OpenPage open = selected(GetParam().entries);
  EXPECT_EQ(open->setBoxOption(GetParam().option), 0);
  EXPECT_EQ(size(*open), GetParam().size);
  EXPECT_EQ(sizeEx(*open), GetParam().sizeEx);
}

TEST_P(PageSize, OfAnyPageFollowsTheBox) {
  const OpenPage open = pdf().onePage(GetParam().entries).openPage();
  EXPECT_EQ(size(*open, 1, GetParam().option), GetParam().size);
}

constexpr auto visible = CTesselPage::visibleBox;
constexpr auto media = CTesselPage::mediaBox;

INSTANTIATE_TEST_SUITE_P(
    Boxes, PageSize,
    testing::Values(
        SizeRow{"MediaOnly", "/MediaBox[1 2 101 202]", visible, {0, 100, 200}, {0, 1, 2, 100, 200}},
        SizeRow{"SwappedCorners", "/MediaBox[101 202 1 2]", visible, {0, 100, 200}, {0, 1, 2, 100, 200}},
        SizeRow{"CropInside",
                "/MediaBox[0 0 100 200]/CropBox[10 20 60 90]",
                visible,
                {0, 50, 70},
                {0, 10, 20, 50, 70}},
        SizeRow{"CropBeyondIsCut",
                "/MediaBox[0 0 100 200]/CropBox[-10 20 160 290]",
                visible,
                {0, 100, 180},
                {0, 0, 20, 100, 180}},
        SizeRow{"CropBeyondStaysWithOption0",
                "/MediaBox[0 0 100 200]/CropBox[-10 20 160 290]",
                media,
                {0, 170, 270},
                {0, -10, 20, 170, 270}},
        SizeRow{"OtherOptionsNameNoBox",
                "/MediaBox[0 0 100 200]/CropBox[10 20 60 90]/TrimBox[0 0 5 5]",
                CTesselPage::trimBox,
                {0, 50, 70},
                {0, 10, 20, 50, 70}},
        SizeRow{"ZeroCropIsNoCrop",
                "/MediaBox[0 0 100 200]/CropBox[0 0 0 0]",
                visible,
                {0, 100, 200},
                {0, 0, 0, 100, 200}},
        SizeRow{"FlatCropIsNoCrop",
                "/MediaBox[0 0 100 200]/CropBox[10 20 60 20]",
                media,
                {0, 100, 200},
                {0, 0, 0, 100, 200}},
        SizeRow{"NoBoxAtAll", "", visible, {8000, 0, 0}, {8000, 0, 0, 0, 0}},
        SizeRow{"OneSideIsEnough", "/MediaBox[0 0 100 0]", visible, {0, 100, 0}, {0, 0, 0, 100, 0}},
        SizeRow{"CropOutsideTurnsNegative",
                "/MediaBox[0 0 100 200]/CropBox[150 20 160 90]",
                visible,
                {0, -50, 70},
                {0, 150, 20, -50, 70}}),
    [](const auto& row) { return std::string(row.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Rotations, PageSize,
    testing::Values(
        SizeRow{"Quarter", "/MediaBox[0 0 100 200]/Rotate 90", visible, {0, 200, 100}, {0, 0, 0, 100, 200}},
        SizeRow{"Half", "/MediaBox[0 0 100 200]/Rotate 180", visible, {0, 100, 200}, {0, 0, 0, 100, 200}},
        SizeRow{"ThreeQuarters",
                "/MediaBox[0 0 100 200]/Rotate 270",
                visible,
                {0, 200, 100},
                {0, 0, 0, 100, 200}},
        SizeRow{"Back", "/MediaBox[0 0 100 200]/Rotate -90", visible, {0, 200, 100}, {0, 0, 0, 100, 200}},
        SizeRow{
            "NoMultiple", "/MediaBox[0 0 100 200]/Rotate 45", visible, {0, 100, 200}, {0, 0, 0, 100, 200}},
        SizeRow{"MoreThanOnce",
                "/MediaBox[0 0 100 200]/Rotate 450",
                visible,
                {0, 200, 100},
                {0, 0, 0, 100, 200}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(PageGeometry, InheritsTheBoxOfTheTree) {
  const OpenPage open = selected("", "/MediaBox[0 0 30 40]/Rotate 90");
  EXPECT_EQ(size(*open), (Answer{0, 40, 30}));
}

TEST(PageGeometry, CountsPages) {
  EXPECT_EQ(noPages()->getPageCount(), 0);
  EXPECT_EQ(selected("")->getPageCount(), 1);
}

TEST(PageGeometry, AnyPageIsAskedWithoutSelectingIt) {
  const OpenPage open = pdf()
                            .pageTree({3, 4})
                            .object(3, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 10 20]/Rotate 90>>")
                            .object(4, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 30 40]>>")
                            .openPage();
  EXPECT_EQ(size(*open, 1, visible), (Answer{0, 20, 10}));
  EXPECT_EQ(size(*open, 2, visible), (Answer{0, 30, 40}));
}

TEST(PageGeometry, TheBoxOptionIsNotTakenForAnyPage) {
  const OpenPage open = selected("/MediaBox[0 0 100 200]/CropBox[-10 0 100 200]");
  open->setBoxOption(media);
  EXPECT_EQ(size(*open, 1, visible), (Answer{0, 100, 200}));
}

// A document without pages.

TEST(PageGeometry, WithoutPagesTheOutputsOfTheSelectedPageStay) {
  const OpenPage open = noPages();
  EXPECT_EQ(size(*open), (Answer{0, untouched, untouched}));
  EXPECT_EQ(sizeEx(*open), (BoxAnswer{0, untouched, untouched, untouched, untouched}));
  int rotate = 7;
  EXPECT_EQ(open->getPageRotate(rotate), 0);
  EXPECT_EQ(rotate, 7);
}

TEST(PageGeometry, WithoutPagesTheQueriesOfAnyPageSucceed) {
  const OpenPage open = noPages();
  EXPECT_EQ(size(*open, 1, visible), (Answer{0, 0, 0}));
  EXPECT_EQ(box(*open, 1, 0), (BoxAnswer{0, untouched, untouched, untouched, untouched}));
  int rotate = 7;
  EXPECT_EQ(open->getPageRotate(1, rotate), 0);
  EXPECT_EQ(rotate, 0);
}

// Rotation.

TEST(PageGeometry, GivesTheRotation) {
  for (int degrees : {0, 90, 180, -90, 450}) {
    const OpenPage open = selected("/MediaBox[0 0 1 1]/Rotate " + std::to_string(degrees));
    int own = 1, any = 1;
    EXPECT_EQ(open->getPageRotate(own), 0);
    EXPECT_EQ(open->getPageRotate(1, any), 0);
    EXPECT_EQ(own, degrees);
    EXPECT_EQ(any, degrees);
  }
}

TEST(PageGeometry, APageWithoutARecordHasNoRotationAndNoBoxes) {
  Probe opened = probe(pdf().onePage("/MediaBox[0 0 10 20]"));
  opened->state->sourFile->paperInfoMap.clear();
  int rotate = 7;
  EXPECT_EQ(opened->getPageRotate(1, rotate), 8000);
  EXPECT_EQ(rotate, 0);
  EXPECT_EQ(box(*opened, 1, 0), (BoxAnswer{8000, 0, 0, 0, 0}));
  EXPECT_EQ(size(*opened, 1, visible), (Answer{0, 0, 0}));
}

// Boxes of any page.

TEST(PageBoxes, OfAnyPageComeFromTheRecord) {
  const OpenPage open =
      pdf()
          .pageTree({3}, "/MediaBox[0 0 100 200]")
          .object(3,
                  "<</Type/Page/Parent 2 0 R/CropBox[60 70 10 20]/BleedBox[1 1 2 2]/TrimBox[1 1 3 "
                  "3]/ArtBox[1 1 4 4]>>")
          .openPage();
  EXPECT_EQ(box(*open, 1, 0), (BoxAnswer{0, 0, 0, 100, 200}));
  EXPECT_EQ(box(*open, 1, 1), (BoxAnswer{0, 10, 20, 60, 70}));
  EXPECT_EQ(box(*open, 1, 2), (BoxAnswer{0, 1, 1, 2, 2}));
  EXPECT_EQ(box(*open, 1, 3), (BoxAnswer{0, 1, 1, 3, 3}));
  EXPECT_EQ(box(*open, 1, 4), (BoxAnswer{0, 1, 1, 4, 4}));
}

TEST(PageBoxes, OfAnyPageKnowNoVisibleBox) {
  const OpenPage open = selected("/MediaBox[0 0 100 200]");
  EXPECT_EQ(box(*open, 1, 5), (BoxAnswer{1006, 0, 0, 0, 0}));
  EXPECT_EQ(box(*open, 1, 6), (BoxAnswer{1006, 0, 0, 0, 0}));
}

// Boxes of the selected page.

TEST(PageBoxes, OfTheSelectedPageStandAsTheFileHasThem) {
  const OpenPage open = selected(
      "/MediaBox[0 0 100 200]/CropBox [ 60.5 70\n10 -20 ]/BleedBox[1 1 2 2]/TrimBox[1 1 3 3]/ArtBox[1 1 4 "
      "4.25]");
  EXPECT_EQ(box(*open, 0), (BoxAnswer{0, 0, 0, 100, 200}));
  EXPECT_EQ(box(*open, 1), (BoxAnswer{0, 60.5F, 70, 10, -20}));
  EXPECT_EQ(box(*open, 2), (BoxAnswer{0, 1, 1, 2, 2}));
  EXPECT_EQ(box(*open, 3), (BoxAnswer{0, 1, 1, 3, 3}));
  EXPECT_EQ(box(*open, 4), (BoxAnswer{0, 1, 1, 4, 4.25F}));
}

TEST(PageBoxes, WhatThePageHasNotItselfIsItsMediaBox) {
  const OpenPage open = selected("", "/MediaBox[0 0 100 200]/CropBox[10 10 20 20]");
  for (int which : {0, 1, 2, 3, 4}) EXPECT_EQ(box(*open, which), (BoxAnswer{0, 0, 0, 100, 200})) << which;
}

TEST(PageBoxes, ABoxOfAnotherCountOfNumbersIsTheMediaBox) {
  for (const char* numbers : {"[1 2 3]", "[1 2 3 4 5]", "[]", "[/A]", " 6 0 R"})
    EXPECT_EQ(box(*selected(std::string("/MediaBox[0 0 100 200]/TrimBox") + numbers), 3),
              (BoxAnswer{0, 0, 0, 100, 200}))
        << numbers;
}

TEST(PageBoxes, FiveIsTheVisibleBox) {
  EXPECT_EQ(box(*selected("/MediaBox[0 0 100 200]/CropBox[-10 20 60 300]"), 5),
            (BoxAnswer{0, 0, 20, 60, 200}));
  EXPECT_EQ(box(*selected("/MediaBox[0 0 100 200]/CropBox[5 5 5 5]"), 5), (BoxAnswer{0, 0, 0, 100, 200}));
}

TEST(PageBoxes, AboveFiveNothingIsTouched) {
  const OpenPage open = selected("/MediaBox[0 0 100 200]");
  EXPECT_EQ(box(*open, 6), (BoxAnswer{0, untouched, untouched, untouched, untouched}));
}

TEST(PageBoxes, ARotationLeavesThem) {
  EXPECT_EQ(box(*selected("/MediaBox[0 0 100 200]/Rotate 90"), 5), (BoxAnswer{0, 0, 0, 100, 200}));
}

// The intersection.

TEST(IntersectRect, TakesTheInnerSides) {
  RectTD out;
  privated::getIntersectRect({0, 5, 100, 50}, {10, 0, 80, 60}, out);
  EXPECT_EQ(out, (RectTD{10, 5, 80, 50}));
}

TEST(IntersectRect, DoesNotLookWhetherTheyOverlap) {
  RectTD out;
  privated::getIntersectRect({0, 0, 10, 10}, {20, 30, 40, 50}, out);
  EXPECT_EQ(out, (RectTD{20, 30, 10, 10}));
}

}  // namespace
