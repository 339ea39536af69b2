#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>

#include "KelpGraphicService/kelp_codecs.h"
#include "Tests/KelpGraphicService/codec_fixture.h"

namespace KelpGraphicService_NS {
namespace {

FilterPropTD prediction(int predictor, int columns, int colors = 0, int bits = 0) {
  FilterPropTD prop;
  prop.filterKind = ftFlate;
  prop.predictor = predictor;
  prop.columns = columns;
  prop.colors = colors;
  prop.bitsPerComponent = bits;
  return prop;
}

Outcome undo(const FilterPropTD& prop, const std::string& predicted) {
  return inflateWith(prop, zlibStream(predicted));
}

struct Row {
  const char* name;
  FilterPropTD prop;
  const char* predicted;
  const char* plain;
};

std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

class Prediction : public testing::TestWithParam<Row> {};

TEST_P(Prediction, IsTakenBack) {
  const Row& row = GetParam();
  EXPECT_EQ(undo(row.prop, hex(row.predicted)), success(hex(row.plain)));
}

INSTANTIATE_TEST_SUITE_P(
    PNG, Prediction,
    testing::Values(Row{"None", prediction(10, 3), "00 010203", "010203"},
                    Row{"Sub", prediction(11, 4), "01 01020304", "0103060A"},
                    Row{"SubWraps", prediction(11, 2), "01 FF02", "FF01"},
                    Row{"UpOfTheFirstRow", prediction(12, 3), "02 010203", "010203"},
                    Row{"Up", prediction(12, 3), "02 010203 02 010101", "010203 020304"},
                    Row{"Average", prediction(13, 3), "00 0A141E 03 010101", "0A141E 060E17"},
                    Row{"AverageOfTheFirstRow", prediction(13, 3), "03 0A0A0A", "0A0F11"},
                    Row{"PaethTakesAbove", prediction(14, 2), "00 0A14 04 0105", "0A14 0B19"},
                    Row{"PaethTakesLeft", prediction(14, 2), "00 1414 04 0A01", "1414 1E1F"},
                    Row{"PaethTakesUpperLeft", prediction(14, 2), "00 1412 04 FE01", "1412 1213"},
                    Row{"PaethOfTheFirstRow", prediction(14, 3), "04 010203", "010306"},
                    Row{"RowsOfAllKinds", prediction(15, 2), "00 0101 01 0101 02 0101 03 0101 04 0101",
                        "0101 0102 0203 0203 0304"},
                    Row{"TheTagWinsOverThePredictor", prediction(10, 2), "00 0102 02 0101", "0102 0203"},
                    Row{"LeftPixelOfThreeColours", prediction(11, 2, 3), "01 010203 010101", "010203 020304"},
                    Row{"LeftPixelOf16Bits", prediction(11, 2, 1, 16), "01 0102 0101", "0102 0203"},
                    Row{"PixelsBelowAByteCountAsOne", prediction(11, 16, 1, 1), "01 0101", "0102"},
                    Row{"RowsOfHalfBytesArePadded", prediction(12, 3, 1, 4), "02 1230 02 1010", "1230 2240"},
                    Row{"LastRowIsNotWhole", prediction(12, 3), "02 010203 02 01", "010203 02"},
                    Row{"LastRowIsOnlyItsTag", prediction(12, 3), "02 010203 02", "010203"},
                    Row{"OnlyATag", prediction(12, 3), "02", ""}, Row{"NoData", prediction(12, 3), "", ""}),
    [](const auto& param) { return param.param.name; });

INSTANTIATE_TEST_SUITE_P(
    TIFF, Prediction,
    testing::Values(Row{"Bytes", prediction(2, 3), "010203 010203", "010306 010306"},
                    Row{"ThreeColours", prediction(2, 2, 3), "010203 010101", "010203 020304"},
                    Row{"Words", prediction(2, 3, 1, 16), "00FF 0001 FF00", "00FF 0100 0000"},
                    Row{"WordsOfTwoColours", prediction(2, 2, 2, 16), "0001 0100 0001 0101",
                        "0001 0100 0002 0201"},
                    Row{"HalfBytes", prediction(2, 4, 1, 4), "1F21", "1023"},
                    Row{"Quarters", prediction(2, 4, 1, 2), "55", "6C"},
                    Row{"Bits", prediction(2, 8, 1, 1), "FF", "AA"},
                    Row{"BitsOfThreeColours", prediction(2, 2, 3, 1), "B4", "A0"},
                    Row{"PaddingStays", prediction(2, 3, 1, 4), "111F", "123F"},
                    Row{"LastRowIsNotWhole", prediction(2, 4), "01010101 0101", "01020304 0102"},
                    Row{"HalfAWordStays", prediction(2, 2, 1, 16), "0001 01", "0001 01"}),
    [](const auto& param) { return param.param.name; });

TEST(Predictor, DefaultsAreOneColumnOfOneByte) {
  EXPECT_EQ(undo(prediction(12, 0), hex("0201 0201 0201")), success(hex("010203")));
}

TEST(Predictor, BelowTwoIsNone) {
  for (const int none : {-1, 0, 1}) EXPECT_EQ(undo(prediction(none, 3), "plain"), success("plain"));
}

TEST(Predictor, UnknownOnesAreDamage) {
  for (const int unknown : {3, 9, 16, 100, std::numeric_limits<int>::max()})
    EXPECT_EQ(undo(prediction(unknown, 3), "plain"), failure(ftDamaged)) << unknown;
}

TEST(Predictor, UnknownRowTagIsDamage) {
  EXPECT_EQ(undo(prediction(12, 2), hex("02 0101 05 0101")), failure(ftDamaged));
}

TEST(Predictor, UnknownBitDepthIsDamage) {
  for (const int bits : {3, 5, 7, 9, 32, std::numeric_limits<int>::max()}) {
    EXPECT_EQ(undo(prediction(2, 2, 1, bits), "plain"), failure(ftDamaged)) << bits;
    EXPECT_EQ(undo(prediction(12, 2, 1, bits), "plain"), failure(ftDamaged)) << bits;
  }
}

TEST(Predictor, HugeRowsTakeNoMemoryOfTheirOwn) {
  constexpr int most = std::numeric_limits<int>::max();
  EXPECT_EQ(undo(prediction(12, most), hex("02 0102")), success(hex("0102")));
  EXPECT_EQ(undo(prediction(2, most), hex("0102")), success(hex("0103")));
  EXPECT_EQ(undo(prediction(11, 1, most), hex("01 0102")), success(hex("0102")));
}

TEST(Predictor, RowsPastTheAddressSpaceAreDamage) {
  constexpr int most = std::numeric_limits<int>::max();
  EXPECT_EQ(undo(prediction(12, most, most, 16), hex("02 0102")), failure(ftDamaged));
  EXPECT_EQ(undo(prediction(2, most, most, 16), hex("02 0102")), failure(ftDamaged));
}

TEST(Predictor, LZWHasPredictionToo) {
  FilterPropTD prop = prediction(12, 1);
  prop.filterKind = ftLZW;
  prop.earlyChange = 1;
  // The codes 256, 2, 1, 2, 1, 257 of 9 bits.
  EXPECT_EQ(inflateWith(prop, hex("80 00 80 20 20 0C 04")).bytes, hex("0102"));
}

TEST(Predictor, OtherFiltersHaveNone) {
  FilterPropTD prop = prediction(12, 1);
  prop.filterKind = ftASCIIHex;
  EXPECT_EQ(inflateWith(prop, "0201 0201>"), success(hex("02010201")));
}

/// The PNG filters in the forward direction, byte by byte as ISO/IEC 15948, 9.2 writes them.
class PNGWriter {
 public:
  PNGWriter(std::string plain, std::size_t rowBytes, std::size_t left)
      : plain_(std::move(plain)), rowBytes_(rowBytes), left_(left) {}

  std::string write() const {
    std::string out;
    for (std::size_t row = 0; row * rowBytes_ < plain_.size(); ++row) {
      const int tag = static_cast<int>(row % 5);
      out += static_cast<char>(tag);
      for (std::size_t i = 0; i < rowBytes_; ++i)
        out += static_cast<char>(at(row, i) - predicted(tag, row, i));
    }
    return out;
  }

 private:
  int at(std::size_t row, std::size_t i) const {
    return static_cast<unsigned char>(plain_[row * rowBytes_ + i]);
  }
  int leftOf(std::size_t row, std::size_t i) const { return i < left_ ? 0 : at(row, i - left_); }
  int predicted(int tag, std::size_t row, std::size_t i) const {
    const int a = leftOf(row, i);
    const int b = row == 0 ? 0 : at(row - 1, i);
    const int c = row == 0 ? 0 : leftOf(row - 1, i);
    const int values[] = {0, a, b, (a + b) / 2, paeth(a, b, c)};
    return values[tag];
  }
  static int paeth(int a, int b, int c) {
    const int p = a + b - c;
    if (std::abs(p - a) <= std::abs(p - b) && std::abs(p - a) <= std::abs(p - c)) return a;
    return std::abs(p - b) <= std::abs(p - c) ? b : c;
  }

  std::string plain_;
  std::size_t rowBytes_;
  std::size_t left_;
};

TEST(Predictor, EveryPixelSizeComesBack) {
  for (int colors = 1; colors <= 6; ++colors) {
    for (const int bits : {8, 16}) {
      const auto left = static_cast<std::size_t>(colors * bits / 8);
      const std::size_t rowBytes = left * 37;
      const std::string plain = noise(rowBytes * 15, static_cast<unsigned>(colors * bits));
      const std::string predicted = PNGWriter(plain, rowBytes, left).write();
      EXPECT_EQ(undo(prediction(15, 37, colors, bits), predicted), success(plain))
          << colors << " of " << bits;
    }
  }
}

}  // namespace
}  // namespace KelpGraphicService_NS
