#include "TesselHost/host_hash.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "PDFEncryption/hashes.h"

namespace TesselHost {

namespace {

// The function takes its length as an int.
constexpr std::size_t largestPiece = std::size_t{1} << 30U;

}  // namespace

std::string sha256Hex(std::string_view bytes) {
  pcrypt::_Sha256Calc context;
  pcrypt::Sha256Calc_init(&context);
  std::string copy(bytes);
  std::size_t done = 0;
  do {
    const std::size_t piece = std::min(largestPiece, copy.size() - done);
    pcrypt::Sha256Calc_calculate(&context, reinterpret_cast<signed char*>(copy.data() + done),
                                 static_cast<int>(piece));
    done += piece;
  } while (done < copy.size());
  std::string text;
  for (const signed char byte : context.digest)
    fmt::format_to(std::back_inserter(text), "{:02x}", static_cast<unsigned char>(byte));
  return text;
}

}  // namespace TesselHost
