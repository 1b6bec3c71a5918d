// Runs the tests of one folder.
#include <gmock/gmock.h>

#include "platform/end_on_crash.h"

int main(int argc, char** argv) {
  quenlar::EndOnCrash();
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
