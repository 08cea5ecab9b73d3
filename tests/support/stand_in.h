// Opens the stand-in transform library for the library under test and for the test itself.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "support/transform_stand_in.h"

namespace sigvex_test {

// Names the stand-in as the transform library and gives its record of calls. Before the first use of sigvex.
inline StandIn& use_stand_in() {
  setenv("SIGVEX_MKL_LIBRARY", SIGVEX_STAND_IN, 1);
  void* const library = dlopen(SIGVEX_STAND_IN, RTLD_NOW);
  EXPECT_NE(library, nullptr) << dlerror();
  return *static_cast<StandIn*>(dlsym(library, "transform_stand_in"));
}

}  // namespace sigvex_test
