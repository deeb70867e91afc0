#include "report/project_archive.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <zip.h>

#include "base/common.h"
#include "base/file_helpers.h"
#include "base/legacy_error.h"
#include "base/text_encoding.h"

namespace velmora {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kTopFolder = "Project";
// Fast deflate: the ERD files are plain decimals, which pack to about a third at any level.
constexpr zip_uint32_t kCompressionLevel = 1;

[[noreturn]] void Refuse(const std::string& text) { throw LegacyError(ErrorNumber::InvalidData, text); }

struct ZipCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

// ---- packing ----

struct SourceFreer {
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};

void AddEntries(zip_t* archive, const fs::path& folder, const std::string& name, const fs::path& target) {
  std::vector<fs::directory_entry> entries{fs::directory_iterator(folder), fs::directory_iterator()};
  std::sort(entries.begin(), entries.end());
  for (const fs::directory_entry& entry : entries) {
    const std::string file = entry.path().filename().string();
    const std::string entryName = name + "/" + ToSystemCodePage(file);
    if (entry.is_symlink()) continue;  // a link's target is no part of the project
    if (entry.is_directory()) {
      if (zip_dir_add(archive, entryName.c_str(), ZIP_FL_ENC_CP437) < 0)
        RaiseFileError(ErrorNumber::PermissionDenied, target.string(), zip_strerror(archive));
      AddEntries(archive, entry.path(), entryName, target);
      continue;
    }
    if (!entry.is_regular_file() || MatchFilePattern(file, "*.bin")) continue;
    zip_source_t* source = zip_source_file(archive, entry.path().c_str(), 0, -1);
    if (source == nullptr) RaiseFileError(ErrorNumber::PathNotFound, entry.path().string(), zip_strerror(archive));
    const zip_int64_t index = zip_file_add(archive, entryName.c_str(), source, ZIP_FL_ENC_CP437);
    if (index < 0) {
      zip_source_free(source);
      RaiseFileError(ErrorNumber::PermissionDenied, target.string(), zip_strerror(archive));
    }
    const auto at = static_cast<zip_uint64_t>(index);
    zip_set_file_compression(archive, at, ZIP_CM_DEFLATE, kCompressionLevel);
    zip_file_set_external_attributes(archive, at, 0, ZIP_OPSYS_UNIX, (S_IFREG | 0644u) << 16);
  }
}

std::string ArchiveBytes(zip_source_t* buffer, const fs::path& target) {
  zip_stat_t stat;
  if (zip_source_open(buffer) < 0 || zip_source_stat(buffer, &stat) < 0)
    RaiseFileError(ErrorNumber::DiskFull, target.string(), zip_error_strerror(zip_source_error(buffer)));
  std::string bytes(static_cast<std::size_t>(stat.size), '\0');
  const zip_int64_t read = zip_source_read(buffer, bytes.data(), bytes.size());
  zip_source_close(buffer);
  if (read != static_cast<zip_int64_t>(bytes.size()))
    RaiseFileError(ErrorNumber::DiskFull, target.string(), "書庫を作れません。");
  return bytes;
}

// ---- unpacking ----

// Printable form of a raw name for messages: bytes that are no text shown as \xNN.
std::string Shown(std::string_view raw) {
  std::string text;
  for (unsigned char c : raw) {
    if (c < 0x20 || c >= 0x80) text += fmt::format("\\x{:02X}", c);
    else text += static_cast<char>(c);
  }
  return text;
}

// The entry's name as UTF-8: names marked UTF-8 and plain ASCII are taken as they are, any other is
// in the system code page, as the program writes them.
std::string EntryName(zip_t* archive, zip_uint64_t index) {
  const char* raw = zip_get_name(archive, index, ZIP_FL_ENC_RAW);
  if (raw == nullptr) Refuse(fmt::format("エントリー {} の名前を読めません。", index + 1));
  const char* strict = zip_get_name(archive, index, ZIP_FL_ENC_STRICT);
  // Only a name with the UTF-8 flag comes back from the strict reading unchanged when it has
  // bytes above 0x7F; one without the flag is converted from CP437.
  if (strict != nullptr && std::strcmp(raw, strict) == 0) return raw;
  try {
    return FromSystemCodePage(raw, "");
  } catch (const LegacyError&) {
    Refuse(fmt::format("エントリー {} の名前の文字コードが正しくありません。", Shown(raw)));
  }
}

// The name with "/" separators and without a trailing one; refused when it could reach outside.
std::string SafeRelativeName(const std::string& name) {
  std::string path = ReplaceAll(name, "\\", "/");
  const bool climbs = [&] {
    if (path.empty() || path.front() == '/') return true;
    if (path.size() >= 2 && path[1] == ':') return true;  // a drive letter
    std::size_t from = 0;
    while (from <= path.size()) {
      std::size_t end = path.find('/', from);
      if (end == std::string::npos) end = path.size();
      if (path.compare(from, end - from, "..") == 0) return true;
      from = end + 1;
    }
    return false;
  }();
  if (climbs) Refuse(fmt::format("エントリー {} はフォルダの外を指しています。", Shown(name)));
  for (unsigned char c : path)
    if (c < 0x20) Refuse(fmt::format("エントリー {} の名前に制御文字があります。", Shown(name)));
  while (!path.empty() && path.back() == '/') path.pop_back();
  return path;
}

bool IsSymlink(zip_t* archive, zip_uint64_t index) {
  zip_uint8_t system = 0;
  zip_uint32_t attributes = 0;
  if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) < 0) return false;
  return system == ZIP_OPSYS_UNIX && ((attributes >> 16) & S_IFMT) == S_IFLNK;
}

struct Entry {
  zip_uint64_t Index = 0;
  std::string Name;      // relative, "/" separators
  bool Folder = false;
  zip_uint64_t Size = 0;
};

bool BeginsAsArchive(const fs::path& archive) {
  std::ifstream in(archive, std::ios::binary);
  char head[4] = {};
  return in.read(head, sizeof head) && std::string_view(head, sizeof head) == std::string_view("PK\x03\x04", 4);
}

ZipHandle OpenArchive(const fs::path& archive) {
  std::error_code ec;
  const auto size = fs::file_size(archive, ec);
  if (ec) Refuse(fmt::format("ファイルを読めません：{}", ec.message()));
  if (size == 0) Refuse("空のファイルです。プロジェクトファイルではありません。");
  int code = 0;
  zip_t* opened = zip_open(archive.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
  // A name given twice fails the consistency check; opened again leniently, the check below names it.
  if (opened == nullptr && code == ZIP_ER_EXISTS) opened = zip_open(archive.c_str(), ZIP_RDONLY, &code);
  if (opened != nullptr) return ZipHandle(opened);
  switch (code) {
    case ZIP_ER_NOZIP:
      // A file that begins as an archive does and has lost its end was cut short.
      if (BeginsAsArchive(archive)) Refuse("ZIP 書庫が途中で切れています。");
      Refuse("ZIP 形式のファイルではありません。");
    case ZIP_ER_INCONS:
    case ZIP_ER_EOF:
    case ZIP_ER_READ:
    case ZIP_ER_SEEK: Refuse("ZIP 書庫が壊れているか、途中で切れています。");
    default: {
      zip_error_t error;
      zip_error_init_with_code(&error, code);
      const std::string text = zip_error_strerror(&error);
      zip_error_fini(&error);
      Refuse(fmt::format("ZIP 書庫を開けません：{}", text));
    }
  }
}

std::vector<Entry> CheckedEntries(zip_t* archive, const ArchiveLimits& limits) {
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  if (count < 0 || static_cast<zip_uint64_t>(count) > limits.MaxEntries)
    Refuse(fmt::format("エントリーが {} 個あります（{} 個まで）。", count, limits.MaxEntries));
  std::vector<Entry> entries;
  std::set<std::string> seen;
  zip_uint64_t total = 0;
  for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
    const std::string name = EntryName(archive, i);
    Entry entry{i, SafeRelativeName(name), false, 0};
    entry.Folder = !name.empty() && (name.back() == '/' || name.back() == '\\');
    if (IsSymlink(archive, i)) Refuse(fmt::format("エントリー {} はシンボリックリンクです。", name));
    // Names are told apart as a file system that ignores case would, where the program came from.
    if (!seen.insert(UCase(entry.Name)).second) Refuse(fmt::format("エントリー {} が二重にあります。", name));
    zip_stat_t stat;
    if (zip_stat_index(archive, i, 0, &stat) < 0 || !(stat.valid & ZIP_STAT_SIZE) || !(stat.valid & ZIP_STAT_COMP_SIZE))
      Refuse(fmt::format("エントリー {} の大きさを読めません。", name));
    if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) && stat.encryption_method != ZIP_EM_NONE)
      Refuse(fmt::format("エントリー {} は暗号化されています。", name));
    if (stat.size > limits.MaxUnpackedBytes - std::min(total, limits.MaxUnpackedBytes))
      Refuse(fmt::format("エントリー {} までで展開後の大きさが {} バイトを超えます。", name, limits.MaxUnpackedBytes));
    if (stat.size > 0 && (stat.comp_size == 0 || stat.size / stat.comp_size > limits.MaxRatio))
      Refuse(fmt::format("エントリー {} の圧縮率が {} 倍を超えます。", name, limits.MaxRatio));
    total += stat.size;
    entry.Size = stat.size;
    entries.push_back(std::move(entry));
  }
  return entries;
}

void MakeFolders(const fs::path& destination, const std::string& name) {
  std::error_code ec;
  fs::create_directories(destination / fs::path(name), ec);
  if (ec) Refuse(fmt::format("エントリー {} のフォルダを作れません：{}", name, ec.message()));
}

void Extract(zip_t* archive, const Entry& entry, const fs::path& destination) {
  const fs::path path = destination / fs::path(entry.Name);
  if (entry.Name.find('/') != std::string::npos) MakeFolders(destination, fs::path(entry.Name).parent_path().string());
  zip_file_t* in = zip_fopen_index(archive, entry.Index, 0);
  if (in == nullptr) Refuse(fmt::format("エントリー {} を読めません：{}", entry.Name, zip_strerror(archive)));
  // Never through a link, never over a file that is there already.
  const int out = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
  if (out < 0) {
    zip_fclose(in);
    Refuse(fmt::format("エントリー {} を書けません：{}", entry.Name, std::strerror(errno)));
  }
  std::vector<char> buffer(1 << 16);
  zip_uint64_t written = 0;
  std::string failure;
  for (;;) {
    const zip_int64_t n = zip_fread(in, buffer.data(), buffer.size());
    if (n < 0) {
      const zip_error_t* error = zip_file_get_error(in);
      failure = zip_error_code_zip(error) == ZIP_ER_CRC ? fmt::format("エントリー {} の CRC が合いません。", entry.Name)
                                                       : fmt::format("エントリー {} が壊れています：{}", entry.Name,
                                                                     zip_file_strerror(in));
      break;
    }
    if (n == 0) break;
    written += static_cast<zip_uint64_t>(n);
    if (written > entry.Size) {
      failure = fmt::format("エントリー {} が記録された大きさより大きくなります。", entry.Name);
      break;
    }
    if (::write(out, buffer.data(), static_cast<std::size_t>(n)) != n) {
      failure = fmt::format("エントリー {} を書けません：{}", entry.Name, std::strerror(errno));
      break;
    }
  }
  if (failure.empty() && written != entry.Size)
    failure = fmt::format("エントリー {} が途中で切れています。", entry.Name);
  const int closed = zip_fclose(in);
  if (failure.empty() && closed == ZIP_ER_CRC) failure = fmt::format("エントリー {} の CRC が合いません。", entry.Name);
  ::close(out);
  if (!failure.empty()) {
    fs::remove(path);  // no file that failed its check is left for anyone to take
    Refuse(failure);
  }
}

}  // namespace

void PackProjectFolder(const fs::path& projectFolder, const fs::path& target) {
  zip_error_t error;
  zip_error_init(&error);
  std::unique_ptr<zip_source_t, SourceFreer> buffer(zip_source_buffer_create(nullptr, 0, 0, &error));
  if (!buffer) RaiseFileError(ErrorNumber::DiskFull, target.string(), zip_error_strerror(&error));
  ZipHandle archive(zip_open_from_source(buffer.get(), ZIP_TRUNCATE, &error));
  if (!archive) RaiseFileError(ErrorNumber::DiskFull, target.string(), zip_error_strerror(&error));
  zip_source_keep(buffer.get());  // the archive's bytes stay in it after the close
  AddEntries(archive.get(), projectFolder, std::string(kTopFolder), target);
  if (zip_close(archive.get()) < 0) RaiseFileError(ErrorNumber::DiskFull, target.string(), zip_strerror(archive.get()));
  (void)archive.release();
  WriteFileBytesAtomically(target, ArchiveBytes(buffer.get(), target));
}

void UnpackProjectArchive(const fs::path& archive, const fs::path& destination, const ArchiveLimits& limits) {
  const ZipHandle zip = OpenArchive(archive);
  const std::vector<Entry> entries = CheckedEntries(zip.get(), limits);
  for (const Entry& entry : entries) {
    if (entry.Folder) MakeFolders(destination, entry.Name);
    else Extract(zip.get(), entry, destination);
  }
}

}  // namespace velmora
