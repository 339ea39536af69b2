#include <gtest/gtest.h>

#include <random>
#include <string>

#include "Tests/Finder/finder_compare.h"
#include "Tests/Support/pdf_builder.h"

using namespace finder_compare;

namespace {

/// Numbers are followed by no "0 R", so that nothing is loaded.
const char* const pieces[] = {
    "/K0",  "/K1",  "/K2", "/K3", "/K4", "/K5", "/K6",   "/K7",      "/K8",       "/K9",    "<<", ">>",
    "(",    ")",    "[",   "]",   "<",   ">",   "\\",    "stream",   " ",         "\n",     "12", "1.5 ",
    "true", "null", "x",   "/N",  "41",  "(a)", "<</K3", ">>stream", "endstream", "<</K5[", "]>>"};

std::string randomText(std::mt19937& random) {
  std::uniform_int_distribution<std::size_t> piece(0, std::size(pieces) - 1);
  std::string text = "<<";
  for (int count = 2 + static_cast<int>(random() % 40); count > 0; --count) text += pieces[piece(random)];
  return random() % 2 ? text + ">>" : text;
}

TEST(FindingValueAgainstItsSteps, AgreesOnRandomTexts) {
  const tessel_test::Source source = tessel_test::pdf().onePage("/MediaBox[0 0 9 9]").open();
  std::mt19937 random(20240607);
  long answered = 0;
  for (int round = 0; round < 30000; ++round) {
    const std::string text = randomText(random);
    Answers answers;
    ask(text, source.file.get(), answers);
    ASSERT_EQ(told(answers.fast), told(answers.literal)) << text;
    for (int type = 0; type < typeCount; ++type)
      answered += answers.fast.getPropertyValueCount(("/K" + std::to_string(type)).c_str());
  }
  EXPECT_GT(answered, 8000);
}

}  // namespace
