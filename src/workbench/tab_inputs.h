#pragma once
// The input boxes and options of the analysis tabs, as the controller holds them: text boxes stay
// text until a Go reads them, so that their checks can name what was typed.
#include <array>
#include <string>

namespace velmora::workbench {

// Tab 2. CalcType: 0 "移動平均", 1 "フーリエ変換", 2 "IRI", 3 "Slope"; Band: 0 HighPass, 1 LowPass,
// 2 BandPass, 3 BandCut; SlopeMode: false "Slopeプロファイル", true "Slope ≧" (slope-cut profile).
struct FilterTabInputs {
  int CalcType = 0;
  int Band = 0;
  bool SlopeMode = false;
  std::string LongCut = "11";   // m
  std::string ShortCut = "11";  // m
  std::string SlopeCut = "50";  // mm/m
  bool Converge = false;        // chk_FFT収束演算, Fourier type only
  friend bool operator==(const FilterTabInputs&, const FilterTabInputs&) = default;
};

// Tab 3.
struct OctaveTabInputs {
  bool Converge = false;  // chk_FFT収束演算
  friend bool operator==(const OctaveTabInputs&, const OctaveTabInputs&) = default;
};

// Tab 4: txt_バンド別低減ライン, one text per octave 1..9 (index 0 unused); empty means no limit.
struct BandTabInputs {
  std::array<std::string, 10> Lines{};
  friend bool operator==(const BandTabInputs&, const BandTabInputs&) = default;
};

// Tab 5.
struct PsdTabInputs {
  int WindowKind = 1;                // optPsdWindow: 0 none, 1 Hanning, 2 Hamming
  bool MirrorFill = true;            // optPsd不足処理: true "折り返し反転", false "ゼロ埋め"
  bool Smooth = false;               // chk平滑化
  std::string BandsPerOctave = "12"; // txt_平滑化処理
  bool Ratio = false;                // chkPSD比
  int AxisUnit = 1;                  // optPsdUnit: 0 wave number, 1 wavelength
  bool OctaveColours = false;        // chkPSD色分け表示
  friend bool operator==(const PsdTabInputs&, const PsdTabInputs&) = default;
};

// Tab 6.
struct IriTabInputs {
  std::string EvalLength = "10";     // m, the sliding window and section evaluation length
  bool SkipPartialSections = false;  // opt_IRI算出区間条件 "しない"
  bool Bands = true;                 // the band IRIs too (the tab shows them; a batch run may not need them)
  friend bool operator==(const IriTabInputs&, const IriTabInputs&) = default;
};

}  // namespace velmora::workbench
