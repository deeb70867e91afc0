#include "base/file_export_name.h"

#include <gtest/gtest.h>

namespace velmora {
namespace {

std::tm At20240305_140709() {
  std::tm t{};
  t.tm_year = 2024 - 1900;
  t.tm_mon = 2;
  t.tm_mday = 5;
  t.tm_hour = 14;
  t.tm_min = 7;
  t.tm_sec = 9;
  return t;
}

TEST(FileExportName, MacrosAreReplacedWhateverTheirCase) {
  const std::vector<NameMacro> kind{{"$(CUTOFF)$", "MAHP_50m"}};
  EXPECT_EQ(FileExportName("$(profilename)$_$(CutOff)$_$(yyyymmdd)$", "unused", "road1", kind, At20240305_140709()),
            "road1_MAHP_50m_20240305");
  EXPECT_EQ(FileExportName("$(YYYYMMDDHHNNSS)$", "", "p", {}, At20240305_140709()), "20240305140709");
  EXPECT_EQ(FileExportName("$(YYYY)$-$(MM)$-$(DD)$ $(HH)$$(NN)$$(SS)$", "", "p", {}, At20240305_140709()),
            "2024-03-05 140709");
}

TEST(FileExportName, EachMacroIsReplacedOnce) {
  EXPECT_EQ(FileExportName("$(MM)$_$(MM)$", "", "p", {}, At20240305_140709()), "03_$(MM)$");
  EXPECT_EQ(FileExportName("$(PROFILENAME)$+$(PROFILENAME)$", "", "p", {}, At20240305_140709()), "p+$(PROFILENAME)$");
}

TEST(FileExportName, EmptyPatternTakesTheBuiltInOne) {
  const std::vector<NameMacro> kind{{"$(OctaveNum)$", "3"}};
  EXPECT_EQ(FileExportName("  ", "$(PROFILENAME)$_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$", "r", kind,
                           At20240305_140709()),
            "r_Octave3_20240305140709");
}

}  // namespace
}  // namespace velmora
