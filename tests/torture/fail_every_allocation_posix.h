// Fails the n-th allocation of an operation, for every n: that one alone, and that one with all after it.
#pragma once

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "cli/command_line.h"
#include "failing_new_posix.h"
#include "torture_world.h"

namespace quenlar {

struct Outcome {
  bool thrown;   // std::bad_alloc has come out of Act
  bool reached;  // there was an n-th allocation
  Memory kind;
};

// A Case is made anew for each n, from `first` on. Check runs once memory is there again. More than `least` allocations
// must fail, or the operation was not met.
template <typename Case>
void FailEveryAllocation(const char* what, std::uint64_t step = 1, std::uint64_t first = 1, std::uint64_t least = 20) {
  std::uint64_t faults = 0;
  for (const Memory kind : {Memory::kFailsOnce, Memory::kRunsOut}) {
    bool reached = true;
    for (std::uint64_t n = first; reached; n += step) {
      SCOPED_TRACE(std::string(what) + ", allocation " + std::to_string(n) +
                   (kind == Memory::kRunsOut ? " and all after it" : ""));
      Case test;
      bool thrown = false;
      {
        const FailingMemory failing(n, kind);
        try {
          test.Act();
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
        reached = failing.reached();
      }
      test.Check({thrown, reached, kind});
      if (testing::Test::HasFailure()) return;
      if (reached) ++faults;
    }
  }
  EXPECT_GT(faults, least);
  TellFaults(what, faults);
}

// The allocations of reading the command line. The parser's library ends the program where one of them fails, since it
// allocates in functions that it declares noexcept. Nothing has been begun by then.
inline std::uint64_t AllocationsOfParsing(std::vector<std::string> arguments) {
  std::reverse(arguments.begin(), arguments.end());  // taken from the back
  const FailingMemory counting(1'000'000'000, Memory::kFailsOnce);
  CommandLine line;
  line.root->parse(arguments);
  return counting.counted();
}

}  // namespace quenlar
