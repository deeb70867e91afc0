#include "base/folders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>

#include "base/app_paths.h"
#include "base/session.h"
#include "support/test_support.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;

// Sets environment variables for one test and puts the old values back afterwards.
class Environment : public ::testing::Test {
 protected:
  void Set(const char* name, const std::optional<std::string>& value) {
    if (!saved_.count(name)) {
      const char* old = std::getenv(name);
      saved_[name] = old ? std::optional<std::string>(old) : std::nullopt;
    }
    if (value) ::setenv(name, value->c_str(), 1);
    else ::unsetenv(name);
  }
  void TearDown() override {
    for (const auto& [name, value] : saved_) {
      if (value) ::setenv(name.c_str(), value->c_str(), 1);
      else ::unsetenv(name.c_str());
    }
  }
  // A plain XDG environment with the home in the temporary folder.
  void PlainHome() {
    Set("VELMORA_HOME", std::nullopt);
    Set("HOME", (dir_ / "h").string());
    for (const char* name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DOCUMENTS_DIR", "XDG_PICTURES_DIR"})
      Set(name, std::nullopt);
  }
  // Data home, documents and pictures as read from the environment now.
  static std::vector<std::string> Folders() {
    const FolderEnvironment env = ReadFolderEnvironment();
    return {env.DataHome, env.Documents, env.Pictures};
  }
  testing::TempDir dir_;

 private:
  std::map<std::string, std::optional<std::string>> saved_;
};

TEST_F(Environment, XdgDefaultsFallBackToTheHomeFolder) {
  PlainHome();
  const std::string home = (dir_ / "h").string();
  EXPECT_EQ(Folders(), (std::vector<std::string>{home + "/.local/share", home, home}));
  const FolderEnvironment env = ReadFolderEnvironment();
  EXPECT_EQ(ResolveFolderPath(kFolderLocalAppDataCreate, env), home + "/.local/share");
  EXPECT_EQ(ResolveFolderPath(kFolderCommonDocuments, env), home + "/.local/share");
}

TEST_F(Environment, UserDirsFileAndVariablesNameDocumentsAndPictures) {
  PlainHome();
  fs::create_directories(dir_ / "h" / ".config");
  testing::WriteBytes(dir_ / "h" / ".config" / "user-dirs.dirs",
                      "# written by xdg-user-dirs-update\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                      "XDG_PICTURES_DIR=\"/srv/pictures\"\nXDG_MUSIC_DIR=\"relative\"\n");
  EXPECT_EQ(Folders(), (std::vector<std::string>{(dir_ / "h").string() + "/.local/share",
                                                 (dir_ / "h").string() + "/Dokumente", "/srv/pictures"}));
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("XDG_DATA_HOME", "/var/data");
  EXPECT_EQ(Folders(), (std::vector<std::string>{"/var/data", "/var/docs", "/srv/pictures"}));
}

TEST_F(Environment, VelmoraHomeMovesEverythingAndIgnoresXdg) {
  PlainHome();
  Set("XDG_DATA_HOME", "/var/data");
  Set("XDG_DOCUMENTS_DIR", "/var/docs");
  Set("VELMORA_HOME", (dir_ / "v").string());
  EXPECT_EQ(Folders(), (std::vector<std::string>{dir_ / "v", dir_ / "v" / "Documents", dir_ / "v" / "Pictures"}));
  // The create flag of local application data makes the folder.
  EXPECT_EQ(GetFolderPath("/opt/velmora", kFolderLocalAppDataCreate), (dir_ / "v").string());
  EXPECT_TRUE(fs::is_directory(dir_ / "v"));
}

TEST_F(Environment, FoldersWithoutACounterpartOrValueResolveToAppPath) {
  PlainHome();
  Set("HOME", std::nullopt);
  // kFolderPersonal has no home at all.
  for (int folder : {int{kFolderWindows}, int{kFolderSystem}, int{kFolderPersonal}, 12345})
    EXPECT_EQ(GetFolderPath("/opt/velmora", folder), "/opt/velmora") << folder;
}

TEST(ProgramFolder, IsTheFolderOfTheRunningBinary) {
  EXPECT_EQ(fs::canonical(ProgramFolder()), fs::canonical(VELMORA_BIN_DIR));
}

}  // namespace
}  // namespace velmora
