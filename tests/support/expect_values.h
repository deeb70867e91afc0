#pragma once
// Comparing a wave, 1-based or plain, with the values worked out for it; and the captions of the
// progress bars a scripted user was shown.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "support/test_support.h"

namespace velmora::testing {

template <class Values>
void ExpectValues(const Values& actual, const std::vector<double>& expected, double tolerance = 1e-12) {
  ASSERT_EQ(static_cast<std::size_t>(actual.size()), expected.size());
  std::size_t i = 0;
  for (const double value : actual) {
    EXPECT_NEAR(value, expected[i], tolerance) << "sample " << i + 1;
    ++i;
  }
}

inline std::vector<std::string> ProgressTexts(const ScriptedUi& ui) {
  std::vector<std::string> texts;
  for (const RecordedMessage& entry : ui.Log)
    if (entry.Kind == "progress-start") texts.push_back(entry.Text);
  return texts;
}

}  // namespace velmora::testing
