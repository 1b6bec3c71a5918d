// A crash has to fail the test program in which it happens, at once and without a dialog.
#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

#include "platform/end_on_crash.h"

namespace quenlar {
namespace {

volatile int* volatile nowhere = nullptr;

TEST(EndOnCrash, AnInvalidAccessEndsWithTheCrashStatus) {
  EXPECT_EXIT(*nowhere = 1, testing::ExitedWithCode(kCrashStatus), "");
}

TEST(EndOnCrash, AnAbortEndsWithTheCrashStatus) {
  EXPECT_EXIT(std::abort(), testing::ExitedWithCode(kCrashStatus), "");
}

TEST(EndOnCrash, AnExceptionThatNobodyCatchesEndsWithTheCrashStatus) {
  EXPECT_EXIT(std::terminate(), testing::ExitedWithCode(kCrashStatus), "");
}

}  // namespace
}  // namespace quenlar
