#pragma once
// The run-time folders, worked out once at start-up and read everywhere after that. None ends in a
// separator; callers append with flAddDirSep.
#include <string>

namespace velmora {

struct AppPaths {
  std::string AppPath;           // folder holding Default.ini and TOLVAVERI.ini; "$(AppPath)"
  std::string TempPath;          // UserLocalPath + "Temp"
  std::string DebugPath;         // UserLocalPath + "Debug"
  std::string PicturesPath;
  std::string PersonalPath;
  std::string WindowsPath;
  std::string SystemPath;
  std::string PublicPath;
  std::string LocalAppDataPath;
  std::string UserLocalPath;     // LocalAppDataPath + "Velmora"; "$(UserLocalPath)"
  std::string TempBmpPath;
  std::string IniFileName = "TOLVAVERI.ini";
  std::string DefaultIniFileName = "Default.ini";
  bool DebugSwitch = false;      // SWDEBUG on the command line
};

}  // namespace velmora
