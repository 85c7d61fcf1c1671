#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "engine/body.h"
#include "engine/names.h"
#include "test_support.h"

namespace {

TEST(Body, FirstBodyAfterAResetHasTheDefaults) {
  World world;
  Body* b = world.createBody();
  EXPECT_STREQ(b->name, "Body 0");
  EXPECT_EQ(b->id, 100);
  EXPECT_EQ(b->color[0], 0.5f);
  EXPECT_EQ(b->color[1], 0.5f);
  EXPECT_EQ(b->color[2], 0.5f);
  EXPECT_EQ(b->radius, 1.0);
  EXPECT_EQ(b->mass, 1.0);
  EXPECT_FALSE(b->traceEnable);
  EXPECT_TRUE(b->showVectors);
  EXPECT_TRUE(b->active);
}

TEST(Body, CreationHookSeesTheNameBeforeTheWorldSetsTheIdentifier) {
  RecordingObserver observer;
  World world;
  world.createBody();
  ASSERT_EQ(observer.events.size(), 1u);
  EXPECT_TRUE(observer.events[0].created);
  EXPECT_EQ(observer.events[0].name, "Body 0");
  EXPECT_EQ(observer.events[0].id, 0);
}

TEST(Body, CopyKeepsIdentityAndStateButNotScratch) {
  RecordingObserver observer;
  World world;
  Body* b = addBody(world, vec(1, 2, 3), vec(4, 5, 6), 7, 8);
  b->acceleration = vec(9, 9, 9);
  b->force = vec(1, 1, 1);
  b->stageVelocity[2] = vec(3, 3, 3);
  b->startPosition = vec(2, 2, 2);
  b->color[1] = 0.25f;
  b->traceEnable = true;
  b->showVectors = false;

  {
    Body copy(*b);
    EXPECT_STREQ(copy.name, "Body 0");
    EXPECT_EQ(copy.id, 100);
    EXPECT_EQ(copy.position.z, 3);
    EXPECT_EQ(copy.velocity.y, 5);
    EXPECT_EQ(copy.force.x, 1);
    EXPECT_EQ(copy.mass, 7);
    EXPECT_EQ(copy.radius, 8);
    EXPECT_EQ(copy.color[1], 0.25f);
    EXPECT_TRUE(copy.traceEnable);
    EXPECT_FALSE(copy.showVectors);
    EXPECT_TRUE(copy.acceleration.isZero());
    EXPECT_TRUE(copy.stageVelocity[2].isZero());
    EXPECT_TRUE(copy.startPosition.isZero());
    // Two creations with one title so far: the original and the copy.
    EXPECT_EQ(observer.count(true), 2);
  }
  ASSERT_EQ(observer.count(false), 1);
  EXPECT_EQ(observer.events.back().name, "Body 0");
}

TEST(Body, AccelerationIsForceOverMassWithTheGuard) {
  Body b(0);
  b.force = vec(2, 4, 6);
  b.mass = 2;
  const Vector a = b.computeAcceleration();
  EXPECT_EQ(a.x, 1);
  EXPECT_EQ(a.y, 2);
  EXPECT_EQ(a.z, 3);
  for (double m : {0.0, 1e-12, -1e-12}) {
    b.mass = m;
    EXPECT_TRUE(b.computeAcceleration().isZero()) << m;
  }
  b.mass = -2;
  EXPECT_EQ(b.computeAcceleration().x, -1);
}

TEST(Body, EngineRunsWithNoObserver) {
  setBodyObserver(nullptr);
  World world;
  addBody(world, vec(0, 0, 0));
  addBody(world, vec(1.5, 0, 0));
  world.step();
  EXPECT_EQ(world.bodies->count(), 1);
}

// A world built and stepped on another thread (a look ahead) must not reach
// the observer, which the application's menus answer on their own thread.
TEST(Body, AnotherThreadsBodiesReachNoObserver) {
  RecordingObserver observer;
  std::thread([] {
    World world;
    addBody(world, vec(0, 0, 0));
    addBody(world, vec(1.5, 0, 0));
    world.adaptive = true;
    world.step();
  }).join();
  EXPECT_TRUE(observer.events.empty());
  World here;
  here.createBody();
  EXPECT_EQ(observer.count(true), 1);
}

struct NameCase {
  std::string in;
  std::size_t expectedBytes;
};

class Names : public ::testing::TestWithParam<NameCase> {};

TEST_P(Names, LongNamesAreCutWithoutSplittingACharacter) {
  char buffer[kNameSize];
  std::memset(buffer, 'x', sizeof buffer);
  copyName(buffer, GetParam().in);
  EXPECT_EQ(std::strlen(buffer), GetParam().expectedBytes);
  EXPECT_EQ(std::string(buffer), GetParam().in.substr(0, GetParam().expectedBytes));
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, Names,
    ::testing::Values(NameCase{"", 0}, NameCase{"Earth", 5}, NameCase{std::string(254, 'a'), 254},
                      NameCase{std::string(255, 'a'), 254}, NameCase{std::string(10000, 'a'), 254},
                      // 253 ASCII bytes then a two-byte character: it would end at
                      // byte 255, so it is dropped whole.
                      NameCase{std::string(253, 'a') + "\xC3\xA9", 253},
                      NameCase{std::string(252, 'a') + "\xC3\xA9", 254},
                      // Four-byte characters (U+1F30D) from byte 0: 63 fit in 252 bytes.
                      NameCase{[] {
                                 std::string s;
                                 for (int i = 0; i < 70; ++i)
                                   s += "\xF0\x9F\x8C\x8D";
                                 return s;
                               }(),
                               252}));

TEST(Names, AnEmbeddedNulEndsTheName) {
  char buffer[kNameSize];
  copyName(buffer, std::string("ab\0cd", 5));
  EXPECT_STREQ(buffer, "ab");
}

}  // namespace
