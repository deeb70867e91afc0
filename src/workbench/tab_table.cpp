#include "workbench/tab_table.h"

namespace velmora::workbench {

const std::array<TabInfo, kTabCount>& TabTable() {
  using enum TabGroup;
  using enum EntryAction;
  static const std::array<TabInfo, kTabCount> table{{
      {0, "project commands", Both, None, "", ""},
      {1, "profile list, header, KP", Both, RedrawWhenDirty, "ReDraw_Profile", ""},
      {2, "moving-average and FFT filters", Analysis, RedrawWhenDirty, "ReDraw_フィルター処理", "cmdGo_フィルター処理"},
      {3, "octave decomposition", Analysis, RedrawWhenDirty, "ReDraw_プロファイル分解", "cmdGo_OctBand"},
      {4, "band reduction", Analysis, RedrawWhenDirty, "ReDraw_バンド別低減", "cmdGo_バンド別低減"},
      {5, "PSD", Analysis, RedrawThenLegend, "Redraw_PSD", ""},
      {6, "IRI", Analysis, RedrawWhenDirty, "ReDraw_IRI", "cmdGo_IRI"},
      {7, "statistics", Analysis, None, "", "cmdGO統計値"},
      {8, "report workbook", Analysis, AlwaysRefill, "", "cmxExlsCreate"},
      {9, "print", Analysis, None, "", "cmdPrintOut"},
      {10, "three-wave split", Repair, RedrawWhenDirty, "ReDraw_3波長分解", "cmdGo_3波長分解"},
      {11, "medium wave", Repair, RedrawWhenDirty, "ReDraw_中波長", "cmdGo_中波長"},
      {12, "short wave", Repair, RedrawWhenDirty, "ReDraw_短波長", "cmdGo_短波長"},
      {13, "ideal shape", Repair, RedrawWhenDirty, "ReDraw_理想形状", "cmdGo_理想形状"},
      {14, "accuracy verification", Analysis, None, "", "cmdGO相互相関"},
  }};
  return table;
}

}  // namespace velmora::workbench
