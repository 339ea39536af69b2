#include "TesselPage/Finder/tessel_findinghint.h"

#include <gmock/gmock.h>

#include <sstream>

#include "TesselPage/Finder/tessel_finderexception.h"

namespace {

using namespace TESSEL;
using testing::MatchesRegex;

TEST(FindingHint, FirstTypeOfAKeyStays) {
  FindingHint hint;
  EXPECT_TRUE(hint.insertHintInfo("/Info", ePDFString));
  EXPECT_FALSE(hint.insertHintInfo("/Info", ePDFName));
  EXPECT_EQ(hint.getPropertyType("/Info"), ePDFString);
}

TEST(FindingHint, KeysCompareAsBytesWithTheirSlash) {
  FindingHint hint;
  hint.insertHintInfo("/Info", ePDFString);
  EXPECT_TRUE(hint.keyExist("/Info"));
  EXPECT_FALSE(hint.keyExist("Info"));
  EXPECT_FALSE(hint.keyExist("/info"));
}

TEST(FindingHint, CopyHasTheKeysAndNoValues) {
  FindingHint hint;
  hint.insertHintInfo("/S", ePDFName);
  hint.insertPropertyValue("/S", "/GTS_PDFX");
  const FindingHint copy(hint);
  EXPECT_EQ(copy.getPropertyType("/S"), ePDFName);
  EXPECT_EQ(copy.getPropertyValueCount("/S"), 0);
  EXPECT_EQ(hint.getPropertyValueCount("/S"), 1);
}

TEST(FindingHint, KeyWithoutValueGivesAnEmptyString) {
  FindingHint hint;
  hint.insertHintInfo("/A", ePDFString);
  hint.insertPropertyValue("/B", "value of a later key");
  EXPECT_EQ(hint.getPropertyValue("/A"), "");
  EXPECT_EQ(hint.getPropertyValue("/Never"), "");
  EXPECT_EQ(hint.getPropertyValueCount("/Never"), 0);
}

TEST(FindingHint, ValuesOfAKeyStayInOrderAndEqualOnesStayApart) {
  FindingHint hint;
  for (const char* value : {"second letter b", "a", "a"}) hint.insertPropertyValue("/K", value);
  EXPECT_EQ(hint.getPropertyValueCount("/K"), 3);
  EXPECT_EQ(hint.getPropertyValue("/K"), "second letter b");
}

TEST(FindingHint, OutputGoesByKeyAndThenByOrder) {
  FindingHint hint;
  hint.insertPropertyValue("/B", "2");
  hint.insertPropertyValue("/A", "1");
  hint.insertPropertyValue("/B", "0");
  std::ostringstream out;
  hint.outPutValue(out);
  EXPECT_EQ(out.str(), "/A\n1\n/B\n2\n/B\n0\n");
}

TEST(FindingHint, OutputOfNoValuesIsNothing) {
  FindingHint hint;
  hint.insertHintInfo("/A", ePDFString);
  std::ostringstream out;
  hint.outPutValue(out);
  EXPECT_EQ(out.str(), "");
}

TEST(FindingHint, TypeNumbersAreFixed) {
  EXPECT_THAT((std::vector<int>{ePDFUnknown, ePDFBoolean, ePDFNumber, ePDFString, ePDFName, ePDFArray,
                                ePDFDictionary, ePDFNull, ePDFStream, ePDFIndirect}),
              testing::ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9));
}

TEST(FindingHint, TypeOfAKeyThatIsNotAskedForThrows) {
  const FindingHint hint;
  try {
    hint.getPropertyType("/Foo");
    FAIL();
  } catch (const std::exception& e) {
    EXPECT_THAT(e.what(), MatchesRegex("Not Found\\. input param is:  error value: /Foo\n"
                                       "Exception in file: tessel_findinghint\\.cpp at line: [0-9]+"));
  }
}

TEST(FinderException, MessageAloneAndPlace) {
  EXPECT_STREQ(BaseException("TESSEL_LocalObjErr", {"a.cpp", 12}).what(),
               "TESSEL_LocalObjErr\nException in file: a.cpp at line: 12");
}

TEST(FinderException, MessageWithValueAndPlace) {
  EXPECT_STREQ(BaseException("TESSEL_LocalObjErr", "12 0 R", {"a.cpp", 7}).what(),
               "TESSEL_LocalObjErr error value: 12 0 R\nException in file: a.cpp at line: 7");
}

TEST(FinderException, PlaceNamesTheFileWithoutItsPath) {
  EXPECT_STREQ((TESSEL_THROW_PLACE).file, "tessel_findinghint_test.cpp");
}

}  // namespace
