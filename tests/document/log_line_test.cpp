#include <gtest/gtest.h>

#include "document/log_line.h"

namespace {

// Each call appends one line: the elapsed time, then each body's name,
// position, velocity and acceleration. Large values keep every digit.
TEST(LogLine, EachLineHasTheTimeAndTheDocumentedFieldsOfEveryBody) {
  World world;
  world.elapsedTime = 1e20;
  std::string line;
  appendLogLine(line, world);
  world.elapsedTime = 0.5;
  Body* earth = world.createBody();
  copyName(earth->name, "Earth");
  earth->position = Vector::of(1, 2, 3);
  earth->velocity = Vector::of(0, 1, 0);
  appendLogLine(line, world);
  EXPECT_EQ(line,
            "100000000000000000000.000000\n0.500000\tEarth\t1.000000\t2.000000\t3.000000\t0."
            "000000\t1.000000\t"
            "0.000000\t0.000000\t0.000000\t0.000000\n");
}

TEST(LogLine, ExactRealsReadBackToTheSameDouble) {
  World world;
  world.elapsedTime = 0.1 + 0.2;
  Body* b = world.createBody();
  b->position = Vector::of(1.0 / 3.0, -1e-300, 12345678.9);
  b->acceleration = Vector::of(-0.0, 1e300, 2.5);
  std::string line;
  appendLogLine(line, world, LogReals::Exact);
  EXPECT_EQ(line,
            "0.30000000000000004\tBody 0\t0.33333333333333331\t-1e-300\t"
            "12345678.9\t0\t0\t0\t-0\t1.0000000000000001e+300\t2.5\n");
}

}  // namespace
