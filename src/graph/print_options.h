#pragma once
// The options of a printed sheet (graph scales, header items, colours, layout) as the .prt file keeps
// them: system code page text with CR LF, a mark line, sections, comment lines starting "*" or ";".
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "base/colour.h"
#include "base/session.h"

namespace velmora::graph {

struct PrintOptions {
  std::string Version = "1.0.0";
  double ProfileMin = -20;  // vertical axis of the profile chart, mm
  double ProfileMax = 20;
  double IriMin = 0;        // vertical axis of the IRI chart, mm/m
  double IriMax = 10;
  std::array<double, 10> OctaveMax{};  // [1..9]: vertical axis maximum of each band's panel, mm
  std::vector<std::string> HeaderItems;
  Colour LimitLineColour = 0xFF00FF;   // the reduction limit lines
  Colour LimitGraphColour = 0x00FF00;  // the reduced wave
  std::array<Colour, 10> OctaveBackground{};  // [1..9]
  bool PrintStatistics = true;

  friend bool operator==(const PrintOptions&, const PrintOptions&) = default;
};

// The options a new set starts with: band maxima from 40 mm down to 1 mm, pale band backgrounds.
PrintOptions DefaultPrintOptions();
// All nine band backgrounds white ("Octave背景色を無し(白)でに適用します。").
void ClearOctaveBackgrounds(PrintOptions& options);

// Reads a .prt file into `options`. A file whose first line is not the mark is refused with the
// program's message and `options` stays as it was. A data line that is not what its section holds
// raises LegacyError(InvalidData) naming the file and line, also leaving `options` as it was.
bool ReadPrintoption(Session& session, const std::filesystem::path& path, PrintOptions& options);
// Writes the file whole (or leaves the old one) and says so with the program's message.
void WritePrintoption(Session& session, const std::filesystem::path& path, const PrintOptions& options);
// The lines of the file, without line ends.
std::vector<std::string> PrintOptionLines(const PrintOptions& options);

}  // namespace velmora::graph
