#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace TesselHost {

/// The value at the start of `text` (ISO 32000-2, 7.3), white space before it left out: a dictionary, an
/// array, a string, a reference, a name or what else stands there up to the next delimiter. Empty when none
/// stands there or when it isn't closed. A view into `text`; takes time linear in the value.
std::string_view valueAt(std::string_view text);

/// The value of a key, given as "/Group", of the first dictionary in `text`; keys of dictionaries inside it
/// don't count. Empty when there is no such key. A view into `text`.
std::string_view valueOfKey(std::string_view text, std::string_view key);

/// The first string at or behind `from` (ISO 32000-2, 7.3.4), literal or hexadecimal, with its brackets.
/// Empty when there is none. A view into `text`.
std::string_view nextString(std::string_view text, std::size_t from);

/// What stands between the brackets of a dictionary; empty when `value` is none.
std::string_view insideOf(std::string_view value);

/// The values that stand in a row in `text`, up to its end or to what is none. Views into `text`.
std::vector<std::string_view> valuesIn(std::string_view text);

/// The elements of an array; none when `value` isn't one. Views into `value`.
std::vector<std::string_view> elementsOf(std::string_view value);

/// Keys and values of the first dictionary in `text`, as they stand there. Views into `text`.
std::vector<std::pair<std::string_view, std::string_view>> entriesOf(std::string_view text);

bool isDictionary(std::string_view value);

/// Number and generation of the object that `value` refers to; nothing when it is no reference.
std::optional<std::pair<int, int>> referenceIn(std::string_view value);

/// `text` with each reference in it replaced by what `replacement` gives for it.
std::string withReferences(std::string_view text,
                           const std::function<std::string(const std::pair<int, int>&)>& replacement);

}  // namespace TesselHost
