#pragma once

#include "TesselPage/Finder/yard.h"

/// A loose grammar of PDF values: each rule finds a construct in any bytes and knows nothing of what is
/// around it, nor of comments. It is no tokenizer of PDF files (ISO 32000-2, 7.2 and 7.3).
namespace PDF_RULES {

using yard::re_and, yard::re_and3, yard::re_not, yard::re_or, yard::re_or3, yard::re_plus, yard::re_repeat,
    yard::re_star, yard::re_until, yard::re_NestRule, yard::MatchChar, yard::MatchCharRange,
    yard::MatchString;

inline constexpr char stream_string[] = "stream";
inline constexpr char endstream_string[] = "endstream";
inline constexpr char null_string[] = "null";
inline constexpr char true_string[] = "true";
inline constexpr char false_string[] = "false";
inline constexpr char Length_string[] = "/Length";
inline constexpr char Filter_string[] = "/Filter";
inline constexpr char MediaBox_string[] = "/MediaBox";
inline constexpr char CropBox_string[] = "/CropBox";
inline constexpr char BleedBox_string[] = "/BleedBox";
inline constexpr char TrimBox_string[] = "/TrimBox";
inline constexpr char ArtBox_string[] = "/ArtBox";
inline constexpr char ASCII85Decode_string[] = "/ASCII85Decode";

constexpr bool isWhiteSpace(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t' || c == '\f' || c == '\0';
}

constexpr bool isDelimiter(char c) {
  constexpr char delimiters[] = {'%', '(', ')', '/', '<', '>', '[', ']', '{', '}'};
  for (const char delimiter : delimiters)
    if (c == delimiter) return true;
  return false;
}

/// One white space byte (ISO 32000-2, 7.2.3).
struct MatchWSpace {
  static bool Accept(yard::Stream& stream) {
    if (stream.atEnd() || !isWhiteSpace(stream.current())) return false;
    stream.step();
    return true;
  }
};

/// At a delimiter byte (ISO 32000-2, 7.2.3). Takes nothing: it only ever stands under re_not.
struct MatchDelimerCharacter {
  static bool Accept(const yard::Stream& stream) { return !stream.atEnd() && isDelimiter(stream.current()); }
};

using MatchDigit = MatchCharRange<'0', '9'>;

/// An optional sign and digits. What follows isn't looked at.
struct MatchInteger {
  static bool Accept(yard::Stream& stream) {
    if (!stream.atEnd() && (stream.current() == '+' || stream.current() == '-')) stream.step();
    return re_plus<MatchDigit>::Accept(stream);
  }
};

/// Digits, a point, digits or none; at least one byte must stand behind the point.
using MatchReal = re_and3<MatchInteger, MatchChar<'.'>, re_star<MatchDigit>>;

/// A real or an integer. Neither begins with the point: of ".5" it matches "5".
using MatchNumberObject = re_or<MatchReal, MatchInteger>;

/// "true" or "false", also inside a word.
using MatchBooleanObject = re_or<MatchString<true_string>, MatchString<false_string>>;

/// A parenthesis with no backslash right before it; backslashes aren't counted, so that the ")" of "(a\\)"
/// counts as escaped.
template <char parenthesis>
struct MatchParenthesis {
  static constexpr int leadByte = yard::byteValue(parenthesis);
  static constexpr char delimiterByte = parenthesis;
  static constexpr int delimiterWidth = 1;
  static constexpr bool escapable = true;
  static bool Accept(yard::Stream& stream) {
    return MatchChar<parenthesis>::Accept(stream) && !stream.peek(-2, '\\');
  }
};
using MatchLiteralStringBeginToken = MatchParenthesis<'('>;
using MatchLiteralStringEndToken = MatchParenthesis<')'>;
using MatchLiteralString = re_NestRule<MatchLiteralStringBeginToken, MatchLiteralStringEndToken>;

using MatchHexDigit = re_or3<MatchDigit, MatchCharRange<'A', 'F'>, MatchCharRange<'a', 'f'>>;

/// Hexadecimal digits, or none, in angle brackets. White space between them isn't allowed.
using MatchHexString = re_and3<MatchChar<'<'>, re_star<MatchHexDigit>, MatchChar<'>'>>;

/// A literal string or a hexadecimal one.
using MatchStringObject = re_or<MatchLiteralString, MatchHexString>;

/// "/" and at least one byte that is neither delimiter nor white space. "#" escapes stay as they are.
using MatchNameObject =
    re_and<MatchChar<'/'>,
           re_plus<re_and3<re_not<MatchDelimerCharacter>, re_not<MatchWSpace>, yard::Control_GoTo<1>>>>;

/// "[" and "]", balanced by counting alone.
using MatchArrayObject = re_NestRule<MatchChar<'['>, MatchChar<']'>>;

/// "<<" and ">>", balanced by counting alone: it knows no strings.
using MatchDictionaryObject = re_NestRule<re_repeat<MatchChar<'<'>, 2>, re_repeat<MatchChar<'>'>, 2>>;

/// A reference such as "12 0 R". What stands behind the "R" isn't looked at.
struct MatchIndirectObject {
  /// No match begins from `from` on before `stop`: what follows the digits there is the same for all of them.
  struct Memory {
    const char* from = nullptr;
    const char* stop = nullptr;
  };
  static bool Accept(yard::Stream& stream, Memory& memory) {
    const char* const from = stream.position();
    if (memory.stop && from >= memory.from && from < memory.stop) return false;
    if (Reference::Accept(stream)) return true;
    stream.restore(from);
    if (MatchInteger::Accept(stream)) memory = {from, stream.position()};
    return false;
  }
  static bool Accept(yard::Stream& stream) { return Reference::Accept(stream); }

 private:
  using Number = re_and<MatchInteger, re_plus<MatchWSpace>>;
  using Reference = re_and3<Number, Number, MatchChar<'R'>>;
};

/// The end of a dictionary, white space or none, "stream".
using MatchStreamBegin =
    re_and3<re_repeat<MatchChar<'>'>, 2>, re_star<MatchWSpace>, MatchString<stream_string>>;

/// "/Length", white space, and a reference or else an integer.
using MatchLengthEntry =
    re_and3<MatchString<Length_string>, re_plus<MatchWSpace>, re_or<MatchIndirectObject, MatchInteger>>;

/// "/Filter", white space or none, and a reference, a name or an array.
using MatchFilterEntry = re_and3<MatchString<Filter_string>, re_star<MatchWSpace>,
                                 re_or3<MatchIndirectObject, MatchNameObject, MatchArrayObject>>;

/// "[" and whatever stands up to the first "]".
using MatchRectangle = re_and3<MatchChar<'['>, re_star<MatchWSpace>, re_until<MatchChar<']'>>>;

/// A whole stream object: dictionary, "stream", and everything up to and including the first "endstream".
using MatchStreamObject = re_and3<re_and<MatchDictionaryObject, re_star<MatchWSpace>>,
                                  MatchString<stream_string>, re_until<MatchString<endstream_string>>>;

/// "stream" and the white space behind it, at least one byte of something.
using MatchStreamKeyword = re_and<MatchString<stream_string>, re_star<MatchWSpace>>;

/// "/" and letters and digits or none.
using MatchPlainName = re_and<
    MatchChar<'/'>,
    re_star<re_or<re_or<MatchCharRange<'a', 'z'>, MatchCharRange<'A', 'Z'>>, MatchCharRange<'0', '9'>>>>;

/// A page box's key with its rectangle.
template <const char* key>
using MatchBoxEntry = re_and3<MatchString<key>, re_star<MatchWSpace>, MatchRectangle>;

/// The numbers of the first rectangle of a box, in order.
template <const char* key>
using BoxTokenizer = yard::TokenizerRecursive<MatchNumberObject, yard::OneTokenizer<MatchBoxEntry<key>>>;
using MediaBoxTokenizer = BoxTokenizer<MediaBox_string>;
using CropBoxTokenizer = BoxTokenizer<CropBox_string>;
using BleedBoxTokenizer = BoxTokenizer<BleedBox_string>;
using TrimBoxTokenizer = BoxTokenizer<TrimBox_string>;
using ArtBoxTokenizer = BoxTokenizer<ArtBox_string>;

/// The names of the first "/Filter" entry, the key itself among them.
using FilterNameTokenizer = yard::TokenizerRecursive<MatchPlainName, yard::OneTokenizer<MatchFilterEntry>>;

/// The reference in the first "/Length" entry, if it holds one.
using LengthReferenceTokenizer =
    yard::TokenizerRecursive<MatchIndirectObject, yard::OneTokenizer<MatchLengthEntry>>;

/// The integer of the first "/Length" entry; both integers when it holds a reference.
using LengthIntegerTokenizer = yard::TokenizerRecursive<MatchInteger, yard::OneTokenizer<MatchLengthEntry>>;

}  // namespace PDF_RULES

namespace TESSEL {

/// Finds where a stream's data starts: white space at the head of the data is taken into the match.
using MatchStreamBeginPos_help = PDF_RULES::MatchStreamKeyword;

}  // namespace TESSEL
