#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

/// The grammar transcribed combinator by combinator, with recursion and a new try at every byte: the measure
/// that the fast one is held to. For short texts only.
namespace literal {

struct Stream {
  const char* begin;
  const char* place;
  const char* end;
  const char* buffer;

  bool atEnd() const { return place == end; }
};

template <char c>
struct Char {
  static bool Accept(Stream& s) {
    if (s.atEnd() || *s.place != c) return false;
    ++s.place;
    return true;
  }
};

template <char lo, char hi>
struct Range {
  static bool Accept(Stream& s) {
    if (s.atEnd() || static_cast<unsigned char>(*s.place) < lo || static_cast<unsigned char>(*s.place) > hi)
      return false;
    ++s.place;
    return true;
  }
};

template <const char* text>
struct String {
  static bool Accept(Stream& s) {
    for (const char* t = text; *t; ++t) {
      if (s.atEnd() || *s.place != *t) return false;
      ++s.place;
    }
    return true;
  }
};

template <class A, class B>
struct And {
  static bool Accept(Stream& s) { return A::Accept(s) && !s.atEnd() && B::Accept(s); }
};

template <class A, class B, class C>
struct And3 {
  static bool Accept(Stream& s) {
    return A::Accept(s) && !s.atEnd() && B::Accept(s) && !s.atEnd() && C::Accept(s);
  }
};

template <class A, class B>
struct Or {
  static bool Accept(Stream& s) {
    const char* const from = s.place;
    if (A::Accept(s)) return true;
    s.place = from;
    return B::Accept(s);
  }
};

template <class A, class B, class C>
struct Or3 {
  static bool Accept(Stream& s) { return Or<A, Or<B, C>>::Accept(s); }
};

template <class A>
struct Star {
  static bool Accept(Stream& s) {
    while (!s.atEnd()) {
      const char* const from = s.place;
      if (A::Accept(s)) continue;
      s.place = from;
      break;
    }
    return true;
  }
};

template <class A>
struct Plus {
  static bool Accept(Stream& s) { return A::Accept(s) && Star<A>::Accept(s); }
};

template <class A, unsigned n>
struct Repeat {
  static bool Accept(Stream& s) {
    for (unsigned i = 0; i < n; ++i)
      if (!A::Accept(s)) return false;
    return true;
  }
};

template <class A>
struct Not {
  static bool Accept(Stream& s) {
    if (s.atEnd()) return false;
    const char* const from = s.place;
    const bool matched = A::Accept(s);
    s.place = from;
    return !matched;
  }
};

template <class A>
struct Until {
  static bool Accept(Stream& s) {
    const char* const from = s.place;
    for (const char* p = from; p != s.end; ++p) {
      s.place = p;
      if (A::Accept(s)) return true;
    }
    s.place = from;
    return false;
  }
};

template <int n>
struct GoTo {
  static bool Accept(Stream& s) {
    s.place += n;
    return true;
  }
};

template <class B, class E>
struct Nest {
  struct Help1 {
    static bool Accept(Stream& s) {
      const char* const from = s.place;
      for (const char* p = from; p != s.end; ++p) {
        s.place = p;
        const bool found = Or<B, E>::Accept(s);
        s.place = p;
        if (found) return true;
      }
      s.place = from;
      return false;
    }
  };
  struct MatchHelp {
    static bool Accept(Stream& s) { return Nest::Accept(s); }
  };
  static bool Accept(Stream& s) { return And3<B, Star<And3<Help1, MatchHelp, Help1>>, Until<E>>::Accept(s); }
};

/// Nest with the outcome at each place written down once: without that, unclosed pairs take exponential time.
/// `forget` before each new text.
template <class B, class E>
struct WrittenNest {
  using Outcome = std::pair<bool, const char*>;
  static std::map<const char*, Outcome>& outcomes() {
    static std::map<const char*, Outcome> all;
    return all;
  }
  static void forget() { outcomes().clear(); }

  using Help1 = typename Nest<B, E>::Help1;
  struct MatchHelp {
    static bool Accept(Stream& s) { return WrittenNest::Accept(s); }
  };
  static bool Accept(Stream& s) {
    const char* const from = s.place;
    const auto known = outcomes().find(from);
    if (known == outcomes().end()) {
      const bool matched = And3<B, Star<And3<Help1, MatchHelp, Help1>>, Until<E>>::Accept(s);
      outcomes()[from] = {matched, s.place};
      return matched;
    }
    s.place = known->second.second;
    return known->second.first;
  }
};

struct WSpace {
  static bool Accept(Stream& s) {
    if (s.atEnd() || std::string("\0\t\n\f\r ", 6).find(*s.place) == std::string::npos) return false;
    ++s.place;
    return true;
  }
};

struct Delimiter {
  static bool Accept(Stream& s) {
    return !s.atEnd() && std::string("%()/<>[]{}").find(*s.place) != std::string::npos;
  }
};

template <char parenthesis>
struct Parenthesis {
  static bool Accept(Stream& s) {
    if (!Char<parenthesis>::Accept(s)) return false;
    return s.place - 2 < s.buffer || s.place[-2] != '\\';
  }
};

inline constexpr char streamText[] = "stream";
inline constexpr char endstreamText[] = "endstream";
inline constexpr char nullText[] = "null";
inline constexpr char trueText[] = "true";
inline constexpr char falseText[] = "false";
inline constexpr char lengthText[] = "/Length";
inline constexpr char filterText[] = "/Filter";
inline constexpr char mediaBoxText[] = "/MediaBox";
inline constexpr char ascii85Text[] = "/ASCII85Decode";

using Digit = Range<'0', '9'>;
using Sign = Or<Char<'+'>, Char<'-'>>;
using Integer = Or<And<Sign, Plus<Digit>>, Plus<Digit>>;
using Number = Or<And3<Integer, Char<'.'>, Star<Digit>>, Integer>;
using Boolean = Or<String<trueText>, String<falseText>>;
using Null = String<nullText>;
using StringBegin = Parenthesis<'('>;
using StringEnd = Parenthesis<')'>;
using StringNest = Nest<StringBegin, StringEnd>;
using LiteralString =
    And3<StringBegin, Star<And3<StringNest::Help1, StringNest::MatchHelp, StringNest::Help1>>,
         Until<StringEnd>>;
using HexString = And3<Char<'<'>, Star<Or3<Digit, Range<'A', 'F'>, Range<'a', 'f'>>>, Char<'>'>>;
using StringObject = Or<LiteralString, HexString>;
using Name = And<Char<'/'>, Plus<And3<Not<Delimiter>, Not<WSpace>, GoTo<1>>>>;
using Array = Nest<Char<'['>, Char<']'>>;
using Dictionary = Nest<Repeat<Char<'<'>, 2>, Repeat<Char<'>'>, 2>>;
using Indirect = And3<And<Integer, Plus<WSpace>>, And<Integer, Plus<WSpace>>, Char<'R'>>;
using StreamBegin = And3<Repeat<Char<'>'>, 2>, Star<WSpace>, String<streamText>>;
using LengthEntry = And3<String<lengthText>, Plus<WSpace>, Or<Indirect, Integer>>;
using FilterEntry = And3<String<filterText>, Star<WSpace>, Or3<Indirect, Name, Array>>;
using Rectangle = And3<Char<'['>, Star<WSpace>, Until<Char<']'>>>;
using BoxEntry = And3<String<mediaBoxText>, Star<WSpace>, Rectangle>;
using StreamObject = And3<And<Dictionary, Star<WSpace>>, String<streamText>, Until<String<endstreamText>>>;
using WrittenDictionary = WrittenNest<Repeat<Char<'<'>, 2>, Repeat<Char<'>'>, 2>>;
using WrittenStreamObject =
    And3<And<WrittenDictionary, Star<WSpace>>, String<streamText>, Until<String<endstreamText>>>;
using StreamKeyword = And<String<streamText>, Star<WSpace>>;
using PlainName = And<Char<'/'>, Star<Or<Or<Range<'a', 'z'>, Range<'A', 'Z'>>, Range<'0', '9'>>>>;

using Tokens = std::vector<std::pair<const char*, const char*>>;

/// All matches from left to right, or only the first.
template <class R>
Tokens tokens(const char* begin, const char* end, const char* buffer, bool onlyOne) {
  Tokens found;
  for (const char* p = begin; p != end;) {
    Stream stream{begin, p, end, buffer};
    if (!R::Accept(stream)) {
      ++p;
      continue;
    }
    found.emplace_back(p, stream.place);
    if (onlyOne) break;
    p = stream.place;
  }
  return found;
}

/// All matches of R in the first match of T.
template <class R, class T>
Tokens tokensInFirst(const char* begin, const char* end, const char* buffer) {
  Tokens found;
  for (const auto& [from, to] : tokens<T>(begin, end, buffer, true))
    for (const auto& token : tokens<R>(from, to, buffer, false)) found.push_back(token);
  return found;
}

}  // namespace literal
