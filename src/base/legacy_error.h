#pragma once
// Run-time errors of the kinds the program traps in its handlers (overflow, division by zero,
// subscript out of range, type mismatch, file errors). They travel as exceptions to the operation
// boundary, which hands them to ErrorLog.
#include <stdexcept>
#include <string>
#include <string_view>

namespace velmora {

// Error numbers as the handlers report them.
enum class ErrorNumber : int {
  Overflow = 6,
  OutOfMemory = 7,
  SubscriptOutOfRange = 9,
  DivisionByZero = 11,
  TypeMismatch = 13,
  FileNotFound = 53,
  FileAlreadyOpen = 55,
  DiskFull = 61,
  InputPastEnd = 62,
  PermissionDenied = 70,
  PathNotFound = 76,
  InvalidData = 1000,  // our own: malformed content of a file
};

// What the program says when memory runs out, after the names of the profiles it happened on.
inline constexpr const char* kOutOfMemoryText = "メモリが不足しています。";

class LegacyError : public std::runtime_error {
 public:
  LegacyError(ErrorNumber number, const std::string& description)
      : std::runtime_error(description), number_(number) {}
  ErrorNumber Number() const noexcept { return number_; }
  const char* Description() const noexcept { return what(); }

 private:
  ErrorNumber number_;
};

// Each adds `where` (a value, a file name, an index) to the standard text so the log says what failed.
[[noreturn]] void RaiseOverflow(std::string_view where);
[[noreturn]] void RaiseDivisionByZero(std::string_view where);
[[noreturn]] void RaiseSubscriptOutOfRange(std::string_view where);
[[noreturn]] void RaiseTypeMismatch(std::string_view where);
// A file that cannot be opened, read or written: the text names the file and the reason.
[[noreturn]] void RaiseFileError(ErrorNumber number, std::string_view path, std::string_view what);

// `error` with "<files>: " in front of its text, so the log says which input failed. Keeps the
// number of a LegacyError; any other error (memory, say) counts as invalid data.
LegacyError NamingFiles(std::string_view files, const std::exception& error);

}  // namespace velmora
