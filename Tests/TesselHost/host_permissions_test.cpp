#include "TesselHost/host_permissions.h"

#include <gmock/gmock.h>

namespace TesselHost {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ValueCase {
  const char* words;
  int revision;
  int value;
};
class PermissionWords : public testing::TestWithParam<ValueCase> {};

TEST_P(PermissionWords, GiveTheValue) {
  EXPECT_EQ(Permissions::parse(GetParam().words).value().valueFor(GetParam().revision), GetParam().value);
}

// Bits are counted from 1; those without a meaning are set, but for the first two. Bit 10 is always set.
INSTANTIATE_TEST_SUITE_P(Revision2, PermissionWords,
                         testing::Values(ValueCase{"all", 2, -4}, ValueCase{"none", 2, -64},
                                         ValueCase{"print", 2, -60}, ValueCase{"modify", 2, -56},
                                         ValueCase{"copy", 2, -48}, ValueCase{"annotate", 2, -32},
                                         ValueCase{"assemble", 2, -64}));
INSTANTIATE_TEST_SUITE_P(Later, PermissionWords,
                         testing::Values(ValueCase{"all", 3, -4}, ValueCase{"none", 3, -3392},
                                         ValueCase{"print-low", 4, -3388}, ValueCase{"print", 6, -1340},
                                         ValueCase{"fill-forms", 6, -3136}, ValueCase{"assemble", 6, -2368},
                                         ValueCase{"modify,copy", 6, -3368},
                                         ValueCase{"accessibility", 6, -3392}));

TEST(Permissions, RefuseOtherWords) {
  for (const char* text : {"", "fly", "print,", ",print", "print copy", "Print", "all,print"})
    EXPECT_EQ(Permissions::parse(text), std::nullopt) << text;
}

TEST(Permissions, FitRevision2WhenItKnowsTheirWords) {
  for (const char* words : {"all", "none", "print", "print,copy", "modify,annotate", "print,accessibility"})
    EXPECT_TRUE(Permissions::parse(words)->fit(2)) << words;
  for (const char* words : {"print-low", "fill-forms", "assemble", "print,assemble"}) {
    EXPECT_FALSE(Permissions::parse(words)->fit(2)) << words;
    EXPECT_TRUE(Permissions::parse(words)->fit(3)) << words;
  }
}

TEST(Permissions, AreToldInWords) {
  EXPECT_THAT(Permissions(-4).words(2), ElementsAre("print", "modify", "copy", "annotate"));
  EXPECT_THAT(Permissions(-4).words(6),
              ElementsAre("print", "modify", "copy", "annotate", "fill-forms", "assemble", "accessibility"));
  EXPECT_THAT(Permissions(-3388).words(4), ElementsAre("print-low", "accessibility"));
  EXPECT_THAT(Permissions(-64).words(2), IsEmpty());
}

TEST(Permissions, AllowPlacingWhereTheyAllowToModifyAndToAssemble) {
  EXPECT_TRUE(Permissions(-4).allowPlacing(6));
  EXPECT_TRUE(Permissions::parse("modify")->allowPlacing(2));
  for (const char* words : {"none", "modify", "assemble", "print,copy"})
    EXPECT_FALSE(Permissions::parse(words)->allowPlacing(4)) << words;
}

}  // namespace
}  // namespace TesselHost
