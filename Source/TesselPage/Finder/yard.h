#pragma once

#include <cstddef>
#include <cstring>
#include <list>
#include <utility>

#include "TesselPage/Finder/yard_pairs.h"

/// Small parser combinators over a range of bytes.
///
/// A rule is a type with a static `Accept(stream)`, which tells whether the rule matches at the stream's
/// place and then leaves the stream behind the match. After a failure the place is anywhere: who tries a rule
/// and goes on restores it. A rule may also have a `Memory` and an `Accept(stream, memory)`: what one attempt
/// learned about the text spares the next ones, so that a tokenizer, which tries its rule at every byte,
/// stays linear in the text. A memory belongs to one rule, one text and one run over it; no match depends on
/// it.
namespace yard {

/// A place in a range of bytes. Copies of it are places of their own; the bytes stay the caller's.
template <class Char, class Iterator>
class ParserInputStream;

template <>
class ParserInputStream<char, const char*> {
 public:
  /// A range that is a whole buffer: no byte stands before its first one.
  ParserInputStream(const char* rangeBegin, const char* rangeEnd)
      : ParserInputStream(rangeBegin, rangeEnd, rangeBegin) {}

  /// A range of a buffer that starts at `bufferStart`: bytes before the range can be peeked at.
  ParserInputStream(const char* rangeBegin, const char* rangeEnd, const char* bufferStart)
      : first(rangeBegin), place(rangeBegin), last(rangeEnd), buffer(bufferStart) {}

  const char* begin() const { return first; }
  const char* end() const { return last; }
  const char* bufferStart() const { return buffer; }
  const char* position() const { return place; }
  void restore(const char* position) { place = position; }
  bool atEnd() const { return place == last; }
  std::size_t left() const { return static_cast<std::size_t>(last - place); }

  /// The byte at the place. Requires that the stream isn't at end.
  char current() const { return *place; }
  /// Goes to the next byte. Requires that the stream isn't at end.
  void step() { ++place; }

  /// Whether the byte at `offset` from the place is `c`; no byte before the buffer or behind the range is
  /// any.
  bool peek(std::ptrdiff_t offset, char c) const {
    return offset >= buffer - place && offset < last - place && place[offset] == c;
  }

 private:
  const char* first;
  const char* place;
  const char* last;
  const char* buffer;
};

using Stream = ParserInputStream<char, const char*>;

/// The memory of a rule that needs none.
struct NoMemory {};

template <class R>
concept Remembering = requires {
  typename R::Memory;
};

template <class R>
struct MemoryOf {
  using Type = NoMemory;
};
template <Remembering R>
struct MemoryOf<R> {
  using Type = typename R::Memory;
};
template <class R>
using Memory = typename MemoryOf<R>::Type;

/// `R::Accept`, with its memory where it has one.
template <class R>
bool accept(Stream& stream, Memory<R>& memory) {
  if constexpr (Remembering<R>) {
    return R::Accept(stream, memory);
  } else {
    return R::Accept(stream);
  }
}

/// Gives a rule that has `Accept(stream, memory)` the one without: an attempt that stands alone.
template <class R, class M>
struct Alone {
  static bool Accept(Stream& stream) {
    M memory;
    return R::Accept(stream, memory);
  }
};

/// A rule as a function object.
template <class R>
struct match {
  bool operator()(Stream& stream) const { return R::Accept(stream); }
};

/// The byte that every match of a rule begins with, or `anyByte`.
inline constexpr int anyByte = -1;
template <class R>
inline constexpr int leadByte = anyByte;
template <class R>
requires requires { R::leadByte; }
inline constexpr int leadByte<R> = R::leadByte;

constexpr std::size_t lengthOf(const char* text) {
  std::size_t length = 0;
  while (text[length]) ++length;
  return length;
}

constexpr int byteValue(char c) { return static_cast<unsigned char>(c); }

/// The next place from `from` on, before `end`, where a match of R may begin; `end` when there is none.
template <class R>
const char* candidate(const char* from, const char* end) {
  if constexpr (leadByte<R> == anyByte) {
    return from;
  } else {
    if (from == end) return end;
    const void* found = std::memchr(from, leadByte<R>, static_cast<std::size_t>(end - from));
    return found ? static_cast<const char*>(found) : end;
  }
}

/// The byte c.
template <char c>
struct MatchChar {
  static constexpr int leadByte = byteValue(c);
  static constexpr char delimiterByte = c;
  static constexpr int delimiterWidth = 1;
  static constexpr bool escapable = false;
  static bool Accept(Stream& stream) {
    if (stream.atEnd() || stream.current() != c) return false;
    stream.step();
    return true;
  }
};

/// One byte from lo to hi, as unsigned values.
template <char lo, char hi>
struct MatchCharRange {
  static bool Accept(Stream& stream) {
    if (stream.atEnd()) return false;
    const int byte = byteValue(stream.current());
    if (byte < byteValue(lo) || byte > byteValue(hi)) return false;
    stream.step();
    return true;
  }
};

/// The bytes of a constant string that isn't empty. What stands before and behind isn't looked at.
template <const char* text>
struct MatchString {
  static constexpr std::size_t length = lengthOf(text);
  static constexpr int leadByte = byteValue(text[0]);
  static bool Accept(Stream& stream) {
    if (stream.left() < length || std::memcmp(stream.position(), text, length) != 0) return false;
    stream.restore(stream.position() + length);
    return true;
  }
};

/// A, then B. Fails when the stream is at end behind A, even if B could match nothing.
template <class A, class B>
struct re_and {
  struct Memory {
    [[no_unique_address]] yard::Memory<A> a;
    [[no_unique_address]] yard::Memory<B> b;
  };
  static constexpr int leadByte = yard::leadByte<A>;
  static bool Accept(Stream& stream, Memory& memory) {
    return accept<A>(stream, memory.a) && !stream.atEnd() && accept<B>(stream, memory.b);
  }
  static bool Accept(Stream& stream) { return Alone<re_and, Memory>::Accept(stream); }
};

/// A, then B, then C, with the failure at end behind A and behind B.
template <class A, class B, class C>
struct re_and3 : re_and<A, re_and<B, C>> {};

/// A, or else B.
template <class A, class B>
struct re_or {
  struct Memory {
    [[no_unique_address]] yard::Memory<A> a;
    [[no_unique_address]] yard::Memory<B> b;
  };
  static constexpr int leadByte = yard::leadByte<A> == yard::leadByte<B> ? yard::leadByte<A> : anyByte;
  static bool Accept(Stream& stream, Memory& memory) {
    const char* const from = stream.position();
    if (accept<A>(stream, memory.a)) return true;
    stream.restore(from);
    return accept<B>(stream, memory.b);
  }
  static bool Accept(Stream& stream) { return Alone<re_or, Memory>::Accept(stream); }
};

/// A, or else B, or else C.
template <class A, class B, class C>
struct re_or3 : re_or<A, re_or<B, C>> {};

/// A as often as it matches, up to the end. Always matches.
template <class A>
struct re_star {
  static bool Accept(Stream& stream) {
    yard::Memory<A> memory;
    while (!stream.atEnd()) {
      const char* const from = stream.position();
      const bool matched = accept<A>(stream, memory);
      if (!matched) stream.restore(from);
      if (stream.position() == from) break;  // also where A matches nothing, for ever
    }
    return true;
  }
};

/// A at least once.
template <class A>
struct re_plus {
  static constexpr int leadByte = yard::leadByte<A>;
  static bool Accept(Stream& stream) { return A::Accept(stream) && re_star<A>::Accept(stream); }
};

/// A delimiter byte n times in a row is a delimiter too.
template <class A, unsigned n>
struct RepeatedDelimiter {};
template <class A, unsigned n>
requires requires { A::delimiterByte; }
struct RepeatedDelimiter<A, n> {
  static constexpr char delimiterByte = A::delimiterByte;
  static constexpr int delimiterWidth = A::delimiterWidth * static_cast<int>(n);
  static constexpr bool escapable = A::escapable;
};

/// A exactly n times in a row.
template <class A, unsigned n>
struct re_repeat : RepeatedDelimiter<A, n> {
  static constexpr int leadByte = yard::leadByte<A>;
  static bool Accept(Stream& stream) {
    for (unsigned i = 0; i < n; ++i)
      if (!A::Accept(stream)) return false;
    return true;
  }
};

/// Not at end, and A doesn't match here. Takes nothing.
template <class A>
struct re_not {
  static bool Accept(Stream& stream) {
    if (stream.atEnd()) return false;
    const char* const from = stream.position();
    const bool matched = A::Accept(stream);
    stream.restore(from);
    return !matched;
  }
};

/// Everything up to and including the first match of A.
template <class A>
struct re_until {
  /// No match begins from `from` on before `hit`. The one at `hit` ends at `behind`; when that is null, `hit`
  /// is the end of the range and there is none.
  struct Memory {
    const char* from = nullptr;
    const char* hit = nullptr;
    const char* behind = nullptr;
  };
  static bool Accept(Stream& stream, Memory& memory) {
    const char* const from = stream.position();
    if (!memory.from || from > memory.hit) {
      memory = firstBefore(stream, from, stream.end());
    } else if (from < memory.from) {
      const Memory nearer = firstBefore(stream, from, memory.from);
      if (nearer.behind) memory = nearer;
      memory.from = from;
    }
    stream.restore(memory.behind ? memory.behind : from);
    return memory.behind != nullptr;
  }
  static bool Accept(Stream& stream) { return Alone<re_until, Memory>::Accept(stream); }

 private:
  static Memory firstBefore(Stream& stream, const char* from, const char* stop) {
    for (const char* p = from; (p = candidate<A>(p, stop)) != stop; ++p) {
      stream.restore(p);
      if (A::Accept(stream)) return {from, p, stream.position()};
    }
    return {from, stop, nullptr};
  }
};

/// Moves on by n bytes, at most to the end of the range. Always matches.
template <unsigned n>
struct Control_GoTo {
  static bool Accept(Stream& stream) {
    stream.restore(stream.left() < n ? stream.end() : stream.position() + n);
    return true;
  }
};

/// A balanced pair: the delimiter B, text with pairs of its own, the delimiter E that closes.
///
/// It is what re_and3<B, re_star<re_and3<Help1, MatchHelp, Help1>>, re_until<E>> matches: an item of the star
/// that fails is given back whole, and the first E behind its start then closes the pair. So an unclosed pair
/// may match up to a closing inside it: "(a(b)c" matches "(a(b)". No recursion: see PairScan.
template <class B, class E>
struct re_NestRule {
  static constexpr int leadByte = yard::leadByte<B>;
  static constexpr PairShape shape = {B::delimiterByte, E::delimiterByte, B::delimiterWidth, B::escapable};
  static_assert(B::delimiterWidth == E::delimiterWidth && B::escapable == E::escapable);
  static_assert(B::delimiterByte != E::delimiterByte);

  struct Memory {
    PairScan scan{shape};
  };
  static bool Accept(Stream& stream, Memory& memory) {
    const char* const from = stream.position();
    if (!B::Accept(stream)) return false;
    memory.scan.bind(stream.bufferStart(), stream.end());
    const char* const end = memory.scan.endOf(from);
    if (end) stream.restore(end);
    return end != nullptr;
  }
  static bool Accept(Stream& stream) { return Alone<re_NestRule, Memory>::Accept(stream); }

  /// Goes to the next B or E, taking nothing; fails, the place put back, when there is none.
  struct Help1 {
    static bool Accept(Stream& stream) {
      const char* const from = stream.position();
      for (const char* p = from; p != stream.end(); ++p) {
        stream.restore(p);
        const bool found = re_or<B, E>::Accept(stream);
        stream.restore(found ? p : from);
        if (found) return true;
      }
      return false;
    }
  };

  /// The whole rule again.
  struct MatchHelp {
    static bool Accept(Stream& stream) { return re_NestRule::Accept(stream); }
  };
};

/// Bytes from the first to behind the last one, in the text that was tokenized.
using Token = std::pair<const char*, const char*>;

/// Splits a rule that begins with a balanced pair into the pair and what must stand behind it.
template <class R>
struct PairThen {};
template <class B, class E, class T>
struct PairThen<re_and<re_NestRule<B, E>, T>> {
  using Pair = re_NestRule<B, E>;
  using Tail = T;
};
template <class B, class E, class T, class U>
struct PairThen<re_and3<re_NestRule<B, E>, T, U>> {
  using Pair = re_NestRule<B, E>;
  using Tail = re_and<T, U>;
};
template <class B, class E, class T, class U, class V>
struct PairThen<re_and3<re_and<re_NestRule<B, E>, T>, U, V>> {
  using Pair = re_NestRule<B, E>;
  using Tail = re_and3<T, U, V>;
};

/// Finds the matches of R in a range, from left to right, in one run.
template <class R>
class Search {
 public:
  explicit Search(const Stream& range) : stream(range) {}

  /// Goes to a place, from which the search goes on. What earlier attempts have learned is kept.
  void standAt(const char* place) { stream.restore(place); }

  /// Finds the leftmost match at the place of the search or behind it; the search goes on behind that match.
  /// @return false when there is none
  bool next(Token& token) {
    const char* const end = stream.end();
    for (const char* p = stream.position(); (p = candidate<R>(p, end)) != end; ++p) {
      stream.restore(p);
      if (!accept<R>(stream, memory)) continue;
      token = {p, stream.position()};
      return true;
    }
    stream.restore(end);
    return false;
  }

 private:
  Stream stream;
  [[no_unique_address]] Memory<R> memory;
};

/// The same for a rule that looks behind a balanced pair: there a byte by byte trial would count the same
/// brackets again for each level.
template <class R>
requires requires { typename PairThen<R>::Tail; }
class Search<R> {
 public:
  explicit Search(const Stream& range)
      : stream(range), pairs(PairThen<R>::Pair::shape, {&Search::tailAccepts, this}) {
    pairs.bind(range.bufferStart(), range.end());
  }
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;

  /// As in the other form.
  bool next(Token& token) {
    const char* end = nullptr;
    const bool found = pairs.leftmost(stream.position(), token.first, end);
    stream.restore(stream.end());
    if (!found) return false;
    acceptTail(end);
    token.second = stream.position();
    return true;
  }

 private:
  using Tail = typename PairThen<R>::Tail;

  bool acceptTail(const char* from) {
    stream.restore(from);
    return !stream.atEnd() && accept<Tail>(stream, tailMemory);
  }
  static bool tailAccepts(void* self, const char* from) {
    return static_cast<Search*>(self)->acceptTail(from);
  }

  Stream stream;
  PairSearch pairs;
  [[no_unique_address]] Memory<Tail> tailMemory;
};

/// The tokens that a tokenizer has found, in the order found, over all its runs. Copying copies the list.
class TokenList {
 public:
  bool empty() const { return list.empty(); }
  std::size_t size() const { return list.size(); }
  /// The first token. Requires that there is one.
  const Token& front() const { return list.front(); }
  const std::list<Token>& tokens() const { return list; }

 protected:
  template <class R>
  void appendFirst(const Stream& range) {
    Search<R> search(range);
    if (Token token; search.next(token)) list.push_back(token);
  }
  template <class R>
  void appendAll(const Stream& range) {
    Search<R> search(range);
    for (Token token{range.begin(), range.end()}; token.first != token.second && search.next(token);)
      list.push_back(token);
  }

 private:
  std::list<Token> list;
};

/// Finds the leftmost match of R.
template <class R>
class OneTokenizer : public TokenList {
 public:
  /// Searches a range whose first byte is the first of its buffer.
  void Tokenize(const char* begin, const char* end) { Tokenize(begin, end, begin); }

  /// Searches a range of a buffer that starts at `bufferStart`. Appends at most one token, which stays valid
  /// as long as the text does.
  void Tokenize(const char* begin, const char* end, const char* bufferStart) {
    appendFirst<R>(Stream(begin, end, bufferStart));
  }
};

/// Finds all matches of R from left to right, each behind the one before.
template <class R>
class Tokenizer : public TokenList {
 public:
  /// As in OneTokenizer.
  void Tokenize(const char* begin, const char* end) { Tokenize(begin, end, begin); }

  /// As in OneTokenizer, with all tokens. A match of nothing would come again for ever, so it ends the run.
  void Tokenize(const char* begin, const char* end, const char* bufferStart) {
    appendAll<R>(Stream(begin, end, bufferStart));
  }
};

/// Finds all matches of R inside the tokens of T, which themselves are dropped.
template <class R, class T>
class TokenizerRecursive : public TokenList {
 public:
  /// As in OneTokenizer.
  void Tokenize(const char* begin, const char* end) { Tokenize(begin, end, begin); }

  /// As in Tokenizer, for the range of each token of T.
  void Tokenize(const char* begin, const char* end, const char* bufferStart) {
    T regions;
    regions.Tokenize(begin, end, bufferStart);
    for (const Token& region : regions.tokens())
      appendAll<R>(Stream(region.first, region.second, bufferStart));
  }
};

}  // namespace yard
