#pragma once
// Checks many tests share: the message boxes and progress a scripted user was shown, tables of inputs
// and results, waves against the values worked out for them, the text or number of a raised error,
// the entries of a folder, and a local time from its calendar fields.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/legacy_error.h"
#include "support/test_support.h"

namespace velmora::testing {

// A message box as it should have been shown: its text always, title, icon and buttons when given.
struct Shown {
  std::string Text;
  std::optional<std::string> Title = std::nullopt;
  std::optional<MsgIcon> Icon = std::nullopt;
  std::optional<MsgButtons> Buttons = std::nullopt;
};

inline void ExpectShown(const RecordedMessage& actual, const Shown& expected) {
  EXPECT_EQ(actual.Text, expected.Text);
  EXPECT_EQ(actual.Title, expected.Title.value_or(actual.Title)) << actual.Text;
  EXPECT_EQ(actual.Icon, expected.Icon.value_or(actual.Icon)) << actual.Text;
  EXPECT_EQ(actual.Buttons, expected.Buttons.value_or(actual.Buttons)) << actual.Text;
}

// Exactly these message boxes, in this order.
inline void ExpectMessages(const ScriptedUi& ui, const std::vector<Shown>& expected) {
  const auto messages = ui.Messages();
  ASSERT_EQ(messages.size(), expected.size()) << (messages.empty() ? "" : messages.back().Text);
  for (std::size_t i = 0; i < messages.size(); ++i) ExpectShown(messages[i], expected[i]);
}

// A table of inputs and the results `f` must give for them: ExpectEach(f, {std::pair{in, out}, {in, out}}).
template <class F, class In, class Out>
void ExpectEach(F&& f, std::initializer_list<std::pair<In, Out>> cases) {
  for (const auto& [in, out] : cases) EXPECT_EQ(f(in), out) << "for " << ::testing::PrintToString(in);
}

// The text of the LegacyError a call raises; a failure when it raises none.
template <class Call>
std::string WhatOf(Call&& call) {
  try {
    call();
  } catch (const LegacyError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no error was raised";
  return {};
}

// The names of a folder's entries, sorted by bytes; none when it does not exist.
inline std::vector<std::string> EntryNames(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  if (std::filesystem::exists(folder))
    for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// The names in a folder, sorted by bytes; none when it does not exist.
inline std::vector<std::string> FileNames(const std::filesystem::path& folder) { return EntryNames(folder); }

// Names that start with the heads given, in order and no more.
inline void ExpectHeads(const std::vector<std::string>& names, const std::vector<std::string>& heads) {
  ASSERT_EQ(names.size(), heads.size());
  for (std::size_t i = 0; i < heads.size(); ++i) EXPECT_EQ(names[i].rfind(heads[i], 0), 0u) << names[i];
}

// The kinds of every entry, in order.
inline std::vector<std::string> Kinds(const ScriptedUi& ui) {
  std::vector<std::string> kinds;
  for (const RecordedMessage& entry : ui.Log) kinds.push_back(entry.Kind);
  return kinds;
}

// The titles, or the texts, of the entries of one kind ("message", "progress-start", "save", ...), in order.
inline std::vector<std::string> Titles(const ScriptedUi& ui, const std::string& kind, bool texts = false) {
  std::vector<std::string> out;
  for (const RecordedMessage& entry : ui.Log)
    if (entry.Kind == kind) out.push_back(texts ? entry.Text : entry.Title);
  return out;
}
inline std::vector<std::string> ProgressTexts(const ScriptedUi& ui) { return Titles(ui, "progress-start", true); }

// A wave, 1-based or plain, against the values worked out for it.
template <class Values>
void ExpectValues(const Values& actual, const std::vector<double>& expected, double tolerance = 1e-12) {
  ASSERT_EQ(static_cast<std::size_t>(actual.size()), expected.size());
  std::size_t i = 0;
  for (const double value : actual) {
    EXPECT_NEAR(value, expected[i], tolerance) << "sample " << i + 1;
    ++i;
  }
}

// The number of the LegacyError a call raises, or nothing when it raises none.
template <class Call>
std::optional<ErrorNumber> ErrorOf(Call&& call) {
  try {
    call();
  } catch (const LegacyError& error) {
    return error.Number();
  }
  return std::nullopt;
}

inline std::tm At(int year, int month, int day, int hour, int minute, int second) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  return t;
}

}  // namespace velmora::testing
