// Tests of what happens once per process, or ends it: the body runs in a new process that has not used the library.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace sigvex_test {

template <class Body> [[noreturn]] void run_and_exit(Body body) {
  dup2(STDERR_FILENO, STDOUT_FILENO);  // the parent reports what a failing child writes here
  body();
  std::fflush(nullptr);
  std::_Exit(::testing::Test::HasFailure());
}

}  // namespace sigvex_test

// The test program is started again for the body, so that nothing of this process is inherited but its environment.
#define EXPECT_IN_FRESH_PROCESS(exits, ...)                  \
  do {                                                       \
    GTEST_FLAG_SET(death_test_style, "threadsafe");          \
    const auto body = [&] __VA_ARGS__;                       \
    EXPECT_EXIT(sigvex_test::run_and_exit(body), exits, ""); \
  } while (false)
#define IN_FRESH_PROCESS(...) EXPECT_IN_FRESH_PROCESS(::testing::ExitedWithCode(0), __VA_ARGS__)
