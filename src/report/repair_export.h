#pragma once
// Result files of the repair-shape study: the three-wave split as profiles and as IRI, the S wave
// with its reduction, and the M wave up to the ideal shape. Lines are UTF-8 here; the workbench writes
// them in the system code page under names from "FileExportName".
#include <string>
#include <vector>

#include "base/one_based.h"
#include "base/session.h"
#include "profile/profile_record.h"
#include "report/position_axis.h"
#include "report/result_csv.h"
#include "results/iri_types.h"

namespace velmora {

enum class RepairExportKind {
  ThreeWaveProfile,  // profile, L, M and S (mm) per sample
  ThreeWaveIri,      // IRI (mm/m) of L, M and S over sliding windows
  ShortWave,         // profile, S, S' and S' of each octave band (mm)
  ShortWaveIri,      // IRI (mm/m) over sliding windows of the profile, of S and its octave bands, and of S'
  IdealShape,        // M, M', M'' with their octave bands, L + M' + S, L + M' + S', M - M' (mm)
};

// Section of TOLVAVERI.ini whose key "FileExportName" may replace the built-in names of these kinds.
inline constexpr const char* kRepairExportSection = "補修形状検討";

// "_3波分解(Profile)_", "_3波分解(IRI)_", "_S波_", "_S波(IRI)_", "_理想形状_".
std::string RepairNamePart(RepairExportKind kind);
// "$(PROFILENAME)$" + the name part + "$(YYYYMMDDHHNNSS)$".
std::string BuiltInRepairPattern(RepairExportKind kind);
// "$(出力種別)$" of the kind: "3波分解(Profile)", "3波分解(IRI)", "S波", "S波(IRI)", "理想形状".
std::string RepairKindWord(RepairExportKind kind);

// Whether the record holds what the kind writes (the split, S', or the ideal shape).
bool HasRepairResult(RepairExportKind kind, const ProfileRecord& record);
// Whether the kind is one wave and so may be written as an ERD file (S' and the ideal shape).
bool IsRepairErdKind(RepairExportKind kind);

// The CSV lines of one profile's file, into `out`: the distance head, then the kind's columns joined
// by ", ". `iri` (the study's IRI parameters with their base length in m) is used by the IRI kinds only.
void WriteRepairKindCsv(const LineOut& out, Session& session, RepairExportKind kind, const ProfileRecord& record,
                        const PositionAxis& axis, const IriParams& iri);
// The one wave of an ERD kind, mm, 1..n: S' for ShortWave, L + M' + S' for IdealShape.
const Array1<double>& RepairKindValues(RepairExportKind kind, const ProfileRecord& record);

}  // namespace velmora
