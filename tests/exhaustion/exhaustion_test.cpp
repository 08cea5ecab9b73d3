// Every operation with memory running out at every single request: -1, records that can still be destroyed, no leak.
#include <cstdlib>
#include <cstring>

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

namespace sigvex_test {
namespace {

template <class T> struct Records {
  Record<T> real{}, complex{}, result{};  // 12 real points, 12 complex ones, an empty record
};

template <class T> struct Row {
  const char* name;
  int32_t (*call)(Records<T>&);
};

// Reads a record of two points back from a stream that was written before memory ran short.
template <class T> int32_t reads(Records<T>& r, const char* text) {
  FILE* const stream = fmemopen(const_cast<char*>(text), std::strlen(text), "r");
  if (!stream) return -1;
  const int32_t status = TWIN_OF(f, fread)(&r.result, stream);
  std::fclose(stream);
  return status;
}

template <class T> int32_t writes(Records<T>& r, uint32_t flags) {
  FILE* const stream = std::fopen("/dev/null", "w");
  if (!stream) return -1;
  static char buffer[4096];  // a stream that gets no buffer of its own writes all the same
  std::setvbuf(stream, buffer, _IOFBF, sizeof buffer);
  const int32_t status = TWIN_OF(f, fwrite2)(&r.real, stream, flags);
  std::fclose(stream);
  return status;
}

template <class T> std::vector<Row<T>> rows() {
  using R = Records<T>&;
  return {
      {"append", [](R r) { return TWIN_OF(, append)(&r.real, &r.complex); }},
      {"insert_subvec", [](R r) { return TWIN_OF(, insert_subvec)(&r.complex, &r.real, 0, 12, 6); }},
      {"dft", [](R r) { return TWIN_OF(i, dft)(&r.real, 0U); }},
      {"dft inverse", [](R r) { return TWIN_OF(i, dft)(&r.complex, 1U); }},
      {"rdft", [](R r) { return TWIN_OF(i, rdft)(&r.real); }},
      {"irdft", [](R r) { return TWIN_OF(i, irdft)(&r.complex, 1U); }},
      {"dct", [](R r) { return TWIN_OF(i, dct)(&r.real, 0U); }},
      {"hilbert", [](R r) { return TWIN_OF(i, hilbert)(&r.real); }},
      {"analytic", [](R r) { return TWIN_OF(i, analytic)(&r.real); }},
      {"fft", [](R r) { return TWIN_OF(i, zpad)(&r.real, 16) < 0 ? -1 : TWIN_OF(i, fft)(&r.real, 0U); }},
      {"rfft", [](R r) { return TWIN_OF(i, zpad)(&r.real, 32) < 0 ? -1 : TWIN_OF(i, rfft)(&r.real); }},
      {"irfft", [](R r) { return TWIN_OF(i, zpad)(&r.complex, 17) < 0 ? -1 : TWIN_OF(i, irfft)(&r.complex); }},
      {"bitrev", [](R r) { return TWIN_OF(i, zpad)(&r.real, 16) < 0 ? -1 : TWIN_OF(i, bitrev)(&r.real); }},
      {"bitrev_scale",
       [](R r) { return TWIN_OF(i, zpad)(&r.complex, 16) < 0 ? -1 : TWIN_OF(i, bitrev_scale)(&r.complex, T(2)); }},
      {"orecon", [](R r) { return TWIN_OF(i, orecon)(&r.complex, 1U); }},
      {"zero of a view", [](R r) { return r.result = r.real, r.result.allocated = 0, TWIN_OF(i, zero)(&r.result); }},
      {"shift of a view",
       [](R r) { return r.result = r.real, r.result.allocated = 0, TWIN_OF(i, shift)(&r.result, 3); }},
      {"sort", [](R r) { return TWIN_OF(i, sort)(&r.complex); }},
      {"cscale", [](R r) { return TWIN_OF(i, cscale)(&r.real, T(1), T(2)); }},
      {"timesi", [](R r) { return TWIN_OF(i, timesi)(&r.real); }},
      {"add of unequal lengths",
       [](R r) { return TWIN_OF(i, shift)(&r.complex, 5) < 0 ? -1 : TWIN_OF(b, add)(&r.real, &r.complex, &r.result); }},
      {"mul into a", [](R r) { return TWIN_OF(b, mul)(&r.real, &r.complex, &r.real); }},
      {"div", [](R r) { return TWIN_OF(b, div)(&r.real, &r.complex, &r.result); }},
      {"zpad2", [](R r) { return TWIN_OF(i, zpad2)(&r.complex, 20); }},
      {"inter into a", [](R r) { return TWIN_OF(b, inter)(&r.real, &r.complex, &r.real); }},
      {"zinter",
       [](R r) { return TWIN_OF(i, zinter)(&r.real, 3) < 0 ? -1 : TWIN_OF(u, zinter)(&r.real, &r.result, 2); }},
      {"window_metric", [](R r) { return TWIN_OF(, window_metric)(2U, 32, 8U, &r.real.delta); }},
      {"ritoc", [](R r) { return TWIN_OF(b, ritoc)(&r.real, &r.real, &r.result); }},
      {"pmul into b", [](R r) { return TWIN_OF(b, pmul)(&r.real, &r.complex, &r.complex); }},
      {"corr", [](R r) { return TWIN_OF(b, corr)(&r.real, &r.complex, &r.result, nullptr, 5); }},
      {"dot", [](R r) { return TWIN_OF(bs, dot)(&r.real, &r.complex, &r.result); }},
      {"cscale into another", [](R r) { return TWIN_OF(u, cscale)(&r.real, &r.result, T(1), T(2)); }},
      {"median", [](R r) { return TWIN_OF(s, median)(&r.real, &r.result); }},
      {"samp_stddev", [](R r) { return TWIN_OF(s, samp_stddev)(&r.complex, &r.result); }},
      {"lin_regres2", [](R r) { return TWIN_OF(s, lin_regres2)(nullptr, &r.real, &r.real); }},
      {"hist into the input", [](R r) { return TWIN_OF(s, hist)(&r.real, &r.real, 0.0, 1.0, 40); }},
      {"peak into the input", [](R r) { return TWIN_OF(s, peak)(&r.complex, &r.complex, 0x100U, 0); }},
      {"cosine window", [](R r) { return TWIN_OF(i, window2)(&r.real, 2U, 0U, T(0)); }},
      {"kaiser window", [](R r) { return TWIN_OF(i, window2)(&r.complex, 14U, 1U, T(0)); }},
      {"alternative tukey window", [](R r) { return TWIN_OF(i, window2)(&r.real, 24U, 4U, T(0)); }},
      {"window_fir", [](R r) { return TWIN_OF(i, window_fir)(&r.real, 20U, 0U, T(0)); }},
      {"window2_enbw", [](R r) { return TWIN_OF(, window2_enbw)(&r.real.delta, 15U, 64, T(32)); }},
      {"fir", [](R r) { return TWIN_OF(d, fir)(&r.complex, &r.complex, &r.real, &r.result); }},
      {"fir by transforms",
       [](R r) {
         const auto pad = TWIN_OF(i, zpad);
         const auto fir = TWIN_OF(d, fir);
         if (pad(&r.real, 50) < 0 || pad(&r.complex, 50) < 0) return -1;
         return fir(&r.real, &r.result, &r.real, &r.complex) < 0 ? -1 : fir(&r.complex, &r.result, &r.real, &r.complex);
       }},
      {"deci", [](R r) { return TWIN_OF(d, deci)(&r.complex, &r.complex, 2, &r.result); }},
      {"sfir", [](R r) { return TWIN_OF(d, sfir)(&r.complex, &r.complex, &r.real, &r.result); }},
      {"sfir_deci", [](R r) { return TWIN_OF(d, sfir_deci)(&r.real, &r.real, &r.complex, 3, &r.result, nullptr); }},
      {"hwfilt", [](R r) { return TWIN_OF(d, hwfilt)(&r.complex, &r.complex, 102, 3, &r.result); }},
      {"rsmp",
       [](R r) {
         if (TWIN_OF(i, zpad)(&r.result, 26) < 0 || TWIN_OF(c, rsmp)(&r.result, 2U) < 0) return -1;
         return TWIN_OF(d, rsmp)(&r.complex, &r.complex, uint8_t{1}, &r.result, 0.5, &r.real);
       }},
      {"rsmp2", [](R r) { return TWIN_OF(d, rsmp2)(&r.real, &r.real, uint8_t{0}, 0U, 0.5, &r.result); }},
      {"cos", [](R r) { return r.result.points = 5, r.result.complex = 1, TWIN_OF(c, cos)(&r.result, 0.1, 0.0); }},
      {"designed fir",
       [](R r) { return r.result.points = 15, r.result.complex = 1, TWIN_OF(c, fir)(&r.result, 4, 0.0, 0.0); }},
      {"fir2", [](R r) { return r.real.complex = 1, TWIN_OF(c, fir2)(&r.real, 105); }},
      {"avg", [](R r) { return TWIN_OF(h, avg)(&r.complex, &r.real, nullptr, 5U, 2, 0, T(1), T(0)); }},
      {"averaged spectrum",
       [](R r) {
         if (TWIN_OF(h, dft)(&r.complex, &r.complex, &r.real, &r.result, 2U, 0x2101U) < 0) return -1;
         return r.complex.points = 12, TWIN_OF(h, dft)(&r.complex, &r.real, &r.real, &r.result, 2U, 0x6503U);
       }},
      {"peval", [](R r) { return TWIN_OF(s, peval)(&r.real, &r.complex, &r.complex); }},
      {"peval by parts", [](R r) { return TWIN_OF(s, peval)(&r.complex, &r.real, &r.result); }},
      {"proots", [](R r) { return TWIN_OF(s, proots)(&r.real, &r.result); }},
      {"proots in place", [](R r) { return TWIN_OF(i, proots)(&r.complex); }},
      {"psolve", [](R r) { return TWIN_OF(s, psolve)(&r.real, &r.real.delta, T(1)); }},
      {"pcsolve",
       [](R r) {
         r.result = r.real;  // a view of its first point
         r.result.allocated = 0;
         r.result.points = 1;
         return TWIN_OF(s, pcsolve)(&r.real, &r.complex, &r.result);
       }},
      {"pztoc", [](R r) { return TWIN_OF(i, pztoc)(&r.real); }},
      {"interp", [](R r) { return TWIN_OF(, interp)(nullptr, &r.complex, &r.real, &r.real, 2U); }},
      {"cspline", [](R r) { return TWIN_OF(, cspline)(nullptr, &r.real, &r.real, &r.result, 2U); }},
      {"cspline_2d",
       [](R r) {
         Record<T> axis = r.real, row = r.real;  // views: 1 .. 3, and one row
         T places[] = {1, 2, 3};
         axis.data = places;
         axis.points = row.points = 3;
         axis.allocated = row.allocated = 0;
         Record<T> one = axis;
         one.points = 1;
         return TWIN_OF(b, cspline_2d)(&axis, &axis, &r.result, &axis, &one, &row, 0U);
       }},
      {"fread", [](R r) { return reads<T>(r, "#DSP points = 3\n#DSP complex = 1\n1 2 3 4 5 6\n"); }},
      {"fwrite2 text", [](R r) { return writes<T>(r, 1); }},
      {"fwrite2 trace", [](R r) { return writes<T>(r, 4); }},
  };
}

template <class T> void fill(Record<T>& v, bool complex) {
  const size_t scalars = complex ? 24 : 12;
  v.delta = 1;
  v.points = 12;
  v.complex = complex;
  v.allocated = static_cast<int32_t>(scalars);
  v.data = static_cast<T*>(std::malloc(scalars * sizeof(T)));
  for (size_t k = 0; k < scalars; ++k) v.data[k] = static_cast<T>(1 + k * 5 % 7);
}

// Runs a call with `budget` requests granted. True when a request was refused.
template <class T> bool run_short(const Row<T>& row, long budget) {
  heap = {};
  heap.counting = true;
  Records<T> r;
  fill<T>(r.real, false);
  fill<T>(r.complex, true);
  r.result.delta = 1;
  heap.remaining = budget;
  const int32_t status = row.call(r);
  heap.remaining = -1;
  const bool denied = std::exchange(heap.denied, false);
  const int32_t released = TWIN_OF(, free_internal)();
  for (Record<T>* v : {&r.real, &r.complex, &r.result}) TWIN_OF(, destroy)(v);
  heap.counting = false;
  EXPECT_EQ(status < 0, denied) << row.name << " with " << budget << " requests granted returned " << status;
  EXPECT_EQ(released, 0) << row.name;
  EXPECT_EQ(heap.granted, 0) << row.name << " with " << budget << " requests granted leaks";
  return denied;
}

template <class T> struct Exhaustion : ::testing::Test {};
TYPED_TEST_SUITE(Exhaustion, Precisions);

TYPED_TEST(Exhaustion, EveryRequestOfEveryOperationMayFail) {
  using T = TypeParam;
  TWIN_OF(, free_internal)();  // the first use looks for the run-time libraries, once and for good
  for (const Row<T>& row : rows<T>()) {
    long budget = 0;
    while (run_short<T>(row, budget) && budget < 100) ++budget;
    EXPECT_LT(budget, 100) << row.name;
  }
}

}  // namespace
}  // namespace sigvex_test
