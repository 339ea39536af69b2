// Compares two folders of rendered pages, PPM or PNG, by file name. Prints one line a page:
// NAME SAME-SIZE MEAN-DIFFERENCE SHARE-OF-PIXELS-FAR-OFF
// A page that only one folder has is printed with "missing". Sizes count as the same within two pixels; what
// both pictures share is compared.

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr int channels = 3;
constexpr int farOff = 64;        // of 255, in any channel
constexpr int sizeTolerance = 2;  // pixels

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> pixels;

  const unsigned char* at(int x, int y) const {
    return &pixels[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                    static_cast<std::size_t>(x)) *
                   channels];
  }
};

std::string readFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Picture readPPM(const std::string& bytes) {
  Picture picture;
  int greatest = 0;
  int consumed = 0;
  if (std::sscanf(bytes.c_str(), "P6 %d %d %d%n", &picture.width, &picture.height, &greatest, &consumed) != 3)
    throw std::runtime_error("no PPM");
  picture.pixels.assign(bytes.begin() + consumed + 1, bytes.end());
  return picture;
}

unsigned bigEndian(const std::string& bytes, std::size_t at) {
  unsigned value = 0;
  for (std::size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
  return value;
}

int paeth(int a, int b, int c) {
  const int p = a + b - c;
  const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
  if (pa <= pb && pa <= pc) return a;
  return pb <= pc ? b : c;
}

/// Undoes the row filters of a PNG with 8-bit RGB pixels.
void unfilter(Picture& picture, const std::vector<unsigned char>& rows) {
  const std::size_t stride = static_cast<std::size_t>(picture.width) * channels;
  picture.pixels.resize(stride * static_cast<std::size_t>(picture.height));
  for (std::size_t y = 0; y < static_cast<std::size_t>(picture.height); ++y) {
    const unsigned char* in = &rows[y * (stride + 1)];
    unsigned char* out = &picture.pixels[y * stride];
    for (std::size_t x = 0; x < stride; ++x) {
      const int a = x >= channels ? out[x - channels] : 0;
      const int b = y > 0 ? out[x - stride] : 0;
      const int c = x >= channels && y > 0 ? (out - stride)[x - channels] : 0;
      const int predicted[] = {0, a, b, (a + b) / 2, paeth(a, b, c)};
      out[x] = static_cast<unsigned char>(in[x + 1] + predicted[std::min<int>(in[0], 4)]);
    }
  }
}

Picture readPNG(const std::string& bytes) {
  Picture picture;
  std::string packed;
  for (std::size_t at = 8; at + 8 <= bytes.size();) {
    const unsigned length = bigEndian(bytes, at);
    const std::string type = bytes.substr(at + 4, 4);
    if (type == "IHDR") {
      picture.width = static_cast<int>(bigEndian(bytes, at + 8));
      picture.height = static_cast<int>(bigEndian(bytes, at + 12));
      if (bytes.at(at + 16) != 8 || bytes.at(at + 17) != 2) throw std::runtime_error("no 8-bit RGB");
    }
    if (type == "IDAT") packed.append(bytes, at + 8, length);
    at += 12 + length;
  }
  const std::size_t stride = static_cast<std::size_t>(picture.width) * channels + 1;
  std::vector<unsigned char> rows(stride * static_cast<std::size_t>(picture.height));
  uLongf size = static_cast<uLongf>(rows.size());
  if (uncompress(rows.data(), &size, reinterpret_cast<const Bytef*>(packed.data()),
                 static_cast<uLong>(packed.size())) != Z_OK)
    throw std::runtime_error("damaged PNG");
  unfilter(picture, rows);
  return picture;
}

Picture read(const std::filesystem::path& path) {
  const std::string bytes = readFile(path);
  return bytes.rfind("P6", 0) == 0 ? readPPM(bytes) : readPNG(bytes);
}

void compare(const std::string& name, const Picture& a, const Picture& b) {
  const bool sameSize =
      std::abs(a.width - b.width) <= sizeTolerance && std::abs(a.height - b.height) <= sizeTolerance;
  const int width = std::min(a.width, b.width);
  const int height = std::min(a.height, b.height);
  double sum = 0;
  long far = 0;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      int most = 0;
      for (int c = 0; c < channels; ++c) {
        const int difference = std::abs(a.at(x, y)[c] - b.at(x, y)[c]);
        sum += difference;
        most = std::max(most, difference);
      }
      far += most > farOff;
    }
  const double pixels = std::max(1.0, static_cast<double>(width) * height);
  std::printf("%s %s %.4f %.6f\n", name.c_str(), sameSize ? "same" : "other", sum / (pixels * channels),
              static_cast<double>(far) / pixels);
}

std::map<std::string, std::filesystem::path> pagesOf(const char* folder) {
  std::map<std::string, std::filesystem::path> pages;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    // "p-007.ppm" and "p-7.ppm" are the same page: renderers pad by the number of pages.
    const std::string stem = entry.path().stem().string();
    pages[std::to_string(std::atoi(stem.substr(stem.rfind('-') + 1).c_str()))] = entry.path();
  }
  return pages;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  auto left = pagesOf(arguments[1]);
  const auto right = pagesOf(arguments[2]);
  for (const auto& [name, path] : right)
    if (left.count(name) == 0) std::printf("%s missing\n", name.c_str());
  for (const auto& [name, path] : left) {
    const auto other = right.find(name);
    if (other == right.end()) {
      std::printf("%s missing\n", name.c_str());
      continue;
    }
    try {
      compare(name, read(path), read(other->second));
    } catch (const std::exception& problem) {
      std::printf("%s unreadable %s\n", name.c_str(), problem.what());
    }
  }
  return 0;
}
