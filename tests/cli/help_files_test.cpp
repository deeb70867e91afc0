// The completion script and the man page that the build makes from the command registry.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <regex>
#include <string>

#include "support/checks.h"

namespace velmora {
namespace {

// What bash completes for the words typed so far (the last one being completed).
std::string Completions(const std::string& words) {
  const std::string script = "source '" VELMORA_BIN_DIR "/velmora.bash'; COMP_WORDS=(" + words +
                             "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _velmora; echo \"${COMPREPLY[*]}\"";
  const std::string command = "bash -c '" + std::string(std::regex_replace(script, std::regex("'"), "'\\''")) + "'";
  std::unique_ptr<FILE, decltype(&pclose)> pipe(popen(command.c_str(), "r"), pclose);
  std::string out;
  std::array<char, 256> buffer{};
  while (pipe && fgets(buffer.data(), buffer.size(), pipe.get())) out += buffer.data();
  return out;
}

TEST(GeneratedHelpFiles, CompletionOffersCommandsTheirFlagsAndTheLanguages) {
  EXPECT_EQ(Completions("velmora ir"), "iri\n");
  EXPECT_EQ(Completions("velmora s"), "stats summary\n");
  EXPECT_EQ(Completions("velmora iri --sk"), "--skip-partial\n");
  EXPECT_EQ(Completions("velmora import --st"), "--strict\n");
  // A flag of another command is not offered.
  EXPECT_EQ(Completions("velmora summary --ski"), "\n");
  EXPECT_EQ(Completions("velmora --lang ''"), "ja en\n");
}

TEST(GeneratedHelpFiles, ManPageHasEveryCommandAndTheExitStatuses) {
  const std::string page = testing::ReadBytes(VELMORA_BIN_DIR "/velmora.1");
  for (const char* command : {"convert", "filter", "import", "info", "iri", "octave", "psd", "reduce", "repair", "stats",
                              "summary", "tool", "tool cut", "xcorr"})
    EXPECT_NE(page.find(std::string("\n.SS ") + command + "\n"), std::string::npos) << command;
  EXPECT_NE(page.find(".SH EXIT STATUS\nExit status: 0 done; 1 the work failed"), std::string::npos);
  EXPECT_NE(page.find("\\fB\\-\\-no\\-timestamp\\fR"), std::string::npos);
}

}  // namespace
}  // namespace velmora
