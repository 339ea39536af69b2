#include "TesselPage/Finder/pdf_rules.h"

#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace PDF_RULES;
using testing::ElementsAre;
using yard::OneTokenizer, yard::Tokenizer, yard::TokenizerRecursive;

using Texts = std::vector<std::string>;

template <class T>
Texts tokens(std::string_view text) {
  T tokenizer;
  tokenizer.Tokenize(text.data(), text.data() + text.size());
  Texts found;
  for (const yard::Token& token : tokenizer.tokens()) found.emplace_back(token.first, token.second);
  return found;
}

/// The first match of R; "none" when there is none.
template <class R>
std::string first(std::string_view text) {
  const Texts found = tokens<OneTokenizer<R>>(text);
  return found.empty() ? "none" : found.front();
}

struct Row {
  const char* text;
  const char* found;
};

template <class R>
void expectFirst(std::initializer_list<Row> rows) {
  for (const Row& row : rows) EXPECT_EQ(first<R>(row.text), row.found) << "in '" << row.text << "'";
}

using A = MatchChar<'a'>;
using B = MatchChar<'b'>;
using C = MatchChar<'c'>;

// Combinators

TEST(Combinators, CharTakesOneEqualByte) { expectFirst<A>({{"ba", "a"}, {"b", "none"}, {"", "none"}}); }

TEST(Combinators, CharRangeComparesUnsignedBytes) {
  expectFirst<MatchCharRange<'a', 'f'>>({{"xf", "f"}, {"g", "none"}});
  expectFirst<MatchCharRange<'\x7f', '\x81'>>({{"a\x80", "\x80"}, {"\x82", "none"}});
}

TEST(Combinators, StringMustFitEntirelyAndLooksAtNothingAround) {
  expectFirst<MatchString<null_string>>(
      {{"nullable", "null"}, {"annul", "none"}, {"nul", "none"}, {"nunull", "null"}});
}

TEST(Combinators, AndFailsAtEndBehindItsFirstPart) {
  expectFirst<re_and<A, re_star<B>>>({{"a", "none"}, {"ab", "ab"}, {"ac", "a"}, {"abb", "abb"}});
}

TEST(Combinators, And3FailsAtEndBehindEachPartButTheLast) {
  expectFirst<re_and3<A, re_star<B>, re_star<C>>>(
      {{"a", "none"}, {"ab", "none"}, {"abc", "abc"}, {"abx", "ab"}});
}

TEST(Combinators, OrTakesTheFirstThatAccepts) {
  expectFirst<re_or<re_and<A, B>, A>>({{"ab", "ab"}, {"ac", "a"}, {"c", "none"}});
  expectFirst<re_or3<C, re_and<A, B>, A>>({{"ac", "a"}, {"cab", "c"}});
}

TEST(Combinators, StarGivesBackTheAttemptThatFailed) {
  expectFirst<re_and3<A, re_star<re_and<B, C>>, B>>({{"abcbcb", "abcbcb"}, {"abcbc", "none"}, {"ab", "ab"}});
}

TEST(Combinators, StarOfNothingEnds) {
  expectFirst<re_and<A, re_star<re_star<B>>>>({{"abx", "ab"}, {"ax", "a"}});
}

TEST(Combinators, PlusNeedsOne) { expectFirst<re_and<A, re_plus<B>>>({{"abb", "abb"}, {"ac", "none"}}); }

TEST(Combinators, RepeatIsExact) { expectFirst<re_repeat<A, 3>>({{"aa", "none"}, {"aaaa", "aaa"}}); }

TEST(Combinators, NotTakesNothingAndFailsAtEnd) {
  expectFirst<re_and3<A, re_not<B>, C>>({{"ac", "ac"}, {"ab", "none"}});
  const char none[] = "";
  yard::Stream atEnd(none, none);
  EXPECT_FALSE(re_not<A>::Accept(atEnd));
}

TEST(Combinators, UntilEndsBehindTheFirstMatch) {
  expectFirst<re_and<A, re_until<B>>>({{"axxbb", "axxb"}, {"ab", "ab"}, {"axx", "none"}});
}

TEST(Combinators, UntilPutsThePlaceBackWhenItFails) {
  const std::string_view text = "xyz";
  yard::Stream stream(text.data(), text.data() + text.size());
  EXPECT_FALSE(re_until<A>::Accept(stream));
  EXPECT_EQ(stream.position(), text.data());
}

TEST(Combinators, GoToMovesOnAndNeverBeyondTheEnd) {
  expectFirst<re_and3<A, yard::Control_GoTo<2>, C>>({{"axxc", "axxc"}, {"axc", "none"}});
}

TEST(Combinators, MatchIsTheRuleAsAFunctionObject) {
  const std::string_view text = "ab";
  yard::Stream stream(text.data(), text.data() + text.size());
  EXPECT_TRUE(yard::match<A>()(stream));
  EXPECT_FALSE(yard::match<A>()(stream));
}

TEST(Combinators, HelpsOfAPairGoToTheNextDelimiterAndMatchAPair) {
  const std::string_view text = "ab[c]";
  yard::Stream stream(text.data(), text.data() + text.size());
  EXPECT_TRUE(MatchArrayObject::Help1::Accept(stream));
  EXPECT_EQ(stream.position(), text.data() + 2);
  EXPECT_TRUE(MatchArrayObject::MatchHelp::Accept(stream));
  EXPECT_EQ(stream.position(), text.data() + 5);
  EXPECT_FALSE(MatchArrayObject::Help1::Accept(stream));
}

// Tokenizers

TEST(Tokenizers, OneTakesTheLeftmostMatchOnly) {
  EXPECT_THAT(tokens<OneTokenizer<A>>("xaya"), ElementsAre("a"));
}

TEST(Tokenizers, AllMatchesNeverOverlap) {
  EXPECT_THAT((tokens<Tokenizer<re_repeat<A, 2>>>("aaaaa")), ElementsAre("aa", "aa"));
}

TEST(Tokenizers, RecursivePicksPiecesOutOfRegions) {
  EXPECT_THAT((tokens<TokenizerRecursive<MatchInteger, Tokenizer<MatchArrayObject>>>("1 [2 3] 4 [5]")),
              ElementsAre("2", "3", "5"));
}

TEST(Tokenizers, EmptyRangeGivesNothing) { EXPECT_THAT(tokens<Tokenizer<re_star<A>>>(""), ElementsAre()); }

TEST(Tokenizers, MatchOfNothingEndsTheRun) {
  EXPECT_THAT(tokens<Tokenizer<re_star<A>>>("aax"), ElementsAre("aa", ""));
}

TEST(Tokenizers, RunsAppendAndCopiesCopyTheList) {
  const std::string_view text = "12 34";
  OneTokenizer<MatchInteger> tokenizer;
  tokenizer.Tokenize(text.data(), text.data() + 2);
  OneTokenizer<MatchInteger> copy = tokenizer;
  copy.Tokenize(text.data() + 3, text.data() + 5);
  EXPECT_EQ(tokenizer.size(), 1U);
  EXPECT_EQ(copy.size(), 2U);
  EXPECT_EQ(copy.front(), tokenizer.front());
}

// Numbers and words

TEST(PdfRules, Integer) {
  expectFirst<MatchInteger>({{"x-12.5", "-12"}, {"+7", "+7"}, {"--1", "-1"}, {"+", "none"}});
}

TEST(PdfRules, Number) {
  expectFirst<MatchNumberObject>({{"12.5x", "12.5"},
                                  {"12.", "12"},
                                  {"12.x", "12."},
                                  {".5", "5"},
                                  {"-0.25", "-0.25"},
                                  {"+3", "+3"},
                                  {"1.5", "1.5"},
                                  {"a", "none"}});
}

TEST(PdfRules, Boolean) {
  expectFirst<MatchBooleanObject>(
      {{"truest", "true"}, {"untrue", "true"}, {"x false", "false"}, {"tru", "none"}});
}

TEST(PdfRules, WhiteSpaceIsSixBytes) {
  for (int c = 0; c < 256; ++c) {
    const char byte = static_cast<char>(c);
    yard::Stream stream(&byte, &byte + 1);
    const bool white = std::string_view("\0\x09\x0a\x0c\x0d\x20", 6).find(byte) != std::string_view::npos;
    EXPECT_EQ(MatchWSpace::Accept(stream), white) << c;
    EXPECT_EQ(stream.atEnd(), white) << c;
  }
}

TEST(PdfRules, DelimitersAreTenBytesAndNotTaken) {
  for (int c = 0; c < 256; ++c) {
    const char byte = static_cast<char>(c);
    yard::Stream stream(&byte, &byte + 1);
    EXPECT_EQ(MatchDelimerCharacter::Accept(stream),
              std::string_view("%()/<>[]{}").find(byte) != std::string_view::npos)
        << c;
    EXPECT_FALSE(stream.atEnd()) << c;
  }
}

// Strings

TEST(PdfRules, StringBalancesAndFallsBackToAnInnerClosing) {
  expectFirst<MatchStringObject>({{"(a(b)c)", "(a(b)c)"},
                                  {"(a(b)c", "(a(b)"},
                                  {"(abc", "none"},
                                  {"(", "none"},
                                  {"()", "()"},
                                  {"x(y)z", "(y)"},
                                  {"((a)b", "((a)"},
                                  {"((a(b))", "((a(b)"}});
}

TEST(PdfRules, UnclosedStringInFrontOfAnUnclosedOneFailsAsAWhole) {
  // The pair inside is complete, so the star keeps it; then nothing closes the rest.
  expectFirst<MatchStringObject>({{"(a(b)(c", "(b)"}, {"((a(b)(c", "((a(b)"}});
}

TEST(PdfRules, ABackslashEscapesTheParenthesisBehindItHoweverManyThereAre) {
  expectFirst<MatchStringObject>(
      {{"(a\\)b)", "(a\\)b)"}, {"(a\\\\)b)", "(a\\\\)b)"}, {"\\(a)(b)", "(b)"}, {"(a\\(b)", "(a\\(b)"}});
}

TEST(PdfRules, TheByteBeforeTheRangeCountsWhenTheBufferHasIt) {
  const std::string_view text = "\\(a)(b)";
  OneTokenizer<MatchStringObject> alone, inBuffer;
  alone.Tokenize(text.data() + 1, text.data() + text.size());
  EXPECT_EQ(alone.front().first, text.data() + 1);
  inBuffer.Tokenize(text.data() + 1, text.data() + text.size(), text.data());
  EXPECT_EQ(inBuffer.front().first, text.data() + 4);
}

TEST(PdfRules, TheByteBeforeARegionCounts) {
  EXPECT_THAT(
      (tokens<TokenizerRecursive<MatchStringObject,
                                 OneTokenizer<re_and<MatchChar<'('>, re_until<MatchString<null_string>>>>>>(
          "\\(a)(b)null")),
      ElementsAre("(b)"));
}

TEST(PdfRules, HexadecimalString) {
  expectFirst<MatchStringObject>(
      {{"<41aF>", "<41aF>"}, {"<>", "<>"}, {"<4 1>", "none"}, {"<<41>>", "<41>"}, {"<4G>", "none"}});
}

// Names

TEST(PdfRules, Name) {
  expectFirst<MatchNameObject>({{"//Foo", "/Foo"},
                                {"/", "none"},
                                {"/A#20B(", "/A#20B"},
                                {"/\x80\xff ", "/\x80\xff"},
                                {"/ A/B", "/B"},
                                {"/A%", "/A"}});
}

TEST(PdfRules, PlainNameMayBeTheBareSlash) {
  EXPECT_THAT(tokens<Tokenizer<MatchPlainName>>("/A-b / /c9_"), ElementsAre("/A", "/", "/c9"));
  expectFirst<MatchPlainName>({{"/", "none"}});
}

// Arrays, dictionaries, references

TEST(PdfRules, ArrayBalancesByCountingAlone) {
  expectFirst<MatchArrayObject>(
      {{"x[1[2]3]4", "[1[2]3]"}, {"[(])]", "[(]"}, {"[1", "none"}, {"[1[2]", "[1[2]"}});
}

TEST(PdfRules, Dictionary) {
  expectFirst<MatchDictionaryObject>({{"<</A<</B 1>>>>", "<</A<</B 1>>>>"},
                                      {"<</A<</B 1>> /C", "<</A<</B 1>>"},
                                      {"<</A 1", "none"},
                                      {"<</A(>>)>>", "<</A(>>"},
                                      {"<</A<41>>>", "<</A<41>>"},
                                      {"<<<A>>", "<<<A>>"},
                                      {"<A>>", "none"}});
}

TEST(PdfRules, Reference) {
  expectFirst<MatchIndirectObject>({{"12 0 R", "12 0 R"},
                                    {"12 0", "none"},
                                    {"12 0 ", "none"},
                                    {"12 0 obj", "none"},
                                    {"1 12 0 Rx", "12 0 R"},
                                    {"-1 +0\n\tR", "-1 +0\n\tR"},
                                    {"12 0R", "none"},
                                    {"a12 0 R", "12 0 R"}});
}

TEST(PdfRules, IntegerAtTheVeryEndIsNoIntegerWithWhiteSpace) {
  expectFirst<re_and<MatchInteger, re_plus<MatchWSpace>>>({{"12", "none"}, {"12 ", "12 "}});
}

// Entries and streams

TEST(PdfRules, StreamBegin) {
  expectFirst<MatchStreamBegin>({{"<<>>\r\nstream\n", ">>\r\nstream"},
                                 {">>stream", ">>stream"},
                                 {">> endstream", "none"},
                                 {">>", "none"}});
}

TEST(PdfRules, LengthEntry) {
  expectFirst<MatchLengthEntry>({{"/Length 12 0 R", "/Length 12 0 R"},
                                 {"/Length 12 0 obj", "/Length 12"},
                                 {"/Length/FlateDecode", "none"},
                                 {"/Length12", "none"},
                                 {"/Length1 9/Length  8", "/Length  8"},
                                 {"/Length -3", "/Length -3"}});
}

TEST(PdfRules, FilterEntry) {
  expectFirst<MatchFilterEntry>({{"/Filter/A/B", "/Filter/A"},
                                 {"/Filter [/A[/B]] ", "/Filter [/A[/B]]"},
                                 {"/Filter 7 0 R", "/Filter 7 0 R"},
                                 {"/Filter null", "none"},
                                 {"/Filter", "none"},
                                 {"/Filter[/A", "none"}});
}

TEST(PdfRules, Rectangle) {
  expectFirst<MatchRectangle>(
      {{"[ 0 0 612 792 ]", "[ 0 0 612 792 ]"}, {"[ 0 0 612 792", "none"}, {"[[x]]", "[[x]"}, {"[]", "[]"}});
}

TEST(PdfRules, StreamObject) {
  expectFirst<MatchStreamObject>({{"x<</L 1>> stream\nendstreamendstream", "<</L 1>> stream\nendstream"},
                                  {"<<>>stream", "none"},
                                  {"<<>>streamendstream", "<<>>streamendstream"},
                                  {"<<>>endstream", "none"},
                                  {"<< <<>>stream endstream", "<< <<>>stream endstream"},
                                  {"<< <<>>stream endstream >>", "<<>>stream endstream"},
                                  {"<</A<41>>>stream endstream", "none"}});
}

TEST(PdfRules, StreamKeywordNeedsAByteBehindIt) {
  expectFirst<TESSEL::MatchStreamBeginPos_help>(
      {{"stream", "none"}, {"stream\r\n\n x", "stream\r\n\n "}, {"streamx", "stream"}});
}

TEST(PdfRules, Ascii85FilterName) {
  expectFirst<MatchString<ASCII85Decode_string>>(
      {{"[/ASCII85Decode]", "/ASCII85Decode"}, {"/ASCII85", "none"}});
}

// Composite tokenizers

TEST(PdfRules, NumbersOfABox) {
  const char page[] = "<</CropBox [1 2.5 -3 +4]/MediaBox[ 0 0 612. 7 ]/MediaBox[9]>>";
  EXPECT_THAT(tokens<MediaBoxTokenizer>(page), ElementsAre("0", "0", "612.", "7"));
  EXPECT_THAT(tokens<CropBoxTokenizer>(page), ElementsAre("1", "2.5", "-3", "+4"));
  EXPECT_THAT(tokens<BleedBoxTokenizer>(page), ElementsAre());
  EXPECT_THAT(tokens<TrimBoxTokenizer>("/TrimBox[1 (2)]"), ElementsAre("1", "2"));
  EXPECT_THAT(tokens<ArtBoxTokenizer>("/ArtBox\n[.5]"), ElementsAre("5"));
}

TEST(PdfRules, NamesOfAFilterEntry) {
  EXPECT_THAT(tokens<FilterNameTokenizer>("<</Filter[/ASCII85Decode /Fl#41]/Filter/X>>"),
              ElementsAre("/Filter", "/ASCII85Decode", "/Fl"));
  EXPECT_THAT(tokens<FilterNameTokenizer>("/Filter/A"), ElementsAre("/Filter", "/A"));
  EXPECT_THAT(tokens<FilterNameTokenizer>("/Filter [ / ]"), ElementsAre("/Filter", "/"));
}

TEST(PdfRules, ValueOfALengthEntry) {
  EXPECT_THAT(tokens<LengthReferenceTokenizer>("<</Length 7 0 R/Length 8 0 R>>"), ElementsAre("7 0 R"));
  EXPECT_THAT(tokens<LengthReferenceTokenizer>("<</Length 7>>"), ElementsAre());
  EXPECT_THAT(tokens<LengthIntegerTokenizer>("<</Length 7>>"), ElementsAre("7"));
  EXPECT_THAT(tokens<LengthIntegerTokenizer>("<</Length 7 0 R>>"), ElementsAre("7", "0"));
}

}  // namespace
