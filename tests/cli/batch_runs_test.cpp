// The command line in scripts: runs that overlap, stable names, JSON for pipelines, folders and lists
// as inputs, and a stop by SIGINT that leaves nothing behind.
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <chrono>
#include <fstream>
#include <map>
#include <thread>

#include <nlohmann/json.hpp>

#include "cli_fixture.h"
#include "support/profile_fixture.h"

extern char** environ;

namespace velmora {
namespace {

using testing::CliTest;
using testing::FileNames;
using testing::ReadBytes;
using testing::SourceDir;
using testing::Texts;

// The name of a result file without its time stamp and free-name number: what kind of file it is.
std::string KindOf(std::string name) {
  const auto underscore = name.rfind('_');
  return underscore == std::string::npos ? name : name.substr(0, underscore);
}

TEST_F(CliTest, EightRunsAtOnceShareTheSettingsAndTheOutputFolderAndEachWritesWholeFiles) {
  const std::string road = Example("road_b.erd");
  ASSERT_EQ(Run("iri " + road, "reference"), 0) << Stderr();
  std::map<std::string, std::string> reference;  // kind → bytes
  for (const std::string& name : Written("reference")) reference[KindOf(name)] = ReadBytes(temp / "reference" / name);
  ASSERT_EQ(reference.size(), 5u);

  // One shell starts the eight runs together; each leaves its status in a file of its own.
  std::string script;
  for (int k = 1; k <= 8; ++k)
    script += "(VELMORA_HOME='" + (temp / "home").string() + "' '" VELMORA_BIN_DIR "/velmora' --quiet -o '" +
              (temp / "out").string() + "' iri " + road + " >/dev/null 2>'" + (temp / ("err" + std::to_string(k))).string() +
              "'; echo $? >'" + (temp / ("rc" + std::to_string(k))).string() + "') & ";
  ASSERT_EQ(std::system((script + "wait").c_str()), 0);
  for (int k = 1; k <= 8; ++k) {
    EXPECT_EQ(ReadBytes(temp / ("rc" + std::to_string(k))), "0\n") << ReadBytes(temp / ("err" + std::to_string(k)));
  }
  // Forty files, none lost to a name another run took in the same second, each byte for byte the reference.
  const Texts written = Written();
  EXPECT_EQ(written.size(), 40u);
  for (const std::string& name : written) {
    std::string kind = KindOf(name);
    ASSERT_TRUE(reference.count(kind)) << name;
    EXPECT_EQ(ReadBytes(temp / "out" / name), reference[kind]) << name;
  }
}

TEST_F(CliTest, JsonHoldsTheIrisOfTheCsvFilesAndTheWrittenPaths) {
  const std::string examples = "'" + (SourceDir() / "examples").string() + "'";
  ASSERT_EQ(Run("--json iri " + examples), 0) << Stderr();
  const nlohmann::json run = nlohmann::json::parse(Stdout());
  EXPECT_EQ(run["command"], "iri");
  EXPECT_EQ(run["exit_status"], 0);
  ASSERT_EQ(run["inputs"].size(), 3u);  // the folder's ERD files in name order
  EXPECT_TRUE(run["inputs"][0].get<std::string>().ends_with("road_a_kp.erd"));
  EXPECT_TRUE(run["inputs"][2].get<std::string>().ends_with("road_c_rough.erd"));
  EXPECT_EQ(run["files"].size(), Written().size());
  for (const auto& file : run["files"]) EXPECT_TRUE(std::filesystem::is_regular_file(file.get<std::string>())) << file;

  // "road_b, 全区間IRI(249.95m), 4.40260182": the file holds eight decimals.
  const Texts whole = LinesOf("IRI(全区間)");
  ASSERT_EQ(whole.size(), 4u);
  ASSERT_EQ(run["results"].size(), 3u);
  for (std::size_t k = 0; k < 3; ++k) {
    const Texts fields = testing::Fields(whole[k + 1]);
    EXPECT_EQ(run["results"][k]["profile"], fields[0]);
    EXPECT_NEAR(run["results"][k]["iri_mm_per_m"].get<double>(), std::stod(fields[2]), 5e-9) << fields[0];
  }
}

TEST_F(CliTest, StableNamesReplaceTheFilesOfTheRunBefore) {
  const std::string road = Example("road_b.erd");
  ASSERT_EQ(Run("--no-timestamp iri " + road), 0) << Stderr();
  const Texts first = Written();
  ASSERT_EQ(Run("--no-timestamp iri " + road), 0) << Stderr();
  EXPECT_EQ(Written(), first);
  EXPECT_EQ(first, (Texts{"IRI(全区間).CSV", "road_b_IRI(100m固定).CSV", "road_b_IRI(10m固定).CSV",
                          "road_b_IRI(10m連続).CSV", "road_b_IRI(200m固定).CSV"}));
  // Every written path on stdout, after the IRI line.
  std::string paths;
  for (const std::string& name : first) paths += (temp / "out" / name).string() + "\n";
  EXPECT_EQ(Stdout(), "road_b\tIRI 4.4026 mm/m\n" + paths);
}

TEST_F(CliTest, AListOnStdinAndAConvertIntoAFolderThatIsNotThereYet) {
  const std::string a = WriteErd("A", testing::Road(100), 0.25);
  const std::string b = WriteErd("B", testing::Road(100, 3), 0.25);
  std::ofstream(temp / "list.txt") << (temp / "B.erd").string() << "\n\n" << (temp / "A.erd").string() << "\n";
  ASSERT_EQ(Run("--json summary - <'" + (temp / "list.txt").string() + "'"), 0) << Stderr();
  const nlohmann::json run = nlohmann::json::parse(Stdout());
  EXPECT_EQ(run["inputs"], nlohmann::json({(temp / "B.erd").string(), (temp / "A.erd").string()}));

  ASSERT_EQ(Run("convert " + a + " " + b + " -o '" + (temp / "new" / "deeper").string() + "'", "unused"), 0) << Stderr();
  const Texts made = FileNames(temp / "new" / "deeper");
  ASSERT_EQ(made.size(), 1u);
  EXPECT_TRUE(made[0].starts_with("Profile_")) << made[0];
  ASSERT_EQ(Run("convert " + a + " -o '" + (temp / "other" / "both.csv").string() + "'", "unused"), 0) << Stderr();
  EXPECT_TRUE(std::filesystem::is_regular_file(temp / "other" / "both.csv"));
}

TEST_F(CliTest, InterruptStopsTheRunWith130AndLeavesNoScratchTreeAndNoFile) {
  // 2·10^5 samples: the repair study runs for seconds, long enough to be stopped.
  std::vector<double> values(200000);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = 5 * std::sin(0.001 * i) + std::sin(0.37 * i);
  const std::string road = WriteErd("long", values, 0.01);
  const auto scratchRoot = temp / "tmp";
  std::filesystem::create_directories(scratchRoot);

  const std::string command = "TMPDIR='" + scratchRoot.string() + "' VELMORA_HOME='" + (temp / "home").string() +
                              "' exec '" VELMORA_BIN_DIR "/velmora' --quiet -o '" + (temp / "out").string() +
                              "' repair " + road + " 2>/dev/null >/dev/null";
  const char* argv[] = {"/bin/sh", "-c", command.c_str(), nullptr};
  pid_t child = 0;
  ASSERT_EQ(posix_spawn(&child, "/bin/sh", nullptr, nullptr, const_cast<char**>(argv), environ), 0);
  // Wait until the run has made its scratch tree, then stop it.
  for (int k = 0; k < 200 && FileNames(scratchRoot).empty(); ++k) std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ASSERT_EQ(FileNames(scratchRoot).size(), 1u);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  ::kill(child, SIGINT);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 130);
  EXPECT_TRUE(FileNames(scratchRoot).empty());
  EXPECT_TRUE(Written().empty());
}

}  // namespace
}  // namespace velmora
