#include "view/view.h"

#include <gtest/gtest.h>

namespace {

TEST(View, FreshViewLooksFromZ400AtTheOriginWithEverythingShown) {
  const View v(7);
  EXPECT_STREQ(v.name, "View 7");
  EXPECT_EQ(v.cameraPosition.z, 400.0);
  EXPECT_TRUE(v.cameraFocus.isZero());
  EXPECT_TRUE(v.trackballEnabled && v.gridlineEnabled && v.showTraceLines && v.showVectors);
  EXPECT_FALSE(v.trackBody || v.trackCenterOfMass);
  EXPECT_EQ(v.gridlineSpacing, 100.0);
  EXPECT_EQ(v.gridlineColor[1], 0.1f);
  EXPECT_EQ(v.trackball->radius, 1.0);
  EXPECT_EQ(v.trackball->rotation.w, 1.0);
}

}  // namespace
