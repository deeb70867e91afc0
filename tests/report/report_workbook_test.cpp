// The written report workbook read back by an independent reader (openpyxl, through
// check_report_workbook.py): the data sheet holds the interface file's table and every other part of
// the template is carried over byte for byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "report/exel_report.h"
#include "support/profile_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

const std::filesystem::path kSource(VELMORA_SOURCE_DIR);

bool PythonHasOpenpyxl() {
  return std::system("/usr/bin/python3 -c 'import openpyxl' >/dev/null 2>&1") == 0;
}

// A 300 m road at 1 m with its 10 m IRI windows and one octave band, so that every kind of column of
// the example template has values.
ProfileRecord Road(const std::string& name, double offset) {
  ProfileRecord p = testing::MakeProfile(name, 1.0, testing::Road(301));
  for (std::int32_t i = 1; i <= p.WorkCount; ++i) p.WorkProfile[i] += offset;
  std::vector<double> iri, band, sum;
  for (int i = 1; i <= 291; ++i) iri.push_back(1.5 + 0.001 * i + offset);
  for (int i = 1; i <= 301; ++i) band.push_back(0.01 * i), sum.push_back(-0.02 * i);
  p.Analysis.Iri.IriWindowWave.Values = Array1<double>(iri);
  p.Analysis.Octave.Band[3].Values = Array1<double>(band);
  p.Analysis.Octave.LongSum.Values = Array1<double>(sum);
  return p;
}

TEST(ReportWorkbook, ReadBackHoldsTheInterfaceTableAndTheTemplatesOtherParts) {
  if (!PythonHasOpenpyxl()) GTEST_SKIP() << "/usr/bin/python3 cannot import openpyxl (Debian: python3-openpyxl)";
  Session session;
  testing::ScriptedUi ui(session);
  testing::TempDir temp;
  const std::filesystem::path example = kSource / "examples/report/iri_report.xlsm";
  ExelTemplate report;
  ASSERT_TRUE(ReadExelTemplateFile(session, example, report));
  ProfileList list;
  list.Items = Array1<ProfileRecord>{Road("before", 0), Road("after", 0.25)};

  for (const bool reversed : {false, true}) {
    ExelReportRequest request;
    request.Params = MakeParamTable(report, {"before", "after"});
    for (ExelParamEntry& entry : request.Params)
      entry.Value = entry.Param.Name == "before" ? "before" : entry.Param.Name == "after" ? "after"
                  : entry.Param.Name == "start"  ? "12.5" : "";
    request.Axis = {PositionMode::ZeroBased, KpUnit::M, false};
    request.Reversed = reversed;
    request.Folder = temp.path() / (reversed ? "reversed" : "forward");
    std::filesystem::create_directories(request.Folder);
    request.Time = testing::Noon();
    const auto files = cmxExlsCreate(session, report, list, request);
    ASSERT_TRUE(files.has_value());
    ASSERT_FALSE(files->Failed);

    const std::filesystem::path output = temp / "check.txt";
    const std::string command = "/usr/bin/python3 " + (kSource / "tests/report/check_report_workbook.py").string() +
                                " '" + example.string() + "' '" + files->Workbook.string() + "' '" +
                                files->Interface.string() + "' > '" + output.string() + "' 2>&1";
    const int status = std::system(command.c_str());
    std::ifstream in(output);
    std::stringstream said;
    said << in.rdbuf();
    EXPECT_EQ(status, 0) << (reversed ? "reversed: " : "forward: ") << said.str();
    EXPECT_EQ(said.str(), "ok\n");
  }
}

}  // namespace
}  // namespace velmora
