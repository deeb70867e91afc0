#include "base/file_export_name.h"

#include <gtest/gtest.h>

#include "support/calendar.h"

namespace velmora {
namespace {

const std::tm kAt = testing::At(2024, 3, 5, 14, 7, 9);

TEST(FileExportName, MacrosAreReplacedOnceWhateverTheirCase) {
  const std::vector<NameMacro> kind{{"$(CUTOFF)$", "MAHP_50m"}};
  EXPECT_EQ(FileExportName("$(profilename)$_$(CutOff)$_$(yyyymmdd)$", "unused", "road1", kind, kAt),
            "road1_MAHP_50m_20240305");
  EXPECT_EQ(FileExportName("$(YYYYMMDDHHNNSS)$", "", "p", {}, kAt), "20240305140709");
  EXPECT_EQ(FileExportName("$(YYYY)$-$(MM)$-$(DD)$ $(HH)$$(NN)$$(SS)$", "", "p", {}, kAt), "2024-03-05 140709");
  EXPECT_EQ(FileExportName("$(MM)$_$(MM)$", "", "p", {}, kAt), "03_$(MM)$");
  EXPECT_EQ(FileExportName("$(PROFILENAME)$+$(PROFILENAME)$", "", "p", {}, kAt), "p+$(PROFILENAME)$");
}

TEST(FileExportName, EmptyPatternTakesTheBuiltInOne) {
  const std::vector<NameMacro> kind{{"$(OctaveNum)$", "3"}};
  EXPECT_EQ(FileExportName("  ", "$(PROFILENAME)$_Octave$(OctaveNum)$_$(YYYYMMDDHHNNSS)$", "r", kind, kAt),
            "r_Octave3_20240305140709");
}

}  // namespace
}  // namespace velmora
