// A transform library of our own with the DFTI entry points, loaded by the settings and DFTI tests in child processes.
// It computes plain sums, records how it was called and fails on request.
#pragma once

struct StandIn {
  long created, committed, freed, computed, backward, fast_mm_disabled;
  struct {
    long precision, domain, dimensions, length, user_threads;  // 0 user threads: not set
  } latest;
  double forward_scale;
  // The call that fails next and ever after, by its name's letter: c create, n create without a handle, s set, k
  // commit, x compute, f free; 0: none.
  char failing;
};
