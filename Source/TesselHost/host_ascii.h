#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace TesselHost {

// Texts of objects that stay within seven bits, for outputs that must pass as plain text.

/// Whether no byte has its high bit set.
bool isAscii(std::string_view bytes);

/// An object's text without a stream, within seven bits: in strings and names the bytes beyond are escaped,
/// in comments they become question marks.
std::string asciiText(std::string_view text);

/// Data as ASCII85Decode takes it (ISO 32000-2, 7.4.3), with the mark of its end.
std::string ascii85(std::string_view data);

/// Undoes ascii85, up to the mark of the end; other bytes than digits count as nothing.
std::string bytesOfAscii85(std::string_view text);

/// Entries of a stream's dictionary, /Length left out, and its data.
struct StreamParts {
  std::string entries;
  std::string data;
};

/// Takes the body of a stream object apart that the library's ASCII-safe variant handed over; nothing when it
/// is none. What that one encodes begins behind white space, also where that is the data's own: such a
/// stream comes back as it was before.
std::optional<StreamParts> partsOfStream(std::string_view body);

/// The entries of a stream whose data has been put through one more filter.
/// @param parameters  of that filter
std::string withFilter(std::string_view entries, std::string_view filter, std::string_view parameters);

/// The same for data that has been put through ascii85.
std::string withAscii85(std::string_view entries);

/// The entries with as many parameters as filters: a filter that was put in front of others without
/// parameters of its own gets null ones.
std::string withParametersInStep(std::string_view entries);

}  // namespace TesselHost
