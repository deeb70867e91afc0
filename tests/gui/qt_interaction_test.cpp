// The file dialog filters and message texts as the desktop's dialogs take them.
#include "qt_interaction.h"

#include <gtest/gtest.h>

namespace velmora::gui {
namespace {

TEST(QtNameFilterTest, DescriptionAndPatternsInTurnsBecomeQtFilters) {
  const struct {
    const char* Given;
    const char* Expected;
  } cases[] = {
      {"ERDファイル (*.ERD)|*.ERD|すべてのファイル (*.*)|*.*", "ERDファイル (*.ERD);;すべてのファイル (*.*)"},
      // Qt separates patterns by spaces only.
      {"テキストファイル (*.txt;*.csv)|*.txt;*.csv", "テキストファイル (*.txt *.csv)"},
      // The trailing bar of the program's filters adds no filter.
      {"データファイル (*.Dummy)|*.Dummy|", "データファイル (*.Dummy)"},
      // A description without brackets gets its patterns.
      {"Profiles|*.erd", "Profiles (*.erd)"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(QtNameFilter(c.Given), QString::fromUtf8(c.Expected)) << c.Given;
}

TEST(DialogTextTest, LineBreaksOfTheProgramBecomePlain) {
  EXPECT_EQ(DialogText("保存しました。 \r\n保存先：C:\\x"), QString::fromUtf8("保存しました。 \n保存先：C:\\x"));
  EXPECT_EQ(DialogText("\r\n\r\n"), QString("\n\n"));
}

}  // namespace
}  // namespace velmora::gui
