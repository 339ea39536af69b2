#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

/// Runs the built program on files of its own and has its output judged by other programs.
namespace tessel_test {

/// What a program left.
struct Outcome {
  int status = -1;  ///< exit status; 128 and the signal when one ended it
  std::string out;
  std::string err;
};

/// A picture of one page, three bytes a pixel.
struct Picture {
  int width = 0;
  int height = 0;
  std::string pixels;

  /// Red, green, blue of the pixel at these fractions of width and height, from the upper left.
  std::vector<int> at(double x, double y) const;
};

enum class Renderer { poppler, mupdf };

/// How far two pictures are from each other.
struct Difference {
  double mean = 255;    ///< mean absolute difference of a sample, of 255
  double farShare = 1;  ///< share of pixels that are off by more than 64 in a sample
  bool sameSize = false;

  /// The measure for "renders like the source".
  bool alike() const { return sameSize && mean < 2 && farShare < 0.01; }
};
std::ostream& operator<<(std::ostream& out, const Difference& difference);

Difference difference(const Picture& a, const Picture& b);

/// A test with a directory of its own, which goes with it.
class RoadTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// A path in the test's directory.
  std::string path(const std::string& name) const { return (directory / name).string(); }
  /// A file with these bytes; its path.
  std::string file(const std::string& name, const std::string& bytes) const;
  std::string contentOf(const std::string& name) const;
  /// Names of the files in the directory, sorted.
  std::vector<std::string> files() const;

  /// Runs the program; names without a directory are files of the test.
  Outcome tessel(const std::vector<std::string>& arguments) const;
  /// Runs a line of shell in the test's directory.
  Outcome shell(const std::string& line) const;

  /// Renders a page, counted from 1, at 50 dots per inch.
  Picture picture(const std::string& name, int page, Renderer renderer,
                  const std::string& password = {}) const;
  /// What qpdf says to a file; "" when it finds nothing at all.
  std::string complaintsAbout(const std::string& name, const std::string& password = {}) const;

  std::filesystem::path directory;
};

/// The text as one word of a shell line.
std::string quoted(const std::string& text);

}  // namespace tessel_test
