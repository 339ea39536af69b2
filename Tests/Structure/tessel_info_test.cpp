#include "TesselPage/Structure/tessel_info.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>

#include "TesselPage/Writer/tessel_destfile.h"
#include "Tests/Structure/raw_source.h"
#include "Tests/Support/pdf_builder.h"

namespace {

using TESSEL::CDestFile;
using TESSEL::CInfo;
using TESSEL::InfoDic;
using TESSEL::SObj;
using tessel_test::pdf;
using tessel_test::RawSource;

/// The info dictionary with this body, as opening reads it.
CInfo infoOf(const std::string& body, const std::string& other = "null") {
  const auto source = pdf().onePage("").object(4, body).object(5, other).trailer("/Info 4 0 R").open();
  EXPECT_EQ(source.result, 0);
  return source->fileInfo.info;
}

TEST(Info, StandsForANewDocumentUntilItIsRead) {
  const CInfo info;
  EXPECT_EQ(info.title, "TESSEL");
  EXPECT_NE(info.author, "");
  EXPECT_EQ(info.subject, "Tessel-Merge(Split)-Kit");
  EXPECT_EQ(info.keywords, "TESSEL<>");
  EXPECT_EQ(info.creator, "TESSEL");
  EXPECT_EQ(info.producer, "Quillory.Co.Ltd");
  EXPECT_EQ(info.trapped, "Unknown");
  EXPECT_EQ(info.creationDate, "");
  EXPECT_EQ(info.modDate, "");
}

TEST(Info, EveryKeyGoesToItsField) {
  const CInfo info = infoOf(
      "<</Title(t)/Author(a)/Subject(s)/Keywords(k)/Creator(c)/Producer(p)/Trapped/True"
      "/CreationDate(D:1)/ModDate<443a32>>>");
  EXPECT_EQ(info.title, "t");
  EXPECT_EQ(info.author, "a");
  EXPECT_EQ(info.subject, "s");
  EXPECT_EQ(info.keywords, "k");
  EXPECT_EQ(info.creator, "c");
  EXPECT_EQ(info.producer, "p");
  EXPECT_EQ(info.trapped, "/True");
  EXPECT_EQ(info.creationDate, "D:1");
  EXPECT_EQ(info.modDate, "D:2");
}

TEST(Info, OtherKeysArePassedOver) {
  const CInfo info = infoOf("<</Company(x)/Title(t)>>");
  EXPECT_EQ(info.title, "t");
  EXPECT_EQ(info.author, CInfo().author);
}

TEST(Info, AnIndirectValueIsReadThroughTheReference) {
  const CInfo info = infoOf("<</Title 5 0 R/Author(a)>>", "(of five)");
  EXPECT_EQ(info.title, "of five");
  EXPECT_EQ(info.author, "a");
}

TEST(Info, AnIndirectValueMayLieInAnObjectStream) {
  const auto source = pdf()
                          .onePage("")
                          .object(4, "<</Title 5 0 R/Author(a)>>")
                          .compressed(9, 5, "(packed)")
                          .trailer("/Info 4 0 R")
                          .open();
  EXPECT_EQ(source->fileInfo.info.title, "packed");
  EXPECT_EQ(source->fileInfo.info.author, "a");
}

TEST(Info, AReferenceToItselfEndsTheRead) {
  const CInfo info = infoOf("<</Author(a)/Title 5 0 R/Subject(s)>>", "5 0 R");
  EXPECT_EQ(info.author, "a");
  EXPECT_EQ(info.title, "TESSEL");
  EXPECT_EQ(info.subject, CInfo().subject);
}

TEST(Info, AMissingValueEndsTheRead) {
  const CInfo info = infoOf("<</Title 44 0 R/Author(a)>>");
  EXPECT_EQ(info.title, "TESSEL");
  EXPECT_EQ(info.author, CInfo().author);
}

TEST(Info, TheNextObjectsPlaceEndsAnObjectAtAnOffset) {
  // Without its "endobj" the dictionary would run on into object 5.
  RawSource source("\n4 0 obj <</Title(t)>>\n5 0 obj <</Author(a)>> endobj ");
  source.info().objEntries[SObj(4, 0)] = {1, 0, 0, 1, 0};
  source.info().objEntries[SObj(5, 0)] = {23, 0, 0, 1, 0};
  CInfo info;
  info.setIdentity(SObj(4, 0));
  source->seekg(1);
  EXPECT_TRUE(info.Read(*source));
  EXPECT_EQ(info.title, "t");
  EXPECT_EQ(info.author, CInfo().author);
}

TEST(Info, ThePlaceOfOtherObjectsDoesNotEndOneInMemory) {
  RawSource source("4 0 obj <</Title(t)>> 5 0 obj <</Author(a)>> endobj ");
  source.info().objEntries[SObj(4, 0)] = {9, 0, 0, 2, 0};
  source.info().objEntries[SObj(5, 0)] = {9, 0, 0, 1, 0};
  source.info().objEntries[SObj(6, 0)] = {12, 0, 0, 1, 0};
  CInfo info;
  info.setIdentity(SObj(4, 0));
  EXPECT_TRUE(info.Read(*source));
  EXPECT_EQ(info.author, "a");
}

TEST(Info, WithoutAHeadItMustBeADictionary) {
  RawSource good("one two three <</Title(t)>> endobj ");
  EXPECT_TRUE(CInfo().Read(*good));
  RawSource bad("one two three (t) endobj ");
  EXPECT_FALSE(CInfo().Read(*bad));
}

TEST(Info, TheEndOfTheFileFails) {
  RawSource source("4 0 obj <</Title(t)>>");
  CInfo info;
  EXPECT_FALSE(info.Read(*source));
  EXPECT_EQ(info.title, "t");
}

TEST(Info, AnUnknownKeyHasNoValue) {
  RawSource source("(x) ");
  EXPECT_FALSE(CInfo().ReadInfo(*source, "/Company"));
}

TEST(Info, IsWrittenWithoutItsEnd) {
  CInfo info;
  info.setIdentity(SObj(4, 1));
  info.author = "a(b)";
  info.subject = "";
  info.creationDate = "D:1";
  info.modDate = "D:2";
  CDestFile dest;
  RawSource source("");
  EXPECT_TRUE(info.Write(dest, *source));
  EXPECT_EQ(std::string(dest),
            "4 1 obj\n<</Title (TESSEL)\n/Author (a\\(b\\))\n/Keywords (TESSEL<>)\n/Creator (TESSEL)\n"
            "/Producer (Quillory.Co.Ltd)\n/CreationDate (D:1)\n/Trapped (Unknown)\n/ModDate (D:2)endobj\n");
  EXPECT_EQ(dest.endMark, dest.size());
  EXPECT_EQ(dest.currentObject, SObj(4, 1));
}

/// createdate in a time zone.
std::string dateIn(const char* zone) {
  setenv("TZ", zone, 1);
  std::string date;
  CInfo::createdate(date);
  unsetenv("TZ");
  tzset();
  return date;
}

TEST(InfoDate, EndsInTheZonesHoursAndMinutes) {
  EXPECT_TRUE(dateIn("EAST-1").ends_with("+01'00'"));
  EXPECT_TRUE(dateIn("INDIA-5:30").ends_with("+05'30'"));
  EXPECT_TRUE(dateIn("ZERO0").ends_with("+00'00'"));
}

TEST(InfoDate, AZoneWestOfGreenwichHasThePlusSignToo) { EXPECT_TRUE(dateIn("WEST5").ends_with("+05'00'")); }

TEST(InfoDate, IsThePresentTime) {
  const std::time_t before = std::time(nullptr);
  const std::string date = dateIn("ZERO0");
  std::tm read{};
  ASSERT_EQ(date.size(), 23U);
  ASSERT_NE(strptime(date.c_str(), "D:%Y%m%d%H%M%S", &read), nullptr);
  EXPECT_GE(timegm(&read), before);
  EXPECT_LE(timegm(&read), std::time(nullptr));
}

TEST(InfoDic, TextsThatAreNotEmptyReplaceTheFields) {
  InfoDic record;
  std::strcpy(record.title, "t");
  std::strcpy(record.trapped, "True");
  CInfo info;
  info.SetInfo(record);
  EXPECT_EQ(info.title, "t");
  EXPECT_EQ(info.trapped, "True");
  EXPECT_EQ(info.creator, "TESSEL");
}

TEST(InfoDic, BothDatesAreAlwaysRebuilt) {
  InfoDic record;
  record.creationDate = {2024, 2, 3, 4, 5, 6, '-', 7, 8};
  CInfo info;
  info.modDate = "former";
  info.SetInfo(record);
  EXPECT_EQ(info.creationDate, "D:20240203040506-07'08'");
  EXPECT_EQ(info.modDate, "D:00000000000000+00'00'");
}

TEST(InfoDic, ATextWithoutATerminatorIsTakenWhole) {
  InfoDic record;
  std::memset(record.author, 'a', sizeof record.author);
  CInfo info;
  info.SetInfo(record);
  EXPECT_EQ(info.author, std::string(InfoDic::textSize, 'a'));
}

TEST(FileId, IsReadElsewhere) {
  TESSEL::CFileID id;
  RawSource source("<41>");
  EXPECT_TRUE(id.Read(*source));
  EXPECT_EQ(id.first, "");
  EXPECT_EQ(source->tellg(), 0);
}

TEST(FileId, IsWrittenAsThePairOfTheTrailer) {
  TESSEL::CFileID id;
  id.first = "A";
  id.second = "B";
  id.length = 1;
  RawSource source("");
  CDestFile dest;
  EXPECT_TRUE(id.Write(dest, *source));
  EXPECT_EQ(dest, "/ID[<41><42>]");
}

TEST(FileId, AStringEndsAtItsFirstZeroByte) {
  EXPECT_EQ(TESSEL::CFileID::asCString(std::string("ab\0c", 4)), "ab");
}

}  // namespace
