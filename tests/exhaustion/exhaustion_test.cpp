// Every operation with memory running out at every single request: -1, records that can still be destroyed, no leak.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "support/twin.h"

namespace {

// What the process's heap is told to do while a call is under test.
struct Heap {
  long granted = 0;     // blocks handed out and not yet freed
  long remaining = -1;  // requests still served; -1 serves all
  bool denied = false;  // a request was refused
  bool counting = false;

  bool refuses() {
    if (remaining == 0) denied = true;
    else if (remaining > 0) --remaining;
    return denied;
  }
};
Heap heap;

template <class F> void* served(F request) {
  if (!heap.counting) return request();
  if (heap.refuses()) return nullptr;
  void* const block = request();
  heap.granted += block != nullptr;
  return block;
}

}  // namespace

// The C library's own entry points behind the public names that this program replaces.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);

void* malloc(size_t n) noexcept {
  return served([n] { return __libc_malloc(n); });
}
void* calloc(size_t n, size_t width) noexcept {
  return served([n, width] { return __libc_calloc(n, width); });
}
void* aligned_alloc(size_t alignment, size_t n) noexcept {
  return served([alignment, n] { return __libc_memalign(alignment, n); });
}
void* memalign(size_t alignment, size_t n) noexcept { return aligned_alloc(alignment, n); }
int posix_memalign(void** block, size_t alignment, size_t n) noexcept {
  *block = aligned_alloc(alignment, n);
  return *block ? 0 : 12;
}
void free(void* block) noexcept {
  if (heap.counting && block) --heap.granted;
  __libc_free(block);
}
void* realloc(void* block, size_t n) noexcept {
  if (!heap.counting) return __libc_realloc(block, n);
  if (heap.refuses()) return nullptr;
  void* const grown = __libc_realloc(block, n);
  heap.granted += !block && grown;
  return grown;
}
}

namespace sigvex_test::exhaustion_test {

// One of the calls of a row, on 12 real points, 12 complex ones and an empty record.
template <class T> struct Call {
  const char* text;
  int32_t (*run)(Record<T>* real, Record<T>* complex, Record<T>* result);
};
template <class T> using Row = std::vector<Call<T>>;

// Reads a record of two points back from a stream that was written before memory ran short.
template <class T> int32_t reads(Record<T>* v) {
  char text[] = "#DSP points = 3\n#DSP complex = 1\n1 2 3 4 5 6\n";
  FILE* const stream = fmemopen(text, std::strlen(text), "r");
  if (!stream) return -1;
  const int32_t status = TWIN_OF(f, fread)(v, stream);
  std::fclose(stream);
  return status;
}

template <class T> int32_t writes(Record<T>* v, uint32_t flags) {
  FILE* const stream = std::fopen("/dev/null", "w");
  if (!stream) return -1;
  static char buffer[4096];  // a stream that gets no buffer of its own writes all the same
  std::setvbuf(stream, buffer, _IOFBF, sizeof buffer);
  const int32_t status = TWIN_OF(f, fwrite2)(v, stream, flags);
  std::fclose(stream);
  return status;
}

// A table of three places, one row, and the spline of both.
template <class T> int32_t surface(Record<T>* real, Record<T>* result) {
  T places[] = {1, 2, 3};
  Record<T> axis = *real, row = *real;  // views
  axis.data = places;
  axis.points = row.points = 3;
  axis.allocated = row.allocated = 0;
  Record<T> one = axis;
  one.points = 1;
  return TWIN_OF(b, cspline_2d)(&axis, &axis, result, &axis, &one, &row, 0U);
}

// clang-format off
// DO runs an expression with a status, SET one without, CALL an operation.
#define DO(...) \
  Call<T>{#__VA_ARGS__, [](P real, P complex, P result) -> int32_t { \
    return std::ignore = std::tie(real, complex, result), __VA_ARGS__; }}
#define SET(...)              DO(__VA_ARGS__, 0)
#define CALL(family, op, ...) DO(TWIN_OF(family, op)(__VA_ARGS__))

template <class T> std::vector<Row<T>> rows() {
  using P = Record<T>*;
  const Call<T> view = SET(*result = *real, result->allocated = 0);
  return {
      {CALL(, append, real, complex)}, {CALL(, insert_subvec, complex, real, 0, 12, 6)},
      {CALL(i, dft, real, 0U)}, {CALL(i, dft, complex, 1U)}, {CALL(i, rdft, real)}, {CALL(i, irdft, complex, 1U)},
      {CALL(i, dct, real, 0U)}, {CALL(i, hilbert, real)}, {CALL(i, analytic, real)},
      {CALL(i, zpad, real, 16), CALL(i, fft, real, 0U)}, {CALL(i, zpad, real, 32), CALL(i, rfft, real)},
      {CALL(i, zpad, complex, 17), CALL(i, irfft, complex)}, {CALL(i, zpad, real, 16), CALL(i, bitrev, real)},
      {CALL(i, zpad, complex, 16), CALL(i, bitrev_scale, complex, T(2))}, {CALL(i, orecon, complex, 1U)},
      {view, CALL(i, zero, result)}, {view, CALL(i, shift, result, 3)}, {CALL(i, sort, complex)},
      {CALL(i, cscale, real, T(1), T(2))}, {CALL(i, timesi, real)},
      {CALL(i, shift, complex, 5), CALL(b, add, real, complex, result)}, {CALL(b, mul, real, complex, real)},
      {CALL(b, div, real, complex, result)}, {CALL(i, zpad2, complex, 20)}, {CALL(b, inter, real, complex, real)},
      {CALL(i, zinter, real, 3), CALL(u, zinter, real, result, 2)}, {CALL(, window_metric, 2U, 32, 8U, &real->delta)},
      {CALL(b, ritoc, real, real, result)}, {CALL(b, pmul, real, complex, complex)},
      {CALL(b, corr, real, complex, result, nullptr, 5)}, {CALL(bs, dot, real, complex, result)},
      {CALL(u, cscale, real, result, T(1), T(2))}, {CALL(s, median, real, result)},
      {CALL(s, samp_stddev, complex, result)}, {CALL(s, lin_regres2, nullptr, real, real)},
      {CALL(s, hist, real, real, 0.0, 1.0, 40)}, {CALL(s, peak, complex, complex, 0x100U, 0)},
      {CALL(i, window2, real, 2U, 0U, T(0))}, {CALL(i, window2, complex, 14U, 1U, T(0))},  // cosines; Kaiser
      {CALL(i, window2, real, 24U, 4U, T(0))}, {CALL(i, window_fir, real, 20U, 0U, T(0))},  // Tukey's alternative
      {CALL(, window2_enbw, &real->delta, 15U, 64, T(32))}, {CALL(d, fir, complex, complex, real, result)},
      {CALL(i, zpad, real, 50), CALL(i, zpad, complex, 50),  // taps enough for transforms
       CALL(d, fir, real, result, real, complex), CALL(d, fir, complex, result, real, complex)},
      {CALL(d, deci, complex, complex, 2, result)}, {CALL(d, sfir, complex, complex, real, result)},
      {CALL(d, sfir_deci, real, real, complex, 3, result, nullptr)}, {CALL(d, hwfilt, complex, complex, 102, 3, result)},
      {CALL(i, zpad, result, 26), CALL(c, rsmp, result, 2U), CALL(d, rsmp, complex, complex, uint8_t{1}, result, 0.5, real)},
      {CALL(d, rsmp2, real, real, uint8_t{0}, 0U, 0.5, result)},
      {SET(result->points = 5, result->complex = 1), CALL(c, cos, result, 0.1, 0.0)},
      {SET(result->points = 15, result->complex = 1), CALL(c, fir, result, 4, 0.0, 0.0)},
      {SET(real->complex = 1), CALL(c, fir2, real, 105)},
      {CALL(h, avg, complex, real, nullptr, 5U, 2, 0, T(1), T(0))},
      {CALL(h, dft, complex, complex, real, result, 2U, 0x2101U), SET(complex->points = 12),
       CALL(h, dft, complex, real, real, result, 2U, 0x6503U)},
      {CALL(s, peval, real, complex, complex)}, {CALL(s, peval, complex, real, result)}, {CALL(s, proots, real, result)},
      {CALL(i, proots, complex)}, {CALL(s, psolve, real, &real->delta, T(1))},
      {view, SET(result->points = 1), CALL(s, pcsolve, real, complex, result)}, {CALL(i, pztoc, real)},
      {CALL(, interp, nullptr, complex, real, real, 2U)}, {CALL(, cspline, nullptr, real, real, result, 2U)},
      {DO(surface<T>(real, result))}, {DO(reads<T>(result))}, {DO(writes<T>(real, 1))}, {DO(writes<T>(real, 4))}};
}
// clang-format on

template <class T> void fill(Record<T>& v, bool complex) {
  const size_t scalars = complex ? 24 : 12;
  v.delta = 1;
  v.points = 12;
  v.complex = complex;
  v.allocated = static_cast<int32_t>(scalars);
  v.data = static_cast<T*>(std::malloc(scalars * sizeof(T)));
  for (size_t k = 0; k < scalars; ++k) v.data[k] = static_cast<T>(1 + k * 5 % 7);
}

// Runs a row with `budget` requests granted. True when a request was refused.
template <class T> bool run_short(const Row<T>& row, long budget) {
  heap = {};
  heap.counting = true;
  Record<T> real{}, complex{}, result{};
  fill<T>(real, false);
  fill<T>(complex, true);
  result.delta = 1;
  heap.remaining = budget;
  const bool failed = std::any_of(row.begin(), row.end(), [&](auto& c) { return c.run(&real, &complex, &result) < 0; });
  heap.remaining = -1;
  const bool denied = std::exchange(heap.denied, false);
  const int32_t released = TWIN_OF(, free_internal)();
  for (Record<T>* v : {&real, &complex, &result}) TWIN_OF(, destroy)(v);
  heap.counting = false;
  EXPECT_EQ(failed, denied) << row.back().text << " with " << budget << " requests granted";
  EXPECT_EQ(released, 0) << row.back().text;
  EXPECT_EQ(heap.granted, 0) << row.back().text << " with " << budget << " requests granted leaks";
  return denied;
}

SUITE_OF_BOTH(Exhaustion);

TEST_BOTH(Exhaustion, EveryRequestOfEveryOperationMayFail) {
  TWIN_OF(, free_internal)();  // the first use looks for the run-time libraries, once and for good
  for (const Row<T>& row : rows<T>()) {
    long budget = 0;
    while (run_short<T>(row, budget) && budget < 100) ++budget;
    EXPECT_LT(budget, 100) << row.back().text;
  }
}

}  // namespace sigvex_test::exhaustion_test
