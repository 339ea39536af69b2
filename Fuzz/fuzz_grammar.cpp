// Every rule of the grammar on any text: short ones against the literal transcription, long ones for their
// cost alone.
#include "Fuzz/fuzz_target.h"
#include "Tests/Finder/grammar_compare.h"

namespace {

/// The literal rules backtrack.
constexpr std::size_t longestCompared = 24;

template <class Rule>
void tokenize(std::string_view text) {
  yard::Tokenizer<Rule> tokens;
  tokens.Tokenize(text.data(), text.data() + text.size(), text.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace PDF_RULES;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (text.size() <= longestCompared) {
    fuzz::require(compare::sameGrammar(text));
    return 0;
  }
  tokenize<MatchStringObject>(text);
  tokenize<MatchArrayObject>(text);
  tokenize<MatchDictionaryObject>(text);
  tokenize<MatchIndirectObject>(text);
  tokenize<MatchStreamObject>(text);
  tokenize<MatchFilterEntry>(text);
  tokenize<MatchBoxEntry<MediaBox_string>>(text);
  return 0;
}
