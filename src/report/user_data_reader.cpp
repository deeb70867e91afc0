// The reader of User.dat. Its main loop passes over lines beginning with ";" or "*", while
// uLineInput passes over those beginning with "'" or "*": a "'" comment between sections is an
// unknown word to the main loop and skipped as one. Files of other versions depend on this.
#include <chrono>
#include <cmath>
#include <limits>

#include <fmt/format.h>

#include "base/error_log.h"
#include "base/macros.h"
#include "base/path_helpers.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "report/user_data.h"

namespace velmora {
namespace {

constexpr std::string_view kTitle = "プロジェクトの読込";

// The fields between the separators, trimmed; no quoting, as the file has none.
std::vector<std::string> Split(std::string_view line, char separator) {
  std::vector<std::string> fields;
  std::size_t from = 0;
  for (std::size_t at = line.find(separator); at != std::string_view::npos; at = line.find(separator, from)) {
    fields.push_back(Trim(line.substr(from, at - from)));
    from = at + 1;
  }
  fields.push_back(Trim(line.substr(from)));
  return fields;
}

class Reader {
 public:
  Reader(const std::vector<std::string>& lines, const AppPaths& paths) : cursor_{lines}, paths_(paths) {}

  void Read(ProjectRecord& project, CalcConditions& conditions) {
    ReadBody(project, conditions);
    // A count without its profile lines would leave profiles with no file to load.
    if (project.Profiles.Count() > 0 && !profilesRead_) throw Error(countLine_, "[PROFILE_INFO] がありません。");
  }

 private:
  void ReadBody(ProjectRecord& project, CalcConditions& conditions) {
    bool expectHead = false;  // a section just read: only a head or a comment may follow
    while (cursor_.Next < cursor_.Lines.size()) {
      const std::size_t number = cursor_.Next + 1;
      const std::string line = Trim(cursor_.Lines[cursor_.Next++]);
      if (line.empty() || line[0] == ';' || line[0] == '*') continue;
      const std::string head = UCase(line);
      const bool known = head.front() == '[';
      if (head == "[VER]") ReadVersion(project);
      else if (head == "[USER]") project.User = uLineInput(cursor_);
      else if (head == "[PROFILE_NUM]") ReadCount(project);
      else if (head == "[PROFILE_INFO]") ReadProfiles(project.Profiles);
      else if (head == "[FILTER]") ReadFilter(conditions);
      else if (head == "[IRI]") ReadIri(conditions.Iri);
      else if (head == "[補修形状検討_IRI]") ReadIri(conditions.RepairIri);
      else if (head == "[M波検討データ]") ReadStudies(project.Profiles);
      else if (known) {
        expectHead = false;  // [DATE], [M波補修計画データ] and sections of later revisions: passed over
        continue;
      } else if (expectHead && line[0] != '\'') {
        throw Error(number, "件数より多い行があります。");
      } else {
        continue;
      }
      expectHead = true;
    }
  }

  std::string Next(std::size_t& number) {
    std::string line = uLineInput(cursor_);
    number = cursor_.Next;
    if (line.empty()) throw Error(cursor_.Lines.size() + 1, "ファイルが途中で終わっています。");
    return line;
  }

  static UserDataError Error(std::size_t number, const std::string& what) {
    return UserDataError(fmt::format("{} 行目：{}", number, what));
  }

  std::vector<std::string> Fields(std::size_t expected, std::size_t& number) {
    std::vector<std::string> fields = Split(Next(number), ',');
    if (fields.size() != expected)
      throw Error(number, fmt::format("項目の数が {} 個です（{} 個のはずです）。", fields.size(), expected));
    return fields;
  }

  static double Number(const std::string& text, std::size_t number) {
    const std::optional<double> value = ParseNumber(text);
    if (!value || !std::isfinite(*value)) throw Error(number, fmt::format("数値ではありません：{}", text));
    return *value;
  }

  static std::int32_t Whole(const std::string& text, std::size_t number, double least = 0,
                            double most = std::numeric_limits<std::int32_t>::max()) {
    const double value = Number(text, number);
    if (value != std::floor(value) || value < least || value > most)
      throw Error(number, fmt::format("整数 {}～{} ではありません：{}", least, most, text));
    return static_cast<std::int32_t>(value);
  }

  // No count can exceed the lines left, so a wrong one is told before anything is sized by it.
  std::int32_t Count(const std::string& text, std::size_t number) const {
    return Whole(text, number, 0, static_cast<double>(cursor_.Lines.size()));
  }

  void ReadVersion(ProjectRecord& project) {
    std::size_t number = 0;
    const std::string text = Next(number);
    const std::vector<std::string> parts = Split(text, '.');
    if (parts.size() != 3) throw Error(number, fmt::format("バージョンではありません：{}", text));
    project.VerMajor = Whole(parts[0], number);
    project.VerMinor = Whole(parts[1], number);
    project.VerRevision = Whole(parts[2], number);
    // A later revision alone reads as this one does; a later minor or major version may not.
    if (project.VerMajor * 1000.0 + project.VerMinor > kProgramVersion.Major * 1000.0 + kProgramVersion.Minor)
      throw UserDataError(fmt::format("指定されたファイルのバージョンが違います。\r\nVER. {}.{} 以上のプログラムを入手してください。",
                                      project.VerMajor, project.VerMinor),
                          /*newerVersion=*/true);
  }

  void ReadCount(ProjectRecord& project) {
    std::size_t number = 0;
    const std::string text = Next(number);
    project.Profiles.Clear();
    project.Profiles.Items.resize(Count(text, number));
    countLine_ = number;
    profilesRead_ = false;
  }

  void ReadProfiles(ProfileList& profiles) {
    profilesRead_ = true;
    for (ProfileRecord& p : profiles.Items) {
      std::size_t number = 0;
      const std::vector<std::string> f = Fields(6, number);
      p.SourceType = Whole(f[0], number, 0, 1);
      p.FileName = f[1];
      p.FilePath = uExpandPathMacro(paths_, f[2]);
      // A source moved away since: the profile still loads from the project's own copy.
      if (!flSearchPath(p.FilePath)) p.FilePath.clear();
      p.RouteName = f[3];
      p.MeasureDate = DateSerial(f[4], number);
      p.Comment = ReplaceAll(f[5], "｜", "\r\n");
      if (p.FileName.empty() || p.FileName != flGetFileName(p.FileName) || p.FileName == "." || p.FileName == "..")
        throw Error(number, fmt::format("ファイル名ではありません：{}", p.FileName));
    }
  }

  // "YYYY/MM/DD", with or without a time, as whole days since 1899-12-30.
  static std::int32_t DateSerial(const std::string& text, std::size_t number) {
    int y = 0, m = 0, d = 0, consumed = 0;
    const std::string date = text.substr(0, text.find(' '));
    if (std::sscanf(date.c_str(), "%d/%d/%d%n", &y, &m, &d, &consumed) != 3 ||
        static_cast<std::size_t>(consumed) != date.size())
      throw Error(number, fmt::format("日付ではありません：{}", text));
    const std::chrono::year_month_day ymd{std::chrono::year{y}, std::chrono::month{static_cast<unsigned>(m)},
                                          std::chrono::day{static_cast<unsigned>(d)}};
    if (!ymd.ok()) throw Error(number, fmt::format("日付ではありません：{}", text));
    const std::chrono::sys_days epoch = std::chrono::year{1899} / std::chrono::December / 30;
    return static_cast<std::int32_t>((std::chrono::sys_days{ymd} - epoch).count());
  }

  void ReadFilter(CalcConditions& c) {
    std::size_t number = 0;
    const std::vector<std::string> f = Fields(2, number);
    c.FilterLong = Whole(f[0], number, std::numeric_limits<std::int32_t>::min());
    c.FilterShort = Whole(f[1], number, std::numeric_limits<std::int32_t>::min());
  }

  void ReadIri(IriParams& p) {
    std::size_t number = 0;
    const std::vector<std::string> f = Fields(7, number);
    double* values[] = {&p.Speed, &p.KsMs, &p.CsMs, &p.MuMs, &p.KtMs, &p.InitFilter};
    for (std::size_t k = 0; k < 6; ++k) *values[k] = Number(f[k], number);
    p.PowerWeighting = Whole(f[6], number, std::numeric_limits<std::int32_t>::min());
  }

  // A count, then as many values on the same line.
  template <class T>
  std::vector<T> CountedList(double least, double most) {
    std::size_t number = 0;
    const std::vector<std::string> f = Split(Next(number), ',');
    const std::int32_t count = Count(f[0], number);
    if (f.size() != static_cast<std::size_t>(count) + 1)
      throw Error(number, fmt::format("項目の数が {} 個です（{} 個のはずです）。", f.size(), count + 1));
    std::vector<T> values;
    values.reserve(static_cast<std::size_t>(count));
    for (std::size_t k = 1; k < f.size(); ++k) values.push_back(static_cast<T>(Whole(f[k], number, least, most)));
    return values;
  }

  // The name line is taken whole, its "," and Adjusted digit included, and both lists go into the
  // set before adjustment: the layout this reader follows is older than the writer's.
  void ReadStudies(ProfileList& profiles) {
    for (ProfileRecord& p : profiles.Items) {
      std::size_t number = 0;
      const std::string countText = Next(number);
      p.Studies.assign(static_cast<std::size_t>(Count(countText, number)), StudyTarget{});
      for (StudyTarget& s : p.Studies) {
        s.Name = Next(number);
        s.Flags = CountedList<std::uint8_t>(0, 255);
        s.Points = CountedList<double>(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max());
      }
    }
  }

  UserDataCursor cursor_;
  const AppPaths& paths_;
  std::size_t countLine_ = 0;   // the line of the profile count
  bool profilesRead_ = false;   // the profile lines of that count were read
};

}  // namespace

std::string uLineInput(UserDataCursor& cursor) {
  while (cursor.Next < cursor.Lines.size()) {
    std::string line = Trim(cursor.Lines[cursor.Next++]);
    if (!line.empty() && line[0] != '\'' && line[0] != '*') return line;
  }
  return {};
}

void ParseUserData(const std::vector<std::string>& lines, const AppPaths& paths, ProjectRecord& project,
                   CalcConditions& conditions) {
  Reader(lines, paths).Read(project, conditions);
}

std::string UserDataErrorText(const std::string& shownName, const UserDataError& error) {
  if (error.NewerVersion()) return error.what();
  return "プロジェクトファイルの内容が正しくありません。\r\n\r\nファイル名：" + shownName + "\r\n\r\n" + error.what();
}

bool funReadUserData(Session& session, const std::string& path, ProjectRecord& project, CalcConditions& conditions) {
  if (!flSearchPath(path)) {
    session.Ui().Inform("ファイル名：" + path + "\r\n\r\n確認してください。", "", MsgIcon::Information);
    return false;
  }
  bool read = false;
  Guarded(session, "basUserData", "funReadUserData", [&] {
    try {
      ParseUserData(ReadSystemTextLines(path), session.Paths, project, conditions);
      read = true;
    } catch (const UserDataError& error) {
      session.Ui().Inform(UserDataErrorText(path, error), std::string(kTitle), MsgIcon::Exclamation);
    }
  });
  return read;
}

}  // namespace velmora
