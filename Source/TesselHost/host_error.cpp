#include "TesselHost/host_error.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "TesselPage/tessel_page.h"

namespace TesselHost {

namespace {

struct Reason {
  int code;
  const char* words;
};

constexpr std::array reasons = {
    Reason{TESSEL::Result::success, "no error"},
    Reason{TESSEL::Result::passwordNotTried, "the password can't be tried"},
    Reason{TESSEL::Result::notProtected, "not protected by a password"},
    Reason{TESSEL::Result::notReadable, "not a readable PDF"},
    Reason{TESSEL::Result::xrefNotReadable, "the cross-reference data can't be read"},
    Reason{TESSEL::Result::badRange, "a page range or a box is not valid"},
    Reason{TESSEL::Result::wrongPassword, "no password opens the file"},
    Reason{TESSEL::Result::damagedData, "damaged stream data"},
    Reason{TESSEL::Result::exceptionCaught, "the file is damaged beyond reading"},
    Reason{TESSEL::Result::pageOutOfRange, "a page without a usable size, or no such page"},
    Reason{TESSEL::Result::objectNotWritten, "an object that is needed can't be read"},
    Reason{TESSEL::Result::badKeyLength, "the length of the key is out of bounds"},
};

}  // namespace

std::string reasonOf(int code) {
  const auto* found =
      std::find_if(reasons.begin(), reasons.end(), [code](auto& row) { return row.code == code; });
  return found == reasons.end() ? "unknown failure" : found->words;
}

SourceError::SourceError(const std::string& file, int code) : SourceError(file, code, reasonOf(code)) {}

SourceError::SourceError(const std::string& file, int code, const std::string& reason)
    : HostError(fmt::format("{}: {} ({})", file, reason, code)), resultCode(code), words(reason) {}

SourceError::SourceError(const std::string& file, const std::string& reason)
    : HostError(fmt::format("{}: {}", file, reason)), words(reason) {}

OutputError::OutputError(const std::string& path, const std::string& what, int error)
    : HostError(error == 0 ? fmt::format("{}: {}", path, what)
                           : fmt::format("{}: {}: {}", path, what, std::strerror(error))) {}

}  // namespace TesselHost
