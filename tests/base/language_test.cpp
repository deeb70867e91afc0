// The language both front ends choose: a flag first, else the locale variables in their order of
// precedence; and the filling of "{}" places that the translated patterns use.
#include "base/language.h"

#include <gtest/gtest.h>

#include "support/test_support.h"

namespace velmora {
namespace {

struct LocaleCase {
  const char* Flag;
  const char* All;
  const char* Messages;
  const char* Lang;
  Language Expected;
};

TEST(ChooseLanguage, FlagThenTheFirstLocaleVariableSet) {
  const LocaleCase cases[] = {
      {"", nullptr, nullptr, nullptr, Language::English},                          // nothing set
      {"", nullptr, nullptr, "ja_JP.UTF-8", Language::Japanese},                   // LANG alone
      {"", nullptr, nullptr, "C.UTF-8", Language::English},                        // the plain locale
      {"", nullptr, "ja_JP.UTF-8", "en_GB.UTF-8", Language::Japanese},             // LC_MESSAGES over LANG
      {"", "en_US.UTF-8", "ja_JP.UTF-8", "ja_JP.UTF-8", Language::English},        // LC_ALL over both
      {"", "ja_JP.eucJP", nullptr, nullptr, Language::Japanese},                   // any Japanese encoding
      {"", "", nullptr, "ja_JP.UTF-8", Language::Japanese},                        // an empty one counts as unset
      {"", nullptr, nullptr, "jv_ID.UTF-8", Language::English},                    // only "ja" is Japanese
      {"ja", "en_US.UTF-8", nullptr, nullptr, Language::Japanese},                 // the flag over the locale
      {"en", nullptr, nullptr, "ja_JP.UTF-8", Language::English},
  };
  for (const LocaleCase& c : cases) {
    const testing::ScopedEnvironment locale{{"LC_ALL", c.All}, {"LC_MESSAGES", c.Messages}, {"LANG", c.Lang}};
    EXPECT_EQ(ChooseLanguage(c.Flag), c.Expected)
        << "flag '" << c.Flag << "' LC_ALL " << (c.All ? c.All : "-") << " LC_MESSAGES "
        << (c.Messages ? c.Messages : "-") << " LANG " << (c.Lang ? c.Lang : "-");
  }
}

TEST(FillPlaces, FillsInOrderAndLeavesWhatHasNoValue) {
  EXPECT_EQ(FillPlaces("line {}, column {}", {"12", "3"}), "line 12, column 3");
  // A value that holds "{}" is not filled again.
  EXPECT_EQ(FillPlaces("{} and {}", {"{}", "x"}), "{} and x");
  EXPECT_EQ(FillPlaces("{} of {}", {"1"}), "1 of {}");
  EXPECT_EQ(FillPlaces("no places", {"1"}), "no places");
}

}  // namespace
}  // namespace velmora
