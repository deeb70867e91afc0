#pragma once
// Where the program's folders lie on this system. The program was written against numbered shell
// folders (documents, pictures, local application data, ...); here they map to the XDG locations:
//  - local application data: $XDG_DATA_HOME, else ~/.local/share (made when missing);
//  - documents and pictures: $XDG_DOCUMENTS_DIR / $XDG_PICTURES_DIR, else the entries of
//    user-dirs.dirs ($XDG_CONFIG_HOME or ~/.config), else the home folder;
//  - common documents: the local application data folder (a desktop user on Linux has no shared
//    writable documents folder);
//  - the Windows and System folders have no counterpart: they resolve as a failed lookup does.
// VELMORA_HOME, when set, moves all of it: local application data is $VELMORA_HOME itself (so the
// user-local tree is $VELMORA_HOME/Velmora), documents and pictures are its sub-folders "Documents" and
// "Pictures", and the XDG variables are not read. Tests and trial runs use it to stay off the real home.
#include <string>

namespace velmora {

// Numbers of the shell folders the program asks for.
enum ShellFolder : int {
  kFolderPersonal = 5,
  kFolderWindows = 36,
  kFolderSystem = 37,
  kFolderPictures = 39,
  kFolderCommonDocuments = 46,
  kFolderLocalAppDataCreate = 0x801C,  // with the create flag: the folder is made when missing
};

struct FolderEnvironment {
  std::string Home;       // $VELMORA_HOME or $HOME; may be empty
  std::string DataHome;   // local application data
  std::string Documents;
  std::string Pictures;
};

// Reads the process environment (and user-dirs.dirs) once.
FolderEnvironment ReadFolderEnvironment();

// The folder for a shell folder number in `environment`; empty when there is none.
std::string ResolveFolderPath(int id, const FolderEnvironment& environment);

// The folder of a shell folder number from the process environment; `fallback` (AppPath) when it has
// none, so every folder has a value. kFolderLocalAppDataCreate makes the folder when it is missing.
std::string GetFolderPath(const std::string& fallback, int id);

// The folder of the running program file (through /proc/self/exe); empty when it cannot be read.
std::string ProgramFolder();

}  // namespace velmora
