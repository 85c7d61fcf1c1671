#include <gtest/gtest.h>

#include <QDir>
#include <cmath>
#include <vector>

#include "document/world_document.h"
#include "tests/case_names.h"
#include "tests/engine/test_support.h"

namespace {

QStringList exampleFiles() {
  return QDir(QStringLiteral(ORRENVALE_EXAMPLES_DIR))
      .entryList({QStringLiteral("*.ovd")}, QDir::Files, QDir::Name);
}

void load(World& world, const QString& file) {
  const DocumentReadResult read =
      readDocumentFile(QStringLiteral(ORRENVALE_EXAMPLES_DIR "/") + file);
  ASSERT_TRUE(read.dict) << read.error.toStdString();
  loadToWorldFromDict(world, &*read.dict, DocumentSections{});
}

bool finite(const Vector& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

class EveryExample : public ::testing::TestWithParam<QString> {};

TEST_P(EveryExample, LoadsAndRunsAHundredStepsWithoutNaN) {
  World world;
  load(world, GetParam());
  ASSERT_GT(world.bodies->count(), 0);
  takeSteps(world, 100);
  ASSERT_GT(world.bodies->count(), 0);
  forEachItem<Body>(*world.bodies, [](const Body& b) {
    EXPECT_TRUE(finite(b.position) && finite(b.velocity) && finite(b.acceleration)) << b.name;
  });
  EXPECT_TRUE(std::isfinite(world.energy()));
}

INSTANTIATE_TEST_SUITE_P(Examples, EveryExample, ::testing::ValuesIn(exampleFiles()),
                         [](const auto& p) {
                           return p.param.section(u'.', 0, 0).replace(u'-', u'_').toStdString();
                         });

TEST(Examples, FigureEightReturnsToItsStartAfterOnePeriod) {
  World world;
  load(world, QStringLiteral("figure-eight.ovd"));
  std::vector<Vector> start;
  forEachItem<Body>(*world.bodies, [&](const Body& b) { start.push_back(b.position); });
  // The published period is 6.32591398; the steps cover it to within 0.001.
  const int steps = static_cast<int>(std::lround(6.32591398 / world.timeStep));
  takeSteps(world, steps);
  std::size_t i = 0;
  forEachItem<Body>(*world.bodies, [&](const Body& b) {
    // Bodies move at most 1.5 units per time unit, so the part step of
    // 0.001 accounts for 1.5e-3; the eight-digit initial data and the
    // fourth-order integration error add far less.
    EXPECT_LT((b.position - start[i++]).length(), 2e-3) << b.name;
  });
}

class CollisionlessExample : public ::testing::TestWithParam<const char*> {};

TEST_P(CollisionlessExample, KeepsItsEnergyOverAThousandSteps) {
  World world;
  load(world, QLatin1String(GetParam()));
  const int bodies = world.bodies->count();
  const double before = world.energy();
  takeSteps(world, 1000);
  EXPECT_EQ(world.bodies->count(), bodies);
  // Every orbit in these worlds takes at least 240 steps; a fourth-order step
  // then loses about (2 pi / 240)^4 = 5e-7 of the energy per orbit, and a
  // thousand steps hold at most five orbits.
  EXPECT_NEAR(world.energy() / before, 1.0, 5e-6);
}

INSTANTIATE_TEST_SUITE_P(Examples, CollisionlessExample,
                         ::testing::Values("inner-solar-system.ovd", "figure-eight.ovd",
                                           "binary-star-planet.ovd"),
                         [](const auto& p) { return textCaseName(p.param, p); });

// A year of the Sun, Earth and Moon: the Moon stays on its nearly circular
// orbit about the Earth, and the Earth on its circle about the Sun.
TEST(Examples, TheMoonKeepsCirclingTheEarthForAYear) {
  World world;
  load(world, QStringLiteral("sun-earth-moon.ovd"));
  const Body* sun = world.findBodyByName("Sun");
  const Body* earth = world.findBodyByName("Earth");
  const Body* moon = world.findBodyByName("Moon");
  ASSERT_TRUE(sun != nullptr && earth != nullptr && moon != nullptr);
  const double start = (moon->position - earth->position).length();
  const double orbit = (earth->position - sun->position).length();
  double nearest = start;
  double farthest = start;
  // The time unit is the day.
  const auto steps = static_cast<int>(std::lround(365.25 / world.timeStep));
  for (int i = 0; i < steps; ++i) {
    world.step();
    const double d = (moon->position - earth->position).length();
    nearest = std::min(nearest, d);
    farthest = std::max(farthest, d);
  }
  // The Sun's tide squeezes and stretches the Moon's orbit by about 3% over
  // a month (as it does the real Moon's); 5% leaves room for it and none
  // for a Moon that drifts away.
  EXPECT_GT(nearest / start, 0.95);
  EXPECT_LT(farthest / start, 1.05);
  // The Earth's orbit is circular; the Moon moves the Earth about their
  // barycentre by 4.7 units of the 149,598.
  EXPECT_NEAR((earth->position - sun->position).length() / orbit, 1.0, 1e-4);
}

}  // namespace
