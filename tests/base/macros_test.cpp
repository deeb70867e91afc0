#include "base/macros.h"

#include <gtest/gtest.h>

#include "base/app_paths.h"
#include "support/calendar.h"
#include "support/checks.h"

namespace velmora {
namespace {

TEST(ReplaceMacro, FirstOccurrenceRegardlessOfCase) {
  EXPECT_EQ(uReplaceMacro("x_$(profilename)$_y", "$(PROFILENAME)$", "R1"), "x_R1_y");
  EXPECT_EQ(uReplaceMacro("$(CUTOFF)$-$(CUTOFF)$", "$(CUTOFF)$", "50m"), "50m-$(CUTOFF)$");
  EXPECT_EQ(uReplaceMacro("$(IRI種別)$.csv", "$(IRI種別)$", "10m"), "10m.csv");
  EXPECT_EQ(uReplaceMacro("plain", "$(X)$", "v"), "plain");
}

TEST(ExpandDate, EveryMacroOnceInItsOrder) {
  const std::tm t = testing::At(2024, 3, 7, 9, 5, 2);
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNNSS)$", t), "20240307090502");
  EXPECT_EQ(uExpandDate("$(yyyymmdd)$_$(HH)$$(NN)$", t), "20240307_0905");
  EXPECT_EQ(uExpandDate("$(YYYYMMDDHHNN)$|$(YYYYMMDDHH)$|$(YYYYMM)$|$(YYYY)$", t), "202403070905|2024030709|202403|2024");
  EXPECT_EQ(uExpandDate("$(DD)$.$(SS)$", t), "07.02");
  // MM is the month and NN the minute; a second "$(MM)$" stays.
  EXPECT_EQ(uExpandDate("$(MM)$-$(NN)$-$(MM)$", t), "03-05-$(MM)$");
}

class PathMacros : public ::testing::Test {
 protected:
  void SetUp() override {
    paths_.AppPath = "/opt/velmora/bin";
    paths_.UserLocalPath = "/home/u/.local/share/Velmora";
  }
  AppPaths paths_;
};

TEST_F(PathMacros, AbbreviateAppPathFirstAndOnlyAtAFolderBoundary) {
  testing::ExpectEach([&](const char* path) { return uAbbreviatePathMacro(paths_, path); },
                      {std::pair{"/opt/velmora/bin/Default.ini", "$(AppPath)/Default.ini"}, {"/OPT/Velmora/BIN/a", "$(AppPath)/a"},
                       {"/home/u/.local/share/Velmora/Resource/x", "$(UserLocalPath)/Resource/x"},
                       {"/home/u/.local/share/Velmora", "$(UserLocalPath)"},
                       {"/opt/velmora/binary/x", "/opt/velmora/binary/x"}, {"/data/road.erd", "/data/road.erd"}});
  // A user-local tree inside the program's folder is still abbreviated by AppPath, which is tried first.
  paths_.UserLocalPath = "/opt/velmora/bin/local";
  EXPECT_EQ(uAbbreviatePathMacro(paths_, "/opt/velmora/bin/local/x"), "$(AppPath)/local/x");
}

TEST_F(PathMacros, ExpandOneMacroAndFollowAMovedFolder) {
  EXPECT_EQ(uExpandPathMacro(paths_, "$(apppath)/a"), "/opt/velmora/bin/a");
  EXPECT_EQ(uExpandPathMacro(paths_, "$(AppPath)/$(UserLocalPath)"), "/opt/velmora/bin/$(UserLocalPath)");
  const std::string stored = uAbbreviatePathMacro(paths_, "/home/u/.local/share/Velmora/Project/p.prj");
  paths_.UserLocalPath = "/mnt/other/Velmora";
  EXPECT_EQ(uExpandPathMacro(paths_, stored), "/mnt/other/Velmora/Project/p.prj");
  EXPECT_EQ(uExpandPathMacro(paths_, "/no/macro"), "/no/macro");
}

}  // namespace
}  // namespace velmora
