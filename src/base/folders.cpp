#include "base/folders.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/app_paths.h"

namespace velmora {
namespace {

std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::string(value) : std::string();
}

// Reads one entry of user-dirs.dirs: NAME="$HOME/Folder" or NAME="/absolute/folder".
std::string UserDir(const std::string& configHome, const std::string& home, const std::string& name) {
  if (configHome.empty()) return {};
  std::ifstream in(std::filesystem::path(configHome) / "user-dirs.dirs");
  std::string line;
  const std::string head = name + "=";
  while (std::getline(in, line)) {
    if (line.rfind(head, 0) != 0) continue;
    std::string value = line.substr(head.size());
    if (!value.empty() && value.back() == '\r') value.pop_back();
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    if (value.rfind("$HOME", 0) == 0) {
      if (home.empty()) return {};
      value = home + value.substr(5);
    }
    // A relative entry is not valid in that file; it is ignored rather than guessed at.
    return !value.empty() && value.front() == '/' ? value : std::string();
  }
  return {};
}

std::string Joined(const std::string& folder, const char* name) {
  return folder.empty() ? std::string() : (std::filesystem::path(folder) / name).string();
}

}  // namespace

FolderEnvironment ReadFolderEnvironment() {
  FolderEnvironment env;
  std::string moved = Env("VELMORA_HOME");
  if (!moved.empty()) {
    std::error_code ec;
    if (const auto absolute = std::filesystem::absolute(moved, ec); !ec) moved = absolute.lexically_normal().string();
    while (moved.size() > 1 && moved.back() == '/') moved.pop_back();
    env.Home = moved;
    env.DataHome = moved;
    env.Documents = Joined(moved, "Documents");
    env.Pictures = Joined(moved, "Pictures");
    return env;
  }
  env.Home = Env("HOME");
  env.DataHome = Env("XDG_DATA_HOME");
  if (env.DataHome.empty()) env.DataHome = Joined(env.Home, ".local/share");
  std::string configHome = Env("XDG_CONFIG_HOME");
  if (configHome.empty()) configHome = Joined(env.Home, ".config");
  env.Documents = Env("XDG_DOCUMENTS_DIR");
  if (env.Documents.empty()) env.Documents = UserDir(configHome, env.Home, "XDG_DOCUMENTS_DIR");
  if (env.Documents.empty()) env.Documents = env.Home;
  env.Pictures = Env("XDG_PICTURES_DIR");
  if (env.Pictures.empty()) env.Pictures = UserDir(configHome, env.Home, "XDG_PICTURES_DIR");
  if (env.Pictures.empty()) env.Pictures = env.Home;
  return env;
}

std::string ResolveFolderPath(int id, const FolderEnvironment& environment) {
  switch (id) {
    case kFolderPersonal: return environment.Documents;
    case kFolderPictures: return environment.Pictures;
    case kFolderCommonDocuments:
    case kFolderLocalAppDataCreate: return environment.DataHome;
    default: return {};
  }
}

std::string GetFolderPath(const std::string& fallback, int id) {
  std::string folder = ResolveFolderPath(id, ReadFolderEnvironment());
  if (folder.empty()) return fallback;
  if (id == kFolderLocalAppDataCreate) {
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (ec && !std::filesystem::is_directory(folder, ec)) return fallback;
  }
  return folder;
}

std::string ProgramFolder() {
  std::error_code ec;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string() : exe.parent_path().string();
}

}  // namespace velmora
