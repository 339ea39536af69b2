#include "TesselHost/host_ascii.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

#include "TesselHost/host_dictionary.h"
#include "TesselHost/host_number.h"

namespace TesselHost {

namespace {

constexpr std::string_view ascii85Filter = "/ASCII85Decode";
constexpr std::string_view noParameters = "null";
constexpr std::string_view keyFilter = "/Filter";
constexpr std::string_view keyParameters = "/DecodeParms";
constexpr std::string_view keyLength = "/Length";
constexpr std::string_view streamWord = "stream";
constexpr std::string_view endWord = "endstream";
// As that variant writes it, with two blanks.
constexpr std::string_view encodedMark = "/Filter  [/ASCII85Decode";
constexpr std::string_view ascii85End = "~>";
constexpr std::string_view whiteSpace{"\0\t\n\v\f\r ", 7};
constexpr std::size_t groupBytes = 4;
constexpr std::size_t groupDigits = 5;
constexpr std::uint32_t base85 = 85;
constexpr std::string_view namesEnd{"\0\t\n\f\r ()<>[]{}/%", 16};

bool isHigh(char c) { return static_cast<signed char>(c) < 0; }

/// Goes through a text and knows whether it stands in a string, a name or a comment.
class Escaper {
 public:
  std::string escaped(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      // A backslash means nothing in front of such a byte, and would mean something in front of its digits.
      if (depth > 0 && c == '\\' && i + 1 < text.size()) {
        if (!isHigh(text[i + 1])) result.append(text.substr(i++, 2));
        continue;
      }
      if (!isHigh(c)) follow(c);
      isHigh(c) ? append(result, static_cast<unsigned char>(c)) : result.push_back(c);
    }
    return result;
  }

 private:
  void follow(char c) {
    if (depth > 0) {
      depth += c == '(' ? 1 : c == ')' ? -1 : 0;
      return;
    }
    if (inComment) {
      inComment = c != '\n' && c != '\r';
      return;
    }
    if (namesEnd.find(c) == std::string_view::npos) return;
    inName = c == '/';
    inComment = c == '%';
    if (c == '(') depth = 1;
  }
  void append(std::string& result, unsigned byte) const {
    if (depth > 0)
      fmt::format_to(std::back_inserter(result), "\\{:03o}", byte);
    else if (inName)
      fmt::format_to(std::back_inserter(result), "#{:02X}", byte);
    else
      result += '?';
  }

  int depth = 0;
  bool inName = false;
  bool inComment = false;
};

/// The elements of an array; a value that is none stands for itself.
std::vector<std::string> listOf(std::string_view value) {
  if (value.empty()) return {};
  if (value.front() != '[') return {std::string(value)};
  const auto elements = elementsOf(value);
  return {elements.begin(), elements.end()};
}

std::string arrayOf(std::string_view key, const std::vector<std::string>& values) {
  std::string text = std::string(key) + "[";
  for (const std::string& value : values) text += value + " ";
  text.back() = ']';
  return text;
}

/// A stream dictionary's filters and their parameters, apart from its other entries.
struct Filters {
  explicit Filters(std::string_view entries) {
    const std::string dictionary = "<<" + std::string(entries) + ">>";
    names = listOf(valueOfKey(dictionary, keyFilter));
    parameters = listOf(valueOfKey(dictionary, keyParameters));
    for (const auto& [key, value] : entriesOf(dictionary))
      if (key != keyFilter && key != keyParameters) others.append(key).append(" ").append(value);
  }

  std::string text() const {
    std::string result = others + arrayOf(keyFilter, names);
    if (!parameters.empty()) result += arrayOf(keyParameters, parameters);
    return result;
  }

  std::vector<std::string> names;
  std::vector<std::string> parameters;
  std::string others;
};

/// What stands behind the word "stream" and its line end; nothing when another word stands there.
std::optional<std::string_view> behindStreamWord(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
  if (!text.starts_with(streamWord)) return std::nullopt;
  text.remove_prefix(streamWord.size());
  if (text.starts_with('\r')) text.remove_prefix(1);
  if (text.starts_with('\n')) text.remove_prefix(1);
  return text;
}

/// Up to the word behind the data, its line end left out.
std::string_view upToEndWord(std::string_view data) {
  data = data.substr(0, data.rfind(endWord));
  if (data.ends_with('\n')) data.remove_suffix(1);
  if (data.ends_with('\r')) data.remove_suffix(1);
  return data;
}

}  // namespace

bool isAscii(std::string_view bytes) { return std::none_of(bytes.begin(), bytes.end(), isHigh); }

std::string asciiText(std::string_view text) {
  return isAscii(text) ? std::string(text) : Escaper().escaped(text);
}

std::string ascii85(std::string_view data) {
  constexpr std::size_t lineLength = 80;
  std::string result;
  result.reserve(data.size() / groupBytes * groupDigits + data.size() / (lineLength / 2));
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < data.size(); i += groupBytes) {
    const std::string_view piece = data.substr(i, groupBytes);
    std::uint32_t value = 0;
    for (std::size_t k = 0; k < groupBytes; ++k)
      value = value << 8U | (k < piece.size() ? static_cast<unsigned char>(piece[k]) : 0U);
    std::array<char, groupDigits> text{};
    for (std::size_t k = groupDigits; k-- > 0; value /= base85)
      text[k] = static_cast<char>('!' + value % base85);
    const bool zero = piece.size() == groupBytes && piece == std::string_view("\0\0\0\0", groupBytes);
    zero ? result.push_back('z') : void(result.append(text.data(), piece.size() + 1));
    if (result.size() - lineStart >= lineLength) {
      result += '\n';
      lineStart = result.size();
    }
  }
  return result += ascii85End;
}

std::string bytesOfAscii85(std::string_view text) {
  std::string result;
  std::uint32_t value = 0;
  std::size_t count = 0;
  const auto give = [&result, &value](std::size_t bytes) {
    for (std::size_t k = 0; k < bytes; ++k) result += static_cast<char>(value >> (8 * (groupBytes - 1 - k)));
    value = 0;
  };
  for (const char c : text.substr(0, text.find(ascii85End))) {
    if (c == 'z' && count == 0) give(groupBytes);
    if (c < '!' || c > 'u') continue;
    value = value * base85 + static_cast<std::uint32_t>(c - '!');
    if (++count < groupDigits) continue;
    give(groupBytes);
    count = 0;
  }
  if (count < 2) return result;
  // A group that was cut is filled up with the greatest digit.
  for (std::size_t k = count; k < groupDigits; ++k) value = value * base85 + base85 - 1;
  give(count - 1);
  return result;
}

namespace {

/// What a stream was whose data begins with white space: that, and what stands encoded behind it, with as
/// many bytes too many, which may have cost the word behind the data.
std::string dataBehindWhiteSpace(std::string_view data) {
  const auto blank = std::min(data.find_first_not_of(whiteSpace), data.size());
  const std::string encoded = bytesOfAscii85(data.substr(blank));
  return std::string(data.substr(0, blank))
      .append(encoded, 0, encoded.size() - std::min(blank, encoded.size()));
}

bool beginsBlank(std::string_view data) {
  return data.find(ascii85End) != std::string_view::npos &&
         whiteSpace.find(data.front()) != std::string_view::npos;
}

std::string withoutFirstFilter(std::string_view entries) {
  Filters filters(entries);
  filters.names.erase(filters.names.begin());
  return filters.text();
}

}  // namespace

std::optional<StreamParts> partsOfStream(std::string_view body) {
  const std::string_view dictionary = valueAt(body);
  if (!isDictionary(dictionary)) return std::nullopt;
  const auto end = static_cast<std::size_t>(dictionary.data() - body.data()) + dictionary.size();
  const auto data = behindStreamWord(body.substr(end));
  if (!data) return std::nullopt;
  StreamParts parts;
  for (const auto& [key, value] : entriesOf(dictionary))
    if (key != keyLength) parts.entries.append(key).append(" ").append(value);
  if (dictionary.find(encodedMark) != std::string_view::npos && beginsBlank(*data))
    return StreamParts{withoutFirstFilter(parts.entries), dataBehindWhiteSpace(*data)};
  const auto word = data->rfind(endWord);
  if (word == std::string_view::npos) return std::nullopt;
  // Data may itself end in what looks like a line end.
  const auto length = parseCount(valueOfKey(dictionary, keyLength));
  const bool known = length && static_cast<std::size_t>(*length) <= word;
  parts.data = known ? data->substr(0, static_cast<std::size_t>(*length)) : upToEndWord(*data);
  return parts;
}

std::string withFilter(std::string_view entries, std::string_view filter, std::string_view parameters) {
  Filters filters(entries);
  if (parameters != noParameters) filters.parameters.resize(filters.names.size(), std::string(noParameters));
  if (parameters != noParameters || !filters.parameters.empty())
    filters.parameters.insert(filters.parameters.begin(), std::string(parameters));
  filters.names.insert(filters.names.begin(), std::string(filter));
  return filters.text();
}

std::string withAscii85(std::string_view entries) { return withFilter(entries, ascii85Filter, noParameters); }

std::string withParametersInStep(std::string_view entries) {
  Filters filters(entries);
  if (filters.parameters.empty() || filters.parameters.size() >= filters.names.size() ||
      filters.names.front() != ascii85Filter)
    return std::string(entries);
  filters.parameters.insert(filters.parameters.begin(), filters.names.size() - filters.parameters.size(),
                            std::string(noParameters));
  return filters.text();
}

}  // namespace TesselHost
