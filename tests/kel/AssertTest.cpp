#include "kel/Assert.h"

#include <cassert>

#include <gtest/gtest.h>

namespace {

void checkPositive(int value) { KEL_ASSERT(value > 0); }

bool initialized() { return false; }

TEST(AssertDeathTest, FrameworkAssertionAbortsWithExpressionAndFunction) {
  EXPECT_DEATH(checkPositive(-1),
               "AssertTest.cpp:[0-9]+: void .*checkPositive\\(int\\): Assertion `value > 0' failed");
  checkPositive(1);
}

TEST(AssertDeathTest, AgentAssertionsAreNeverCompiledOut) {
  EXPECT_DEATH(assert(initialized()), "Assertion `initialized\\(\\)' failed");
}

}  // namespace
