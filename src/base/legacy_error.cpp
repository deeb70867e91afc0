#include "base/legacy_error.h"

#include <fmt/format.h>

namespace velmora {
namespace {
[[noreturn]] void Raise(ErrorNumber number, std::string_view text, std::string_view where) {
  throw LegacyError(number, where.empty() ? std::string(text) : fmt::format("{} ({})", text, where));
}
}  // namespace

void RaiseOverflow(std::string_view where) { Raise(ErrorNumber::Overflow, "オーバーフローしました。", where); }
void RaiseDivisionByZero(std::string_view where) {
  Raise(ErrorNumber::DivisionByZero, "0 で除算しました。", where);
}
void RaiseSubscriptOutOfRange(std::string_view where) {
  Raise(ErrorNumber::SubscriptOutOfRange, "インデックスが有効範囲にありません。", where);
}
void RaiseTypeMismatch(std::string_view where) { Raise(ErrorNumber::TypeMismatch, "型が一致しません。", where); }
void RaiseFileError(ErrorNumber number, std::string_view path, std::string_view what) {
  throw LegacyError(number, fmt::format("{}: {}", path, what));
}

LegacyError NamingFiles(std::string_view files, const std::exception& error) {
  const auto* legacy = dynamic_cast<const LegacyError*>(&error);
  return LegacyError(legacy ? legacy->Number() : ErrorNumber::InvalidData, fmt::format("{}: {}", files, error.what()));
}

}  // namespace velmora
