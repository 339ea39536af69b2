#include "Tests/Support/road.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <ostream>
#include <sstream>

namespace tessel_test {

namespace fs = std::filesystem;

namespace {

constexpr int signalStatus = 128;
constexpr int farOff = 64;
constexpr std::size_t samplesPerPixel = 3;
// What a test runs leaves its texts beside the test's own files.
constexpr const char* outName = ".stdout";
constexpr const char* errName = ".stderr";

std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

Picture readPpm(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::string magic;
  int largest = 0;
  Picture picture;
  in >> magic >> picture.width >> picture.height >> largest;
  in.get();
  if (magic != "P6" || largest != 255) return {};
  picture.pixels.resize(samplesPerPixel * static_cast<std::size_t>(picture.width) *
                        static_cast<std::size_t>(picture.height));
  in.read(picture.pixels.data(), static_cast<std::streamsize>(picture.pixels.size()));
  return in ? picture : Picture{};
}

int sample(const std::string& pixels, std::size_t i) { return static_cast<unsigned char>(pixels[i]); }

}  // namespace

std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

std::vector<int> Picture::at(double x, double y) const {
  const auto column = static_cast<std::size_t>(x * width);
  const auto row = static_cast<std::size_t>(y * height);
  const std::size_t start = samplesPerPixel * (row * static_cast<std::size_t>(width) + column);
  if (start + samplesPerPixel > pixels.size()) return {};
  return {sample(pixels, start), sample(pixels, start + 1), sample(pixels, start + 2)};
}

std::ostream& operator<<(std::ostream& out, const Difference& difference) {
  return out << "mean " << difference.mean << ", far share " << difference.farShare
             << (difference.sameSize ? "" : ", sizes differ");
}

Difference difference(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height || a.pixels.empty()) return {};
  double sum = 0;
  double far = 0;
  for (std::size_t pixel = 0; pixel < a.pixels.size(); pixel += samplesPerPixel) {
    int largest = 0;
    for (std::size_t i = pixel; i < pixel + samplesPerPixel; ++i) {
      const int off = std::abs(sample(a.pixels, i) - sample(b.pixels, i));
      sum += off;
      largest = std::max(largest, off);
    }
    if (largest > farOff) ++far;
  }
  const auto samples = static_cast<double>(a.pixels.size());
  return {sum / samples, far * samplesPerPixel / samples, true};
}

void RoadTest::SetUp() {
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  directory = fs::path(testing::TempDir()) / (std::string(test.test_suite_name()) + "." + test.name());
  fs::remove_all(directory);
  fs::create_directories(directory);
}

void RoadTest::TearDown() { fs::remove_all(directory); }

std::string RoadTest::file(const std::string& name, const std::string& bytes) const {
  std::ofstream(directory / name, std::ios::binary) << bytes;
  return path(name);
}

std::string RoadTest::contentOf(const std::string& name) const { return slurp(directory / name); }

std::vector<std::string> RoadTest::files() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(directory)) names.push_back(entry.path().filename());
  names.erase(std::remove_if(names.begin(), names.end(),
                             [](auto& name) { return name == outName || name == errName; }),
              names.end());
  std::sort(names.begin(), names.end());
  return names;
}

Outcome RoadTest::shell(const std::string& line) const {
  const std::string command =
      "cd " + quoted(directory.string()) + " && { " + line + "\n} >" + outName + " 2>" + errName;
  const int result = std::system(command.c_str());
  const int status = WIFEXITED(result) ? WEXITSTATUS(result) : signalStatus + WTERMSIG(result);
  return {status, slurp(directory / outName), slurp(directory / errName)};
}

Outcome RoadTest::tessel(const std::vector<std::string>& arguments) const {
  std::string line = quoted(TESSEL_TOOL);
  for (const std::string& argument : arguments) line += " " + quoted(argument);
  return shell(line);
}

Picture RoadTest::picture(const std::string& name, int page, Renderer renderer,
                          const std::string& password) const {
  const std::string number = std::to_string(page);
  const std::string key =
      password.empty() ? "" : (renderer == Renderer::poppler ? " -upw " : " -p ") + quoted(password);
  const Outcome outcome =
      renderer == Renderer::poppler
          ? shell("pdftoppm" + key + " -cropbox -r 50 -f " + number + " -singlefile " + quoted(name) +
                  " .picture")
          : shell("mutool draw -q" + key + " -r 50 -F ppm -o .picture.ppm " + quoted(name) + " " + number);
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  Picture rendered = readPpm(directory / ".picture.ppm");
  fs::remove(directory / ".picture.ppm");
  return rendered;
}

std::string RoadTest::complaintsAbout(const std::string& name, const std::string& password) const {
  const Outcome outcome = shell("qpdf --check --password=" + quoted(password) + " " + quoted(name));
  const bool warned =
      outcome.status != 0 || outcome.out.find("WARNING") != std::string::npos || !outcome.err.empty();
  return warned ? outcome.out + outcome.err : "";
}

}  // namespace tessel_test
