#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "TesselPage/Finder/pdf_rules.h"
#include "Tests/Finder/literal_grammar.h"

/// Compares the grammar with its literal transcription, on one text at a time.
namespace compare {

inline std::string show(std::string_view text, const literal::Tokens& tokens) {
  std::string shown;
  for (const auto& [begin, end] : tokens)
    shown += " " + std::to_string(begin - text.data()) + "-" + std::to_string(end - text.data());
  return shown.empty() ? " none" : shown;
}

inline literal::Tokens listed(const yard::TokenList& list) {
  return {list.tokens().begin(), list.tokens().end()};
}

/// A part of a text, with the text as its buffer.
struct Part {
  std::string_view text;
  std::size_t from;

  const char* begin() const { return text.data() + from; }
  const char* end() const { return text.data() + text.size(); }
};

template <class Tokenizer>
literal::Tokens run(const Part& part) {
  Tokenizer tokenizer;
  tokenizer.Tokenize(part.begin(), part.end(), part.text.data());
  return listed(tokenizer);
}

inline bool same(std::string_view text, const literal::Tokens& expected, const literal::Tokens& got,
                 const char* what) {
  if (expected == got) return true;
  ADD_FAILURE() << what << " in '" << text << "': expected" << show(text, expected) << ", got"
                << show(text, got);
  return false;
}

/// The rule tried at every place, each time alone.
template <class Fast, class Literal>
bool sameMatches(const Part& part) {
  literal::Tokens expected, got;
  for (const char* p = part.begin(); p != part.end() + 1; ++p) {
    literal::Stream slow{part.begin(), p, part.end(), part.text.data()};
    if (Literal::Accept(slow)) expected.emplace_back(p, slow.place);
    yard::Stream fast(part.begin(), part.end(), part.text.data());
    fast.restore(p);
    if (Fast::Accept(fast)) got.emplace_back(p, fast.position());
  }
  return same(part.text, expected, got, "matches");
}

/// The rule tried at every place with one memory; with `backward`, from the last place to the first.
template <class Fast, class Literal>
bool sameWithMemory(const Part& part, bool backward) {
  literal::Tokens expected, got;
  yard::Memory<Fast> memory;
  const auto places = part.text.size() - part.from;
  for (std::size_t i = 0; i < places; ++i) {
    const char* const p = backward ? part.end() - 1 - i : part.begin() + i;
    literal::Stream slow{part.begin(), p, part.end(), part.text.data()};
    if (Literal::Accept(slow)) expected.emplace_back(p, slow.place);
    yard::Stream fast(part.begin(), part.end(), part.text.data());
    fast.restore(p);
    if (yard::accept<Fast>(fast, memory)) got.emplace_back(p, fast.position());
  }
  return same(part.text, expected, got, backward ? "matches with memory, backward" : "matches with memory");
}

template <class Fast, class Literal>
bool sameTokens(const Part& part) {
  const char* const buffer = part.text.data();
  return same(part.text, literal::tokens<Literal>(part.begin(), part.end(), buffer, true),
              run<yard::OneTokenizer<Fast>>(part), "first token") &&
         same(part.text, literal::tokens<Literal>(part.begin(), part.end(), buffer, false),
              run<yard::Tokenizer<Fast>>(part), "tokens");
}

template <class Fast, class Literal>
bool sameRule(std::string_view text) {
  return sameMatches<Fast, Literal>({text, 0}) && sameTokens<Fast, Literal>({text, 0});
}

template <class Fast, class Literal>
bool sameRuleThoroughly(std::string_view text) {
  bool good = sameRule<Fast, Literal>(text) && sameWithMemory<Fast, Literal>({text, 0}, false) &&
              sameWithMemory<Fast, Literal>({text, 0}, true);
  for (std::size_t from = 1; good && from <= text.size(); ++from)
    good = sameTokens<Fast, Literal>({text, from});
  return good;
}

template <class Tokenizer, class R, class T>
bool sameInFirst(std::string_view text) {
  const char* const end = text.data() + text.size();
  return same(text, literal::tokensInFirst<R, T>(text.data(), end, text.data()), run<Tokenizer>({text, 0}),
              "tokens in the first one");
}

/// Every rule and every composite tokenizer.
inline bool sameGrammar(std::string_view text) {
  using namespace PDF_RULES;
  return sameRule<MatchInteger, literal::Integer>(text) &&
         sameRule<MatchNumberObject, literal::Number>(text) &&
         sameRule<MatchBooleanObject, literal::Boolean>(text) &&
         sameRule<MatchString<null_string>, literal::Null>(text) &&
         sameRule<MatchString<ASCII85Decode_string>, literal::String<literal::ascii85Text>>(text) &&
         sameRule<MatchLiteralStringBeginToken, literal::StringBegin>(text) &&
         sameRule<MatchLiteralStringEndToken, literal::StringEnd>(text) &&
         sameRuleThoroughly<MatchStringObject, literal::StringObject>(text) &&
         sameRule<MatchNameObject, literal::Name>(text) &&
         sameRuleThoroughly<MatchArrayObject, literal::Array>(text) &&
         sameRuleThoroughly<MatchDictionaryObject, literal::Dictionary>(text) &&
         sameRuleThoroughly<MatchIndirectObject, literal::Indirect>(text) &&
         sameRule<MatchStreamBegin, literal::StreamBegin>(text) &&
         sameRuleThoroughly<MatchLengthEntry, literal::LengthEntry>(text) &&
         sameRuleThoroughly<MatchFilterEntry, literal::FilterEntry>(text) &&
         sameRuleThoroughly<MatchRectangle, literal::Rectangle>(text) &&
         sameRuleThoroughly<MatchStreamObject, literal::StreamObject>(text) &&
         sameRuleThoroughly<MatchBoxEntry<MediaBox_string>, literal::BoxEntry>(text) &&
         sameRule<TESSEL::MatchStreamBeginPos_help, literal::StreamKeyword>(text) &&
         sameRule<MatchPlainName, literal::PlainName>(text) &&
         sameInFirst<MediaBoxTokenizer, literal::Number, literal::BoxEntry>(text) &&
         sameInFirst<FilterNameTokenizer, literal::PlainName, literal::FilterEntry>(text) &&
         sameInFirst<LengthReferenceTokenizer, literal::Indirect, literal::LengthEntry>(text) &&
         sameInFirst<LengthIntegerTokenizer, literal::Integer, literal::LengthEntry>(text);
}

}  // namespace compare
