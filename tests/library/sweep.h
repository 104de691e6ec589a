// The library against its twins: every call, byte and field the same, on random cases in fresh worlds.
#pragma once

#include <gtest/gtest.h>

#include "tests/library/harness.h"

namespace cvt::test {

/// Tries `check` with dice of its own for every number, up to the first that fails.
template <class Check>
void Sweep(int rounds, Check check) {
  for (int i = 0; i < Rounds(rounds) && !::testing::Test::HasFatalFailure(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i) + " of seed " + std::to_string(Seed()));
    Dice dice(static_cast<std::uint32_t>(i));
    check(dice);
  }
}

inline void Compare(const Case& what, const Outcome& library, const Outcome& twin) {
  ASSERT_EQ(Difference(library, twin), "") << Describe(what);
}

}  // namespace cvt::test
