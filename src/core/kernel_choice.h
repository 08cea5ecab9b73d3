// The end of a *.simd.cpp: chosen<T>(), the table of kernels for the best target of this CPU, out of those that
// kernels_double() and kernels_float() in the namespace `space` of sigvex give for each target.
#pragma once

#define SIGVEX_CHOOSE_KERNELS(space, Table, chosen)                                     \
  namespace sigvex {                                                                    \
  namespace space {                                                                     \
  HWY_EXPORT(kernels_double);                                                           \
  HWY_EXPORT(kernels_float);                                                            \
  const Table<double>& best(double) { return *HWY_DYNAMIC_DISPATCH(kernels_double)(); } \
  const Table<float>& best(float) { return *HWY_DYNAMIC_DISPATCH(kernels_float)(); }    \
  }                                                                                     \
  template <> const Table<double>& chosen<double>() { return space::best(0.0); }        \
  template <> const Table<float>& chosen<float>() { return space::best(0.0F); }         \
  }
