#include "base/memory_tunables.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace velmora {
namespace {

// Run only as the restarted child of the test below: records the tunables it started with.
TEST(MemoryTunablesChild, DISABLED_RecordsItsTunables) {
  const char* probe = std::getenv("VELMORA_TUNABLES_PROBE");
  ASSERT_NE(probe, nullptr);
  const char* tunables = std::getenv("GLIBC_TUNABLES");
  std::ofstream(probe) << (tunables != nullptr ? tunables : "(none)");
}

TEST(MemoryTunables, AProgramStartedWithoutThemIsExecutedAgainWithThem) {
  const auto probe = std::filesystem::temp_directory_path() / ("velmora_tunables_" + std::to_string(getpid()));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    unsetenv("GLIBC_TUNABLES");
    setenv("VELMORA_TUNABLES_PROBE", probe.c_str(), 1);
    char self[] = "test_base";
    char filter[] = "--gtest_filter=MemoryTunablesChild.*";
    char disabled[] = "--gtest_also_run_disabled_tests";
    char* argv[] = {self, filter, disabled, nullptr};
    RestartWithMallocTunables(argv);
    _exit(3);  // not restarted
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  std::string seen;
  std::getline(std::ifstream(probe), seen);
  std::filesystem::remove(probe);
  EXPECT_EQ(seen, kMallocTunables);
}

TEST(MemoryTunables, TheUsersOwnTunablesAreLeftAsTheyAre) {
  const char* before = std::getenv("GLIBC_TUNABLES");
  const std::string saved = before != nullptr ? before : "";
  setenv("GLIBC_TUNABLES", "glibc.malloc.check=0", 1);
  RestartWithMallocTunables(nullptr);  // returns at once: no restart, nothing changed
  EXPECT_STREQ(std::getenv("GLIBC_TUNABLES"), "glibc.malloc.check=0");
  if (before != nullptr)
    setenv("GLIBC_TUNABLES", saved.c_str(), 1);
  else
    unsetenv("GLIBC_TUNABLES");
}

}  // namespace
}  // namespace velmora
