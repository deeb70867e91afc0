#pragma once
// Checks many tests share: the message boxes a scripted user was shown, tables of inputs and results,
// the text of a raised error and the entries of a folder.
#include <gtest/gtest.h>

#include <algorithm>
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

}  // namespace velmora::testing
