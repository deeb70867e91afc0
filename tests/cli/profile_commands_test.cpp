// The profile commands (info, convert, import) go through the workbench's registration and import.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_fixture.h"

namespace velmora::testing {
namespace {

class ProfileCommands : public CliTest {};

TEST_F(ProfileCommands, InfoDescribesEveryFileAlsoTwoOfOneName) {
  const std::string first = WriteErd("road", {1, 2, 4}, 0.5);
  std::filesystem::create_directories(temp / "other");
  std::filesystem::copy_file(temp / "road.erd", temp / "other" / "road.erd");
  const std::string second = "'" + (temp / "other" / "road.erd").string() + "'";
  EXPECT_EQ(Run("info " + first + " " + second), 0);
  const std::string out = Stdout();
  // Both described: three samples at 0.5 m, 1 m long, mean 7/3 mm.
  EXPECT_NE(out.find("  samples    3 (header 3)"), out.rfind("  samples    3 (header 3)"));
  EXPECT_NE(out.find("  length     1.00000 m"), std::string::npos);
  EXPECT_NE(out.find("mean 2.3333"), std::string::npos);
  EXPECT_NE(out.find((temp / "other" / "road.erd").string()), std::string::npos);
}

TEST_F(ProfileCommands, ConvertPutsTheRegisteredProfilesSideBySide) {
  const std::string a = WriteErd("a", {1.5, -2}, 0.1), b = WriteErd("b", {3, 4, 5}, 0.1);
  EXPECT_EQ(Run("convert " + a + " " + b + " -o '" + (temp / "both.csv").string() + "'"), 0) << Stderr();
  const std::vector<std::string> lines = ReadSystemTextLines(temp / "both.csv");
  ASSERT_GE(lines.size(), 3u);
  // One column per profile after the header rows; the shorter one leaves its cell empty.
  EXPECT_EQ(std::vector<std::string>(lines.end() - 3, lines.end()),
            (std::vector<std::string>{"1.50000000,3.00000000", "-2.00000000,4.00000000", ",5.00000000"}));
}

TEST_F(ProfileCommands, ImportRegistersEachColumnAfterTheHeadLineOrFromTheFirstLine) {
  WriteBytes(temp / "road.csv", "left,right\r\n1,2\r\n3,4\r\n5,6\r\n");
  EXPECT_EQ(Run("import '" + (temp / "road.csv").string() + "' --pitch 0.25 --header"), 0) << Stderr();
  ExpectHeads(Written(), {"road(001).ERD", "road(002).ERD"});
  EXPECT_EQ(ErdOf(temp / "out" / "road(002).ERD").Elevation, (Array1<double>{2, 4, 6}));

  WriteBytes(temp / "two.csv", "1.5,-2\r\n2.5,-3\r\n4,-5.25\r\n8,0\r\n");
  EXPECT_EQ(Run("import '" + (temp / "two.csv").string() + "' --pitch 0.1", "plain"), 0) << Stderr();
  ExpectHeads(Written("plain"), {"two(001).ERD", "two(002).ERD"});
  EXPECT_EQ(ErdOf(temp / "plain" / "two(001).ERD").Elevation, (Array1<double>{1.5, 2.5, 4, 8}));
  EXPECT_EQ(ErdOf(temp / "plain" / "two(002).ERD").Elevation, (Array1<double>{-2, -3, -5.25, 0}));
}

TEST_F(ProfileCommands, ImportWarnsOfEachCellThatIsNotANumberAndReadsItAsZero) {
  // Line 1 is the heading; "x" is line 3, column 2, and "?" line 4, column 1.
  WriteBytes(temp / "road.csv", "left,right\r\n1,2\r\n5,x\r\n?,4\r\n");
  EXPECT_EQ(Run("import '" + (temp / "road.csv").string() + "' --pitch 0.25 --header", "out", "en"), 0) << Stderr();
  const std::string file = (temp / "road.csv").string();
  EXPECT_EQ(Stderr(), "velmora: import: " + file + ":3:2: \"x\" is not a number; read as 0\n" +
                          "velmora: import: " + file + ":4:1: \"?\" is not a number; read as 0\n");
  EXPECT_EQ(ErdOf(temp / "out" / "road(001).ERD").Elevation, (Array1<double>{1, 5, 0}));
  EXPECT_EQ(ErdOf(temp / "out" / "road(002).ERD").Elevation, (Array1<double>{2, 0, 4}));
}

}  // namespace
}  // namespace velmora::testing
