#include "support/twin.h"

namespace sigvex_test::frame_test {

TEST(Frame, VersionInitialisationAndReleaseOfAFreshLibrary) {
  EXPECT_TRUE(dsp_version() == 3035006 && dspf_version == dsp_version && dspf_lib_init == dsp_lib_init);
  EXPECT_TRUE(dsp_free_internal() == 0 && dspf_free_internal() == 0);
  for (int k = 0; k < 10100; ++k) ASSERT_EQ(k % 2 ? dsp_lib_init() : dspf_lib_init(), 0);  // beyond the counter's limit
  EXPECT_EQ(dsp_free_internal(), 0);
}

}  // namespace sigvex_test::frame_test
