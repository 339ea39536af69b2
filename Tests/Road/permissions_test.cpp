// What the words of --allow allow under each cipher, as two other programs read it from the output.

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "Tests/Support/pdf_builder.h"
#include "Tests/Support/road.h"

namespace tessel_test {
namespace {

using testing::HasSubstr;

struct Allowed {
  const char* words;
  const char* byQpdf;     ///< what it calls allowed, in its order
  const char* byPoppler;  ///< its line
};

// Revision 2 has four bits: printing, modifying, copying, annotating; words for finer rights allow nothing
// there.
constexpr Allowed revision2[] = {
    {"all", "accessibility,any purpose,low,high,assembly,forms,annotations,other,anything,",
     "print:yes copy:yes change:yes addNotes:yes"},
    {"none", "", "print:no copy:no change:no addNotes:no"},
    {"print", "low,high,", "print:yes copy:no change:no addNotes:no"},
    {"print-low", "low,high,", "print:yes copy:no change:no addNotes:no"},
    {"modify", "assembly,other,", "print:no copy:no change:yes addNotes:no"},
    {"copy", "accessibility,any purpose,", "print:no copy:yes change:no addNotes:no"},
    {"annotate", "forms,annotations,", "print:no copy:no change:no addNotes:yes"},
    {"fill-forms", "", "print:no copy:no change:no addNotes:no"},
    {"assemble", "", "print:no copy:no change:no addNotes:no"},
    {"accessibility", "", "print:no copy:no change:no addNotes:no"},
    {"print,copy", "accessibility,any purpose,low,high,", "print:yes copy:yes change:no addNotes:no"},
};

// From revision 3 on each word has a bit of its own, and accessibility is always allowed.
constexpr Allowed later[] = {
    {"all", "accessibility,any purpose,low,high,assembly,forms,annotations,other,anything,",
     "print:yes copy:yes change:yes addNotes:yes"},
    {"none", "accessibility,", "print:no copy:no change:no addNotes:no"},
    {"print", "accessibility,low,high,", "print:yes copy:no change:no addNotes:no"},
    {"print-low", "accessibility,low,", "print:yes copy:no change:no addNotes:no"},
    {"modify", "accessibility,other,", "print:no copy:no change:yes addNotes:no"},
    {"copy", "accessibility,any purpose,", "print:no copy:yes change:no addNotes:no"},
    {"annotate", "accessibility,annotations,", "print:no copy:no change:no addNotes:yes"},
    {"fill-forms", "accessibility,forms,", "print:no copy:no change:no addNotes:no"},
    {"assemble", "accessibility,assembly,", "print:no copy:no change:no addNotes:no"},
    {"accessibility", "accessibility,", "print:no copy:no change:no addNotes:no"},
    {"print-low,fill-forms,assemble", "accessibility,low,assembly,forms,",
     "print:yes copy:no change:no addNotes:no"},
};

struct CipherCase {
  const char* name;
  bool revision2;
};
std::ostream& operator<<(std::ostream& out, const CipherCase& cipher) { return out << cipher.name; }

class AllowedWords : public RoadTest, public testing::WithParamInterface<CipherCase> {
 protected:
  /// The rights that qpdf calls allowed, each by its last word or two.
  std::string allowedByQpdf() const {
    std::istringstream lines(shell("qpdf --show-encryption --password=use out.pdf").out);
    const std::string ending = ": allowed";
    std::string allowed;
    for (std::string line; std::getline(lines, line);) {
      if (!line.ends_with(ending)) continue;
      line.resize(line.size() - ending.size());
      for (const char* before : {"extract for ", "print ", "modify ", "document "})
        if (line.starts_with(before)) line.erase(0, std::string(before).size());
      if (line.ends_with(" resolution")) line.resize(line.find(' '));
      allowed += line + ',';
    }
    return allowed;
  }

  void expectAllowed(const Allowed& row) const {
    const Outcome outcome =
        tessel({"nup", "in.pdf", "-o", "out.pdf", "--grid", "1x1", "--encrypt", GetParam().name,
                "--user-password", "use", "--owner-password", "own", "--allow", row.words});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(allowedByQpdf(), row.byQpdf) << row.words;
    EXPECT_THAT(shell("pdfinfo -upw use out.pdf").out, HasSubstr(row.byPoppler)) << row.words;
  }
};

TEST_P(AllowedWords, AreWhatOthersReadThemAs) {
  file("in.pdf", pdf().onePage("/MediaBox[0 0 9 9]").build());
  if (GetParam().revision2) {
    for (const Allowed& row : revision2) expectAllowed(row);
  } else {
    for (const Allowed& row : later) expectAllowed(row);
  }
}

INSTANTIATE_TEST_SUITE_P(Ciphers, AllowedWords,
                         testing::Values(CipherCase{"rc4-40", true}, CipherCase{"rc4-128", false},
                                         CipherCase{"aes-128", false}, CipherCase{"aes-256", false}),
                         [](const auto& tested) {
                           std::string name = tested.param.name;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

}  // namespace
}  // namespace tessel_test
