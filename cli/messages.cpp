#include "messages.h"

#include <libintl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <vector>

namespace velmora::cli {
namespace {

constexpr const char* kDomain = "velmora";

// Engine lines that carry values; the English catalogue translates each pattern as a whole.
constexpr const char* kEnginePatterns[] = {
    "{} 以上で指定して下さい。",
    "{} 以下で指定して下さい。",
    "０ < [最大ずらし量] <= {}　の範囲で指定してください",
    "{} は数値で指定して下さい。",
    "データ開始行（終了位置）は {} 以下で指定してください",
    "データ開始列（終了位置）は {} 以下で指定してください",
    "データ開始行（終了位置）は {} 以上で指定してください",
    "データ開始列（終了位置）は {} 以上で指定してください",
    "CSV出力は {} プロファイルまでです。",
    "先頭の {} プロファイルを出力します。",
    "{} ： {}",
    "関数が定義されていません。関数名( {} ) ",
    "関数 #DIST の引数は３個で指定してください。[ #DIST( {} ) ]",
    "関数 #DIST の第1引数は 10, 100, 200 のいずれかで指定してください。[ #DIST( {} ) ]",
    "関数 #PROF の引数は４個で指定してください。[ #PROF( {} ) ]",
    "関数 #IRI の引数は４個で指定してください。[ #IRI( {} ) ]",
    "関数 #IRI の第1引数は 10B, 10A, 100A, 200A のいずれかで指定してください。[ #IRI( {} ) ]",
    "関数 #GETPROFILENAME の引数は１個で指定してください。[ #GETPROFILENAME( {} ) ]",
    "出力データ行数：{}",
    "ファイル名：{}",
    "出力先：{}",
    "プロファイル分解( {}-OCT )の出力",
    "式が深すぎます ({} 段を超えました): {} ...",
};

std::string ProgramFolder() {
  std::error_code ec;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string(".") : self.parent_path().string();
}

// `text` with its "{}" places filled in order.
std::string Fill(std::string text, const std::vector<std::string>& values) {
  std::size_t from = 0;
  for (const std::string& value : values) {
    const auto at = text.find("{}", from);
    if (at == std::string::npos) break;
    text.replace(at, 2, value);
    from = at + value.size();
  }
  return text;
}

// The values of `line` at the "{}" places of `pattern`, when the line has the pattern's shape.
std::optional<std::vector<std::string>> Match(std::string_view pattern, std::string_view line) {
  std::vector<std::string> values;
  std::size_t at = 0;
  while (true) {
    const auto hole = pattern.find("{}");
    const std::string_view literal = pattern.substr(0, hole);
    if (hole == std::string_view::npos) {
      if (line.substr(at) != literal) return std::nullopt;
      return values;
    }
    if (line.substr(at, literal.size()) != literal) return std::nullopt;
    at += literal.size();
    pattern.remove_prefix(hole + 2);
    const auto next = pattern.find("{}");
    const std::string_view following = pattern.substr(0, next);
    const auto end = following.empty() ? line.size() : line.find(following, at);
    if (end == std::string_view::npos || end == at) return std::nullopt;
    values.emplace_back(line.substr(at, end - at));
    at = end;
  }
}

}  // namespace

Language ChooseLanguage(std::string_view flag) {
  if (flag == "ja") return Language::Japanese;
  if (flag == "en") return Language::English;
  for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(name);
    if (value && *value) return std::string_view(value).substr(0, 2) == "ja" ? Language::Japanese : Language::English;
  }
  return Language::English;
}

void UseLanguage(Language language) {
  // Only the messages' locale changes: numbers keep the C format whatever the user's locale. The
  // catalogue is chosen by LANGUAGE, which gettext honours in any locale but plain "C".
  if (!std::setlocale(LC_MESSAGES, "C.UTF-8")) std::setlocale(LC_MESSAGES, "C.utf8");
  ::setenv("LANGUAGE", language == Language::Japanese ? "ja" : "en", 1);
  const std::string folder = ProgramFolder();
  const std::string beside = folder + "/locale";
  bindtextdomain(kDomain, std::filesystem::is_directory(beside) ? beside.c_str() : (folder + "/../share/locale").c_str());
  bind_textdomain_codeset(kDomain, "UTF-8");
  textdomain(kDomain);
}

std::string Tr(const char* english) { return dgettext(kDomain, english); }

std::string Tr(const char* english, std::string_view first, std::string_view second) {
  return Fill(Tr(english), {std::string(first), std::string(second)});
}

std::string TrEngine(const std::string& line) {
  const std::string whole = dgettext(kDomain, line.c_str());
  if (whole != line || line.empty()) return whole;
  for (const char* pattern : kEnginePatterns) {
    const auto values = Match(pattern, line);
    if (!values) continue;
    std::vector<std::string> translated;
    for (const std::string& value : *values) translated.push_back(TrEngine(value));
    return Fill(dgettext(kDomain, pattern), translated);
  }
  return line;
}

}  // namespace velmora::cli
