// The writer of User.dat.
#include <chrono>

#include <fmt/format.h>

#include "base/error_log.h"
#include "base/legacy_format.h"
#include "base/macros.h"
#include "base/number_helpers.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "report/user_data.h"

namespace velmora {
namespace {

constexpr std::string_view kRuler = "*-------------------------------------------------------------------------------";
constexpr std::string_view kIriComment =
    "'   Speed, Ks/Ms, Cs/Ms, Mu/Ms, Kt/Ms, Initialization distance for a custom filter, Power weighting(=0:ARS/=1:RMS)";

class LineBuilder {
 public:
  std::vector<std::string> Lines;
  bool CommaReplaced = false;

  void Add(std::string line) { Lines.push_back(std::move(line)); }
  void Heading(std::string_view title) {
    Add(std::string(kRuler));
    Add(std::string(title));
    Add(std::string(kRuler));
  }
  // A text the user typed: the file has no quoting, so a "," would split it.
  std::string Free(std::string_view text) {
    if (text.find(',') == std::string_view::npos) return std::string(text);
    CommaReplaced = true;
    return UserDataText(text);
  }
};

std::string DateText(std::int32_t serial) {
  const std::chrono::sys_days epoch = std::chrono::year{1899} / std::chrono::December / 30;
  const std::chrono::year_month_day date{epoch + std::chrono::days{serial}};
  std::tm time{};
  time.tm_year = static_cast<int>(date.year()) - 1900;
  time.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
  time.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
  return FormatDateTime(time, "YYYY/MM/DD HH:NN:SS");
}

// "｜" stands for a line break, so that the comment stays on its line.
std::string CommentText(const std::string& comment) {
  std::string text = ReplaceAll(comment, "\r\n", "｜");
  text = ReplaceAll(std::move(text), "\r", "｜");
  return ReplaceAll(std::move(text), "\n", "｜");
}

template <class T>
std::string CountedList(const std::vector<T>& values) {
  std::string line = std::to_string(values.size());
  for (const T& value : values) line += "," + FormatNumber(static_cast<double>(value), "0");
  return line;
}

std::string IriLine(const IriParams& p) {
  std::string line;
  for (double value : {p.Speed, p.KsMs, p.CsMs, p.MuMs, p.KtMs, p.InitFilter})
    line += uFormatRight(value, "########0.00000") + ", ";
  return line + uFormatRight(p.PowerWeighting, "#####0");
}

void ProfileSection(LineBuilder& out, const AppPaths& paths, const ProfileList& profiles) {
  out.Heading("*    プロファイル・緒元");
  out.Add("[PROFILE_NUM]");
  out.Add("' プロファイル数");
  out.Add(uFormatRight(profiles.Count(), "#########0"));
  out.Add("");
  out.Add("[PROFILE_INFO]");
  for (std::int32_t i = 1; i <= profiles.Count(); ++i) {
    const ProfileRecord& p = profiles.Items[i];
    out.Add(fmt::format("' ( {} ) : 読み込みファイルタイプ(=0:ERD形式/=1:PMSファイル形式),  読み込みファイル名, "
                        "読み込みフルパスファイル名, 路線名, 計測日, コメント",
                        i));
    out.Add(fmt::format("{}, {}, {}, {}, {}, {}", uFormatRight(p.SourceType, "####0"), out.Free(Trim(p.FileName)),
                        out.Free(uAbbreviatePathMacro(paths, Trim(p.FilePath))), out.Free(Trim(p.RouteName)),
                        DateText(p.MeasureDate), out.Free(CommentText(p.Comment))));
    out.Add("");
  }
}

void StudySections(LineBuilder& out, const ProfileList& profiles) {
  out.Heading("*    M波・検討データ");
  out.Add("[M波検討データ]");
  for (const ProfileRecord& p : profiles.Items) {
    out.Add(std::to_string(p.Studies.size()));
    for (const StudyTarget& s : p.Studies) {
      out.Add(out.Free(s.Name) + (s.Adjusted ? ",1" : ",0"));
      out.Add(CountedList(s.Adjusted ? s.AdjFlags : s.Flags));
      out.Add(CountedList(s.Adjusted ? s.AdjPoints : s.Points));
    }
  }
  out.Heading("*    M波・補修計画");
  out.Add("[M波補修計画データ]");
  for (const ProfileRecord& p : profiles.Items) {
    out.Add(std::to_string(p.Studies.size()));
    for (const StudyTarget& s : p.Studies) {
      out.Add(fmt::format("{},{},{},{},{},{},{}", out.Free(s.Name), s.Adjusted ? 1 : 0, s.PlanA, s.PlanB, s.PlanC,
                          FormatNumber(s.PlanValue, "0.0000"), out.Free(s.PlanText)));
      out.Add(CountedList(s.AdjFlags));
      out.Add(CountedList(s.AdjPoints));
    }
  }
}

void ConditionSections(LineBuilder& out, const CalcConditions& c) {
  out.Heading("*    計算計算条件");  // the doubled word is what readers of the file know
  out.Add("[FILTER]");
  out.Add("'   Long CutOff Wavelength, Short CutOff Wavelength");
  out.Add(uFormatRight(c.FilterLong, "#####0") + ", " + uFormatRight(c.FilterShort, "#####0"));
  out.Add("");
  for (const auto& [head, params] : {std::pair{"[IRI]", &c.Iri}, std::pair{"[補修形状検討_IRI]", &c.RepairIri}}) {
    out.Add(head);
    out.Add(std::string(kIriComment));
    out.Add(IriLine(*params));
    out.Add("");
  }
}

}  // namespace

std::string UserDataText(std::string_view text) { return ReplaceAll(std::string(text), ",", "，"); }

std::vector<std::string> UserDataLines(const AppPaths& paths, const ProjectRecord& project,
                                       const CalcConditions& conditions, const std::tm& now, bool& commaReplaced) {
  LineBuilder out;
  out.Add(std::string(kRuler));
  out.Add("*         velmora");
  out.Add(std::string(kRuler));
  out.Add("*  コメント行：");
  out.Add("*              ① 行頭1文字が半角アスタリスク(*)の場合はコメント行とする");
  out.Add("*              ② 行頭1文字が半角リテラル(')の場合はコメント行とする");
  out.Add("*              ③ 空白行の場合はコメント行とする");
  out.Add(std::string(kRuler));
  out.Add("[VER]");
  out.Add(fmt::format("{}.{}.{}", kProgramVersion.Major, kProgramVersion.Minor, kProgramVersion.Revision));
  out.Add("");
  out.Add("[DATE]");
  out.Add(FormatDateTime(now, "YYYY/MM/DD HH:NN:SS"));
  out.Add("");
  ProfileSection(out, paths, project.Profiles);
  StudySections(out, project.Profiles);
  ConditionSections(out, conditions);
  commaReplaced = out.CommaReplaced;
  return std::move(out.Lines);
}

bool funWriteUserData(Session& session, const std::string& path, const ProjectRecord& project,
                      const CalcConditions& conditions) {
  return Guarded(session, "basUserData", "funWriteUserData", [&] {
    bool commaReplaced = false;
    WriteSystemTextFile(path, UserDataLines(session.Paths, project, conditions, LocalNow(), commaReplaced));
    if (commaReplaced)
      session.Ui().Inform("テキストに含まれる半角カンマ（,）は全角カンマ（，）に置き換えて保存しました。", "確認",
                          MsgIcon::Information);
  });
}

}  // namespace velmora
