#include <gtest/gtest.h>

#include <QDir>
#include <cmath>
#include <vector>

#include "document/world_document.h"

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

TEST(Examples, ThereAreAtLeastFive) {
  EXPECT_GE(exampleFiles().size(), 5);
}

class EveryExample : public ::testing::TestWithParam<QString> {};

TEST_P(EveryExample, LoadsAndRunsAHundredStepsWithoutNaN) {
  World world;
  load(world, GetParam());
  ASSERT_GT(world.bodies->count(), 0);
  for (int i = 0; i < 100; ++i) {
    world.step();
  }
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
  for (int i = 0; i < steps; ++i) {
    world.step();
  }
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
  for (int i = 0; i < 1000; ++i) {
    world.step();
  }
  EXPECT_EQ(world.bodies->count(), bodies);
  // Every orbit in these worlds takes at least 240 steps; a fourth-order step
  // then loses about (2 pi / 240)^4 = 5e-7 of the energy per orbit, and a
  // thousand steps hold at most five orbits.
  EXPECT_NEAR(world.energy() / before, 1.0, 5e-6);
}

INSTANTIATE_TEST_SUITE_P(Examples, CollisionlessExample,
                         ::testing::Values("inner-solar-system.ovd", "figure-eight.ovd",
                                           "binary-star-planet.ovd"));

TEST(Examples, PlanetesimalsMergeIntoFewerBodies) {
  World world;
  load(world, QStringLiteral("planet-formation.ovd"));
  const int before = world.bodies->count();
  for (int i = 0; i < 2000; ++i) {
    world.step();
  }
  EXPECT_LT(world.bodies->count(), before - 5);
}

}  // namespace
