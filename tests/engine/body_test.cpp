#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>
#include <tuple>

#include "engine/body.h"
#include "engine/names.h"
#include "test_support.h"
#include "tests/case_names.h"

namespace {

// The creation hook sees the name before the world sets the identifier; a
// copy is announced too, keeps identity and state but not the scratch fields.
TEST(Body, CopyIsAnnouncedAndKeepsIdentityAndStateButNotScratch) {
  RecordingObserver observer;
  World world;
  Body* b = addBody(world, vec(1, 2, 3), vec(4, 5, 6), 7, 8);
  ASSERT_EQ(observer.events.size(), 1u);
  const RecordingObserver::Event& e = observer.events[0];
  EXPECT_EQ(std::tuple(e.created, e.name, e.id), std::tuple(true, std::string("Body 0"), 0));
  b->acceleration = vec(9, 9, 9);
  b->force = vec(1, 1, 1);
  b->stageVelocity[2] = vec(3, 3, 3);
  b->startPosition = vec(2, 2, 2);
  b->color[1] = 0.25f;
  b->traceEnable = true;
  b->showVectors = false;
  {
    const Body copy(*b);
    EXPECT_EQ(std::tuple(std::string(copy.name), copy.id, copy.position.z, copy.velocity.y,
                         copy.force.x, copy.mass, copy.radius, copy.color[1]),
              std::tuple(std::string("Body 0"), 100, 3.0, 5.0, 1.0, 7.0, 8.0, 0.25f));
    EXPECT_TRUE(copy.traceEnable && !copy.showVectors);
    EXPECT_TRUE(copy.acceleration.isZero() && copy.stageVelocity[2].isZero() &&
                copy.startPosition.isZero());
    EXPECT_EQ(observer.count(true), 2);
  }
  ASSERT_EQ(observer.count(false), 1);
  EXPECT_EQ(observer.events.back().name, "Body 0");
}

TEST(Body, AccelerationIsForceOverMassWithTheGuard) {
  Body b(0);
  b.force = vec(2, 4, 6);
  for (const auto& [mass, x] :
       {std::pair{2.0, 1.0}, {-2.0, -1.0}, {0.0, 0.0}, {1e-12, 0.0}, {-1e-12, 0.0}}) {
    b.mass = mass;
    const Vector a = b.computeAcceleration();
    EXPECT_EQ(std::tuple(a.x, a.y, a.z), std::tuple(x, 2 * x, 3 * x)) << mass;
  }
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
}

struct NameCase {
  std::string in;
  std::size_t expectedBytes;
};

class Names : public ::testing::TestWithParam<NameCase> {};

TEST_P(Names, LongNamesAreCutWithoutSplittingACharacterAndANulEndsThem) {
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
                      NameCase{std::string("ab\0cd", 5), 2},
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
                               252}),
    caseNames({"Empty", "Earth", "Fits", "OneTooLong", "VeryLong", "EmbeddedNul",
               "CharacterAcrossTheEnd", "CharacterAtTheEnd", "FourByteCharacters"}));

}  // namespace
