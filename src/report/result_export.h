#pragma once
// The result files of every kind of computed result: what each kind is called in file names and what
// its CSV holds. One function gives the lines of one file; the export operation of the workbench asks
// for the folder, names the files and writes them.
#include <cstdint>
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_record.h"
#include "report/result_csv.h"
#include "results/filter_types.h"

namespace velmora {

enum class ExportKind {
  Profile,        // the filter tab's result
  OctaveAll,      // the nine bands, their sum, the long and short sums in one file
  OctaveBand,     // one band per file
  OctaveSum,      // the sum of the nine bands
  OctaveLong,
  OctaveShort,
  BandAll,        // the nine reduced bands, their sum, the long and short sums in one file
  BandOne,        // one reduced band per file
  BandSum,        // the sum of the nine reduced bands
  BandLong,
  BandShort,
  PsdRaw,
  PsdSmoothed,
  PsdRatio,       // the first profile against each further one
  IriWhole,       // one file for all profiles
  IriContinuous,  // the sliding-window series
  IriFixed,       // the 10, 100 or 200 m sections
};

// Options of one export (the choices of the output-format forms).
struct ExportOptions {
  std::vector<int> Octaves;       // OctaveBand, BandOne: the octave numbers 1..9 to write
  int Interval = 10;              // IriFixed: 10, 100 or 200 m
  bool WithBands = true;          // IRI kinds: the band columns too
  std::int32_t BandsPerOctave = 12;  // PsdSmoothed and PsdRatio with Smoothed
  std::int32_t WindowKind = 1;    // PSD smoothing recomputes with the tab's options
  bool MirrorFill = true;
  bool Smoothed = false;          // PsdRatio of the smoothed spectra
};

// "MAHP_50m", "MABP_50-10m", "FTLP_10m", "IRI", "Slope", "SLHC": the filter word with its cut-offs.
std::string FilterWord(const FilterSpec& filterSpec);

// The built-in name pattern of a kind (macros "$(PROFILENAME)$", "$(CUTOFF)$", "$(OctaveNum)$",
// "$(IRI種別)$", date macros) and the section of the settings key "FileExportName" that may replace it.
std::string BuiltInExportPattern(ExportKind kind);
std::string ExportSection(ExportKind kind);
// "$(IRI種別)$" of the IRI kinds: "全区間", "10m連続" (the evaluation length), "100m固定".
std::string IriKindWord(ExportKind kind, double evalLength, int interval);
// "$(出力種別)$": a short word for the kind ("Profile", "Octave", "PSD平滑化", ...).
std::string ExportKindWord(ExportKind kind);

// Whether the record holds results for the kind.
bool HasResult(ExportKind kind, const ProfileRecord& record);

ProfileGeometry GeometryOf(const ProfileRecord& record);

// The lines of one profile's file of a point kind (Profile, OctaveAll, OctaveSum/Long/Short, and
// OctaveBand for `octave`, the band-reduction kinds alike). Values in mm; the no value stays an empty field.
void WritePointKindCsv(const LineOut& out, ExportKind kind, const ProfileRecord& record, const PositionAxis& axis,
                       int octave = 0);
std::vector<std::string> PointKindLines(ExportKind kind, const ProfileRecord& record, const PositionAxis& axis,
                                        int octave = 0);
// The values of a one-column point kind (for ERD output), 1..n.
Array1<double> PointKindValues(ExportKind kind, const ProfileRecord& record, int octave = 0);

// PSD files: wavelength (m/cycle), wave number (cycle/m) and the value, numbers in "0.0000000000E+00".
// Raw: the stored spectrum from the first non-zero wave number up to the Nyquist wave number.
std::vector<std::string> PsdRawLines(const ProfileRecord& record);
std::vector<std::string> PsdSmoothedLines(Session& session, const ProfileRecord& record, const ExportOptions& options);
// Gain sqrt(compared/base); empty lines (head only) when the spectra differ in length.
std::vector<std::string> PsdRatioLines(Session& session, const ProfileRecord& base, const ProfileRecord& compared,
                                       const ExportOptions& options);

// IRI files. Whole: one line per profile with its name, "全区間IRI(<length>m)" and the value.
std::vector<std::string> IriWholeLines(const std::vector<const ProfileRecord*>& profiles);
// Continuous: one row per window position, from its first sample over `evalLength` m.
void WriteIriContinuousCsv(const LineOut& out, const ProfileRecord& record, const PositionAxis& axis, double evalLength,
                           bool withBands);
// The sections of one interval (section head and "IRI(mm/m)"), then the block tables of all three.
std::vector<std::string> IriFixedLines(const ProfileRecord& record, const PositionAxis& axis, int interval);

}  // namespace velmora
