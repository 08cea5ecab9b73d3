// Every operation with memory running out at every single request: -1, records that can still be destroyed, no leak.
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

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

TWIN(, append);
TWIN(, insert_subvec);
TWIN(, free_internal);
TWIN(, destroy);
TWIN(i, dft);
TWIN(i, rdft);
TWIN(i, irdft);
TWIN(i, fft);
TWIN(i, rfft);
TWIN(i, irfft);
TWIN(i, dct);
TWIN(i, hilbert);
TWIN(i, analytic);
TWIN(i, bitrev);
TWIN(i, bitrev_scale);
TWIN(i, orecon);
TWIN(i, zero);
TWIN(i, zpad);
TWIN(i, shift);
TWIN(i, sort);
TWIN(i, swap_halves);
TWIN(i, cscale);
TWIN(i, timesi);
TWIN(i, window2);
TWIN(i, window_fir);
TWIN(, window2_enbw);
TWIN(b, add);
TWIN(b, mul);
TWIN(b, div);
TWIN(b, ritoc);
TWIN(b, pmul);
TWIN(b, corr);
TWIN(bs, dot);
constexpr Twin cscale_to{&dspu_cscale, &dspfu_cscale};
constexpr Twin magsq_to{&dspu_magsq, &dspfu_magsq};
TWIN(s, mean);
TWIN(s, median);
TWIN(s, samp_stddev);
TWIN(s, hist);
TWIN(s, peak);
TWIN(d, fir);
TWIN(d, deci);
TWIN(d, rsmp2);
constexpr Twin kernel{&dspc_rsmp, &dspfc_rsmp};
constexpr Twin resampled{&dspd_rsmp, &dspfd_rsmp};
TWIN(c, cos);
TWIN(c, line);
constexpr Twin designed{&dspc_fir, &dspfc_fir};
TWIN(c, fir2);
TWIN(h, avg);
constexpr Twin spectrum{&dsph_dft, &dspfh_dft};
TWIN(f, fread);
TWIN(f, fwrite2);

template <class T> struct Records {
  Record<T> real{}, complex{}, result{};  // 12 real points, 12 complex ones, an empty record
};

template <class T> struct Row {
  std::string name;
  std::function<int32_t(Records<T>&)> call;
};

// Reads a record of two points back from a stream that was written before memory ran short.
template <class T> int32_t reads(Records<T>& r, const char* text) {
  FILE* const stream = fmemopen(const_cast<char*>(text), std::strlen(text), "r");
  if (!stream) return -1;
  const int32_t status = fread(&r.result, stream);
  std::fclose(stream);
  return status;
}

template <class T> int32_t writes(Records<T>& r, uint32_t flags) {
  FILE* const stream = std::fopen("/dev/null", "w");
  if (!stream) return -1;
  static char buffer[4096];  // a stream that gets no buffer of its own writes all the same
  std::setvbuf(stream, buffer, _IOFBF, sizeof buffer);
  const int32_t status = fwrite2(&r.real, stream, flags);
  std::fclose(stream);
  return status;
}

template <class T> std::vector<Row<T>> rows() {
  using R = Records<T>&;
  return {
      {"append", [](R r) { return append(&r.real, &r.complex); }},
      {"insert_subvec", [](R r) { return insert_subvec(&r.complex, &r.real, 0, 12, 6); }},
      {"dft", [](R r) { return dft(&r.real, 0U); }},
      {"dft inverse", [](R r) { return dft(&r.complex, 1U); }},
      {"rdft", [](R r) { return rdft(&r.real); }},
      {"irdft", [](R r) { return irdft(&r.complex, 1U); }},
      {"dct", [](R r) { return dct(&r.real, 0U); }},
      {"dct inverse", [](R r) { return dct(&r.real, 3U); }},
      {"hilbert", [](R r) { return hilbert(&r.real); }},
      {"analytic", [](R r) { return analytic(&r.real); }},
      {"fft", [](R r) { return zpad(&r.real, 16) < 0 ? -1 : fft(&r.real, 0U); }},
      {"rfft", [](R r) { return zpad(&r.real, 32) < 0 ? -1 : rfft(&r.real); }},
      {"irfft", [](R r) { return zpad(&r.complex, 17) < 0 ? -1 : irfft(&r.complex); }},
      {"bitrev", [](R r) { return zpad(&r.real, 16) < 0 ? -1 : bitrev(&r.real); }},
      {"bitrev_scale", [](R r) { return zpad(&r.complex, 16) < 0 ? -1 : bitrev_scale(&r.complex, T(2)); }},
      {"orecon", [](R r) { return orecon(&r.complex, 1U); }},
      {"zero of a view", [](R r) { return r.result = r.real, r.result.allocated = 0, zero(&r.result); }},
      {"shift of a view", [](R r) { return r.result = r.real, r.result.allocated = 0, shift(&r.result, 3); }},
      {"sort", [](R r) { return sort(&r.complex); }},
      {"swap_halves", [](R r) { return swap_halves(&r.real); }},
      {"cscale", [](R r) { return cscale(&r.real, T(1), T(2)); }},
      {"timesi", [](R r) { return timesi(&r.real); }},
      {"add of unequal lengths",
       [](R r) { return shift(&r.complex, 5) < 0 ? -1 : add(&r.real, &r.complex, &r.result); }},
      {"mul into a", [](R r) { return mul(&r.real, &r.complex, &r.real); }},
      {"div", [](R r) { return div(&r.real, &r.complex, &r.result); }},
      {"ritoc", [](R r) { return ritoc(&r.real, &r.real, &r.result); }},
      {"pmul into b", [](R r) { return pmul(&r.real, &r.complex, &r.complex); }},
      {"corr", [](R r) { return corr(&r.real, &r.complex, &r.result, static_cast<Record<T>*>(nullptr), 5); }},
      {"dot", [](R r) { return dot(&r.real, &r.complex, &r.result); }},
      {"cscale into another", [](R r) { return cscale_to(&r.real, &r.result, T(1), T(2)); }},
      {"magsq into another", [](R r) { return magsq_to(&r.complex, &r.result); }},
      {"mean", [](R r) { return mean(&r.complex, &r.result); }},
      {"median", [](R r) { return median(&r.real, &r.result); }},
      {"samp_stddev", [](R r) { return samp_stddev(&r.complex, &r.result); }},
      {"hist into the input", [](R r) { return hist(&r.real, &r.real, 0.0, 1.0, 40); }},
      {"peak into the input", [](R r) { return peak(&r.complex, &r.complex, 0x100U, 0); }},
      {"cosine window", [](R r) { return window2(&r.real, 2U, 0U, T(0)); }},
      {"kaiser window", [](R r) { return window2(&r.complex, 14U, 1U, T(0)); }},
      {"alternative tukey window", [](R r) { return window2(&r.real, 24U, 4U, T(0)); }},
      {"window_fir", [](R r) { return window_fir(&r.real, 20U, 0U, T(0)); }},
      {"window2_enbw",
       [](R) {
         T enbw;
         return window2_enbw(&enbw, 15U, 64, T(32));
       }},
      {"fir", [](R r) { return fir(&r.complex, &r.complex, &r.real, &r.result); }},
      {"fir by transforms",
       [](R r) {
         if (zpad(&r.real, 50) < 0 || zpad(&r.complex, 50) < 0) return -1;
         return fir(&r.real, &r.result, &r.real, &r.complex) < 0 ? -1 : fir(&r.complex, &r.result, &r.real, &r.complex);
       }},
      {"deci", [](R r) { return deci(&r.complex, &r.complex, 2, &r.result); }},
      {"rsmp",
       [](R r) {
         if (zpad(&r.result, 26) < 0 || kernel(&r.result, 2U) < 0) return -1;
         return resampled(&r.complex, &r.complex, uint8_t{1}, &r.result, 0.5, &r.real);
       }},
      {"rsmp2", [](R r) { return rsmp2(&r.real, &r.real, uint8_t{0}, 0U, 0.5, &r.result); }},
      {"cos", [](R r) { return r.result.points = 5, r.result.complex = 1, cos(&r.result, 0.1, 0.0); }},
      {"line", [](R r) { return r.result.points = 5, line(&r.result, 0.1, 0.0); }},
      {"designed fir",
       [](R r) { return r.result.points = 15, r.result.complex = 1, designed(&r.result, 4, 0.0, 0.0); }},
      {"fir2", [](R r) { return r.real.complex = 1, fir2(&r.real, 105); }},
      {"avg", [](R r) { return avg(&r.complex, &r.real, static_cast<Record<T>*>(nullptr), 5U, 2, 0, T(1), T(0)); }},
      {"averaged spectrum",
       [](R r) {
         if (spectrum(&r.complex, &r.complex, &r.real, &r.result, 2U, 0x2101U) < 0) return -1;
         return r.complex.points = 12, spectrum(&r.complex, &r.real, &r.real, &r.result, 2U, 0x6503U);
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
  const int32_t released = free_internal.of<T>()();
  for (Record<T>* v : {&r.real, &r.complex, &r.result}) destroy(v);
  heap.counting = false;
  EXPECT_EQ(status < 0, denied) << row.name << " with " << budget << " requests granted returned " << status;
  EXPECT_EQ(released, 0) << row.name;
  EXPECT_EQ(heap.granted, 0) << row.name << " with " << budget << " requests granted leaks";
  return denied;
}

template <class T> struct Exhaustion : ::testing::Test {};
TYPED_TEST_SUITE(Exhaustion, Precisions);

TYPED_TEST(Exhaustion, EveryRequestOfEveryOperationMayFail) {
  free_internal.of<TypeParam>()();  // the first use looks for the run-time libraries, once and for good
  for (const Row<TypeParam>& row : rows<TypeParam>()) {
    long budget = 0;
    while (run_short<TypeParam>(row, budget) && budget < 100) ++budget;
    EXPECT_LT(budget, 100) << row.name;
  }
}

}  // namespace
}  // namespace sigvex_test
