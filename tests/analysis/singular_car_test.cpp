// A car model that cannot be inverted is said once by the run, inside its progress, and the engine
// goes on with it.
#include <gtest/gtest.h>

#include "analysis/filter.h"
#include "analysis/iri_sections.h"
#include "analysis/prepare_profile.h"
#include "support/profile_fixture.h"
#include "support/session_fixture.h"

namespace velmora {
namespace {

class SingularCar : public testing::SessionTest {
 protected:
  // Every rate tiny and the unsprung mass huge: the model's last row underflows to zeros.
  static IriParams Singular() { return IriParams{80, 1e-300, 1e-300, 1e300, 1e-300, 0, 0, 10}; }
  void ExpectSaidOnce() const {
    const auto messages = ui_.Messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].Text, "Singular matrix");
    EXPECT_EQ(messages[0].Title, "");
    EXPECT_EQ(messages[0].Icon, MsgIcon::None);
  }
  ProfileRecord road = testing::MakeProfile("road", 0.25, testing::Road(400));
};

TEST_F(SingularCar, TheIriRunSaysItOnceForAllProfiles) {
  ProfileRecord other = testing::MakeProfile("other", 0.25, testing::Road(400, 9));
  std::vector<ProfileRecord*> list{&road, &other};
  IriRunRequest request{"10", Singular(), false, false, FilterConvergence{}};
  double last = kNoValue;
  RunIri(session, list, list, request, last);
  ExpectSaidOnce();
}

TEST_F(SingularCar, TheIriFilterSaysItAndTheOtherFiltersDoNot) {
  FilterSpec filter;
  filter.CalcType = FilterCalcType::Iri;
  PrepareProfile(DebugTables{}, road);
  RunFilter(session, filter, true, {&road}, Singular(), FilterConvergence{});
  ExpectSaidOnce();

  ui_.Log.clear();
  filter.CalcType = FilterCalcType::Slope;
  RunFilter(session, filter, true, {&road}, Singular(), FilterConvergence{});
  EXPECT_TRUE(ui_.Messages().empty());
}

}  // namespace
}  // namespace velmora
