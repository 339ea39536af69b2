// What a tokenizer may cost: time linear in the text, and no memory but its tokens for texts that aren't
// deep.

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "TesselPage/Finder/pdf_rules.h"

namespace {

std::size_t allocations = 0;

}  // namespace

// Not to be inlined: gcc 12 then takes the free below for the wrong partner of its own new.
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

using namespace PDF_RULES;
using yard::OneTokenizer, yard::Tokenizer;

// A megabyte; less in builds that check every access. Either is far too long for work that grows with the
// square.
#ifdef NDEBUG
constexpr std::size_t hostileSize = 1U << 20;
#else
constexpr std::size_t hostileSize = 1U << 17;
#endif

/// `piece` as often as it takes to make `size` bytes.
std::string filled(const std::string& piece, std::size_t size = hostileSize) {
  std::string text;
  text.reserve(size + piece.size());
  while (text.size() < size) text += piece;
  return text;
}

std::string halves(const std::string& first, const std::string& second) {
  return filled(first, hostileSize / 2) + filled(second, hostileSize / 2);
}

template <class T>
std::size_t count(const std::string& text) {
  T tokenizer;
  tokenizer.Tokenize(text.data(), text.data() + text.size());
  return tokenizer.size();
}

template <class T>
std::size_t allocated(const std::string& text) {
  const std::size_t before = allocations;
  count<T>(text);
  return allocations - before;
}

struct Tool {
  const char* name;
  std::function<std::size_t(const std::string&)> run;
};

const std::vector<Tool>& tools() {
  static const std::vector<Tool> all = {
      {"first string", count<OneTokenizer<MatchStringObject>>},
      {"strings", count<Tokenizer<MatchStringObject>>},
      {"first array", count<OneTokenizer<MatchArrayObject>>},
      {"arrays", count<Tokenizer<MatchArrayObject>>},
      {"first dictionary", count<OneTokenizer<MatchDictionaryObject>>},
      {"dictionaries", count<Tokenizer<MatchDictionaryObject>>},
      {"first stream", count<OneTokenizer<MatchStreamObject>>},
      {"streams", count<Tokenizer<MatchStreamObject>>},
      {"references", count<Tokenizer<MatchIndirectObject>>},
      {"numbers", count<Tokenizer<MatchNumberObject>>},
      {"names", count<Tokenizer<MatchNameObject>>},
      {"first stream begin", count<OneTokenizer<MatchStreamBegin>>},
      {"filter entries", count<Tokenizer<MatchFilterEntry>>},
      {"first filter entry", count<OneTokenizer<MatchFilterEntry>>},
      {"filter names", count<FilterNameTokenizer>},
      {"length reference", count<LengthReferenceTokenizer>},
      {"length integer", count<LengthIntegerTokenizer>},
      {"media box", count<MediaBoxTokenizer>},
      {"media box entries", count<Tokenizer<MatchBoxEntry<MediaBox_string>>>},
      {"stream data start", count<OneTokenizer<TESSEL::MatchStreamBeginPos_help>>},
  };
  return all;
}

double seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void expectLinear(const std::vector<std::string>& texts) {
  constexpr double secondsAtMost = 3;
  for (const std::string& text : texts)
    for (const Tool& tool : tools())
      EXPECT_LT(seconds([&] { tool.run(text); }), secondsAtMost) << tool.name << " in " << text.substr(0, 60);
}

TEST(GrammarTime, ParenthesesTakeLinearTime) {
  expectLinear({filled("("), filled(")"), filled("()"), halves("(", ")"), filled("(()"), filled("(") + ")",
                filled("(a") + "(b)(c)" + filled("(d)"), halves("((()", "(())("), "((" + filled("(x)"),
                filled("\\("), halves("(((()))", ")(("), halves("(", "(x)") + ")", halves("((", "(x)")});
}

TEST(GrammarTime, SquareBracketsTakeLinearTime) {
  expectLinear({filled("["), halves("[", "]"), filled("[["), filled("[[]"), filled("[") + "[]",
                filled("[[][[]") + "[[", filled("/Filter["), filled("/Filter[[][[]") + "[[",
                filled("/Filter[[]"), filled("/Filter[ ["), filled("/MediaBox"), filled("/MediaBox [ "),
                filled("/MediaBox") + filled(" ")});
}

TEST(GrammarTime, AngleBracketsTakeLinearTime) {
  expectLinear({filled("<"), filled("<<") + "<", halves("<<", ">>"), halves("<<", ">> "), filled("<<>>"),
                filled("<<<>>"), filled("<A"), filled("<<") + "<<>>", filled("<<") + "<<>>" + filled(" "),
                filled("<<") + ">>" + filled(" ") + "stream",
                filled("<<") + filled("<<", 200) + filled(">>" + std::string(5000, ' '))});
}

TEST(GrammarTime, StreamsTakeLinearTime) {
  expectLinear({filled("<<>> stream"), filled("<<>> stream "), filled("<<>>stream endstream"),
                "<<" + filled("<<>>stream endstream"), filled("<<<<>>stream endstream"),
                halves("<<<<>>stream endstream", ">>"), "<<<<" + filled("<<>>stream endstream >> <<") + ">>",
                halves("<<", ">>stream "), halves("<<", ">>stream ") + "endstream",
                halves("<<", ">> ") + "stream endstream", halves("<<<<>>stream endstream ", ">> "),
                filled("<<>>stream") + "endstream", filled("<<<>>stream ") + "endstream", filled("stream"),
                filled("<<<<>>") + "<<>>stream endstream", filled(">>stream "), filled(">>") + filled(" ")});
}

TEST(GrammarTime, InterleavedBracketsTakeLinearTime) {
  expectLinear({filled("([<<"), filled("([<<)]>>"), halves("([<<", ">>])"), filled("(<<)>>"),
                filled("<<([>>"), filled("(<<(]>>["), "(" + halves("<<[", "]>>") + ")"});
}

TEST(GrammarTime, NumbersTakeLinearTime) {
  expectLinear({filled("1"), filled("1 "), filled("1 1 R"), filled("+"), halves("1", " "),
                halves("1", " ") + filled("2"), filled("/Length "), filled("/Length 1 "),
                "/Length " + filled("1"), filled("/Filter 1 1 "), "/Filter" + filled("1"), filled("1."),
                filled("/"), filled("/Filter ")});
}

TEST(GrammarMemory, TextsThatAreNotDeepTakeNoHeapButTheirTokens) {
  const std::string flat = "<<" + filled("/A[1 2]/B<</C(x)>>", 20000) + ">>";
  EXPECT_EQ(allocated<OneTokenizer<MatchDictionaryObject>>(flat), 1U);
  EXPECT_EQ(allocated<OneTokenizer<MatchArrayObject>>(flat), 1U);
  EXPECT_EQ(allocated<OneTokenizer<MatchStringObject>>(flat), 1U);
  EXPECT_EQ(allocated<OneTokenizer<MatchStreamObject>>(flat), 0U);
  EXPECT_EQ(allocated<OneTokenizer<MatchStreamObject>>(flat + "stream x endstream"), 1U);
}

TEST(GrammarMemory, AnUnclosedPairBeforeManyPairsTakesNoHeapButItsToken) {
  EXPECT_EQ(allocated<OneTokenizer<MatchStringObject>>("(" + filled("((x))", 20000)), 1U);
  EXPECT_EQ(allocated<OneTokenizer<MatchArrayObject>>(filled("[", 40) + filled("[x]", 20000)), 1U);
  EXPECT_EQ(allocated<OneTokenizer<MatchStreamObject>>("<<" + filled("<<x>>", 20000)), 0U);
}

TEST(GrammarMemory, ManyDictionariesInsideOneThatIsNoStreamTakeNoHeap) {
  const std::string text = "<<" + filled("<<x>>", 20000) + ">> <<>>stream endstream";
  EXPECT_EQ(allocated<OneTokenizer<MatchStreamObject>>(text), 1U);
}

TEST(GrammarMemory, EachTokenIsOneNode) {
  EXPECT_EQ(allocated<Tokenizer<MatchIndirectObject>>("[1 0 R 2 0 R 3 0 R]"), 3U);
  EXPECT_EQ(allocated<MediaBoxTokenizer>("<</MediaBox [0 0 10 20]>>"), 5U);
}

}  // namespace
