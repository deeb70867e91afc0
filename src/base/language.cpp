#include "language.h"

#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <optional>

namespace velmora {
namespace {

// Engine lines that carry values; the English catalogue translates each pattern as a whole.
constexpr const char* kEnginePatterns[] = {
    "{}: {}",  // a file error: the file, then what is wrong with it
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
    "{} 行目の Shift-JIS として読めないバイトを � に置き換えました。",
    "{} 行目の値 \"{}\" は mm にすると扱える範囲を超えます。",
    "ピッチ {} m は使えません (0.000001 m 以上の有限の数が必要です)。",
    "{} 行目 {} 列の値 \"{}\" は有限の数ではありません。",
    "{} 行目が長すぎます ({} バイトを超えています)。",
    "{} 行目に Shift-JIS として読めないバイトがあります ({})。",
    "サンプルが {} 個を超えています。",
    "オーバーフローしました。 (2 行目 \"{}\")",
    "プロファイルが短すぎて IRI を計算できません ({} サンプル)。",
    "{} ： {}",
    // the readers of profilers' files
    "値が {} 個ありますが、チャンネル数は {} です",
    "ヘッダーのデータ件数 {} が実データ件数 {} と合いません",
    "単位 \"{}\" は知られていません",
    "\"{}\" は数値ではありません",
    "\"{}\" は有限の数ではありません",
    "\"{}\" は整数ではありません",
    "チャンネル数 {} は読めません（1 から 3）",
    "書式コード {} は読めません（テキストの 5 のみ）",
    "ピッチ {} が正の数ではありません",
    "{} の行がありません",
    "項目が {} 個しかありません（{} 個以上必要）",
    "チャンネル {} はありません（チャンネル数 {}）",
    "エントリー {} の {} 行目：{}",
    "{} 行目：{}",
    "項目の数が {} 個です（{} 個のはずです）。",
    "数値ではありません：{}",
    "日付ではありません：{}",
    "ファイル名ではありません：{}",
    "整数 {}～{} ではありません：{}",
    "バージョンではありません：{}",
    "VER. {}.{} 以上のプログラムを入手してください。",
    "エントリー {} はフォルダの外を指しています。",
    "エントリー {} の名前に制御文字があります。",
    "エントリー {} の名前の文字コードが正しくありません。",
    "エントリー {} はシンボリックリンクです。",
    "エントリー {} が二重にあります。",
    "エントリー {} は暗号化されています。",
    "エントリー {} までで展開後の大きさが {} バイトを超えます。",
    "エントリー {} の圧縮率が {} 倍を超えます。",
    "エントリーが {} 個あります（{} 個まで）。",
    "エントリー {} の CRC が合いません。",
    "エントリー {} が途中で切れています。",
    "エントリー {} がありません。",
    "エントリー {} は ERD ファイルとして読めません。",
    "エントリー {} : {}",
    "エントリー {} の名前を読めません。",
    "エントリー {} の大きさを読めません。",
    "エントリー {} を読めません：{}",
    "エントリー {} を書けません：{}",
    "エントリー {} のフォルダを作れません：{}",
    "エントリー {} が壊れています：{}",
    "エントリー {} が記録された大きさより大きくなります。",
    "ZIP 書庫を開けません：{}",
    "ファイルを読めません：{}",
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
    "⇒ 距離：{}(m)",  // the length of a profile beside its header
};

std::string ProgramFolder() {
  std::error_code ec;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
  return ec ? std::string(".") : self.parent_path().string();
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
  bindtextdomain(kMessageDomain, std::filesystem::is_directory(beside) ? beside.c_str() : (folder + "/../share/locale").c_str());
  bind_textdomain_codeset(kMessageDomain, "UTF-8");
  textdomain(kMessageDomain);
}

std::string FillPlaces(std::string text, const std::vector<std::string>& values) {
  std::size_t from = 0;
  for (const std::string& value : values) {
    const auto at = text.find("{}", from);
    if (at == std::string::npos) break;
    text.replace(at, 2, value);
    from = at + value.size();
  }
  return text;
}

std::string TrEngine(const std::string& line) {
  const std::string whole = dgettext(kMessageDomain, line.c_str());
  if (whole != line || line.empty()) return whole;
  for (const char* pattern : kEnginePatterns) {
    const auto values = Match(pattern, line);
    if (!values) continue;
    std::vector<std::string> translated;
    for (const std::string& value : *values) translated.push_back(TrEngine(value));
    return FillPlaces(dgettext(kMessageDomain, pattern), translated);
  }
  return line;
}

}  // namespace velmora
