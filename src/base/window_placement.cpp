#include "base/window_placement.h"

#include <charconv>
#include <string>

#include "base/settings_io.h"

namespace velmora {
namespace {

constexpr std::string_view kSection = "Window";

std::optional<int> WholeNumber(const std::string& text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

void SaveWindowPlacement(Session& session, const WindowPlacement& placement) {
  SetPrevValue(session, kSection, "Left", std::to_string(placement.Left));
  SetPrevValue(session, kSection, "Top", std::to_string(placement.Top));
  SetPrevValue(session, kSection, "Width", std::to_string(placement.Width));
  SetPrevValue(session, kSection, "Height", std::to_string(placement.Height));
  SetPrevValue(session, kSection, "Maximized", placement.Maximized ? "1" : "0");
}

std::optional<WindowPlacement> LoadWindowPlacement(Session& session) {
  const auto left = WholeNumber(GetPrevValue(session, kSection, "Left"));
  const auto top = WholeNumber(GetPrevValue(session, kSection, "Top"));
  const auto width = WholeNumber(GetPrevValue(session, kSection, "Width"));
  const auto height = WholeNumber(GetPrevValue(session, kSection, "Height"));
  if (!left || !top || !width || !height || *width <= 0 || *height <= 0) return std::nullopt;
  return WindowPlacement{*left, *top, *width, *height, GetPrevValue(session, kSection, "Maximized") == "1"};
}

}  // namespace velmora
