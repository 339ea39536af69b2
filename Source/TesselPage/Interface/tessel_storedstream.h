#pragma once

#include <string>

namespace TESSEL {

/// Splits a stream object's text into its data as stored and its filter entries, such as "/Filter
/// /FlateDecode".
/// @return false when the text is no stream, a filter entry is a reference, or a filter needs more than its
/// entries
///         (an external file, a crypt filter)
bool splitStoredStream(const std::string& text, std::string& data, std::string& filterEntries);

}  // namespace TESSEL
