#pragma once
// Reading back what a run left behind: the entries a scripted user was shown, and the files of a folder.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/checks.h"
#include "support/test_support.h"

namespace velmora::testing {

// The kinds of every entry, in order.
inline std::vector<std::string> Kinds(const ScriptedUi& ui) {
  std::vector<std::string> kinds;
  for (const RecordedMessage& entry : ui.Log) kinds.push_back(entry.Kind);
  return kinds;
}

// The titles of the entries of one kind ("message", "progress-start", "save", ...), in order.
inline std::vector<std::string> Titles(const ScriptedUi& ui, const std::string& kind) {
  std::vector<std::string> titles;
  for (const RecordedMessage& entry : ui.Log)
    if (entry.Kind == kind) titles.push_back(entry.Title);
  return titles;
}

// The names in a folder, sorted by bytes; none when it does not exist.
inline std::vector<std::string> FileNames(const std::filesystem::path& folder) { return EntryNames(folder); }

// Names that start with the heads given, in order and no more.
inline void ExpectHeads(const std::vector<std::string>& names, const std::vector<std::string>& heads) {
  ASSERT_EQ(names.size(), heads.size());
  for (std::size_t i = 0; i < heads.size(); ++i) EXPECT_EQ(names[i].rfind(heads[i], 0), 0u) << names[i];
}

}  // namespace velmora::testing
