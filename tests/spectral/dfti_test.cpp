#include <sys/time.h>

#include <csignal>
#include <thread>

#include "support/fresh_process.h"
#include "support/stand_in.h"
#include "support/twin.h"

namespace sigvex_test::dfti_test {

TWINS(i, fft, rfft, dft);
TWINS(, dft_set_flags, omp_set_num_threads, free_internal, lib_init);

SUITE_OF_BOTH(Dfti);

// Rounding of sums of four or eight terms that are at most 4.
template <class T> constexpr double kTolerance = 16.0 * kEps<T>;

TEST_BOTH(Dfti, ComplexAndRealPlansAreBuiltOnceAndKept) {
  IN_FRESH_PROCESS({
    StandIn& library = use_stand_in();
    Vec<T> three{1, 2, 3}, one{5}, v{1, 2, 3, 4}, real = v;
    EXPECT_EQ(fft(three, 0U), -1);
    EXPECT_EQ(rfft(three), -1);
    EXPECT_EQ(library.created, 0);
    EXPECT_EQ(fft(one, 0U), 0);
    EXPECT_TRUE(exactly(one, {5, 0}));  // complex after the library's transform
    EXPECT_EQ(free_internal.of<T>()(), 0);
    library.created = library.computed = library.freed = 0;

    v->delta = T(0.5);
    ASSERT_EQ(fft(v, 0U), 0);
    EXPECT_TRUE(close(v, std::vector<T>{T(2.5), 0, T(-0.5), T(0.5), T(-0.5), 0, T(-0.5), T(-0.5)}, kTolerance<T>, 1));
    EXPECT_EQ(v->delta, T(0.5));
    EXPECT_EQ(library.latest.precision, (std::is_same_v<T, double> ? 36 : 35));
    EXPECT_TRUE(library.latest.domain == 32 && library.latest.dimensions == 1 && library.latest.length == 4 &&
                library.forward_scale == 0.25);
    ASSERT_EQ(fft(v, 7U), 0);
    EXPECT_TRUE(close(v, std::vector<T>{1, 0, 2, 0, 3, 0, 4, 0}, kTolerance<T>, 1));
    EXPECT_TRUE(library.computed == 1 && library.backward == 1 && library.created == 1);

    real->delta = 0;
    ASSERT_EQ(rfft(real), 0);
    EXPECT_TRUE(close(real, std::vector<T>{T(2.5), 0, T(-0.5), T(0.5), T(-0.5), 0}, kTolerance<T>, 1));
    EXPECT_TRUE(real->complex == 1 && real->allocated == 8 && real->delta == kHuge<T>);
    EXPECT_TRUE(library.latest.domain == 33 && library.created == 2 && library.freed == 0);
    EXPECT_EQ(free_internal.of<T>()(), 0);
    EXPECT_EQ(library.freed, 2);
    ASSERT_EQ(fft(v, 0U), 0);
    EXPECT_EQ(library.created, 3);
  });
}

TEST_BOTH(Dfti, PlansAreDroppedAfterEachTransformUnlessKept) {
  IN_FRESH_PROCESS({
    StandIn& library = use_stand_in();
    EXPECT_EQ(dft_set_flags.of<T>()(DSP_DFT_USE_MKL), 0);
    Vec<T> v{1, 2, 3, 4};
    for (int k = 1; k <= 3; ++k) {
      EXPECT_EQ(fft(v, 0U), 0);
      EXPECT_TRUE(library.created == k && library.freed == k) << k;
    }
    library.failing = 'f';
    EXPECT_EQ(fft(v, 0U), -1);
    EXPECT_EQ(free_internal.of<T>()(), 0);  // the cache is empty all the same
    library.failing = 0;
    EXPECT_EQ(dft_set_flags.of<T>()(0), 0);
    EXPECT_EQ(fft(v, 0U), 0);
    EXPECT_EQ(library.created, 4);  // the library's own kernels
  });
}

// The first use of all is one of these here; and a kernel of one back end never serves the other.
TEST_BOTH(Dfti, LengthsBetweenPowersComputeThroughItToo) {
  IN_FRESH_PROCESS({
    StandIn& library = use_stand_in();
    Vec<T> v{1, 2, 4};
    for (const int backwards : {0, DSP_DFT_USE_MKL | DSP_DFT_KEEP_PLANS}) {
      EXPECT_EQ(dft(v, 0U), 0);
      EXPECT_TRUE(library.created == 1 && library.latest.length == 4 && library.computed == 1) << library.computed;
      EXPECT_EQ(dft_set_flags.of<T>()(static_cast<uint32_t>(backwards)), 0);
      EXPECT_EQ(dft(v, 1U), 0);
      EXPECT_TRUE(close(v, std::vector<T>{1, 0, 2, 0, 4, 0}, kTolerance<T>, 1)) << backwards;
    }
    EXPECT_TRUE(library.computed == 2 && library.backward == 4);
    library.failing = 'x';
    EXPECT_EQ(dft(v, 0U), -1);
  });
}

TEST_BOTH(Dfti, ThreadCountGoesIntoThePlans) {
  IN_FRESH_PROCESS({
    StandIn& library = use_stand_in();
    Vec<T> v{1, 2, 3, 4};
    EXPECT_EQ(omp_set_num_threads.of<T>()(2), 0);
    EXPECT_EQ(fft(v, 0U), 0);
    EXPECT_EQ(library.latest.user_threads, 0);
    EXPECT_EQ(omp_set_num_threads.of<T>()(1), 0);
    EXPECT_EQ(library.freed, 1);
    EXPECT_EQ(fft(v, 0U), 0);
    EXPECT_EQ(library.latest.user_threads, static_cast<long>(std::thread::hardware_concurrency()));
    library.failing = 'f';
    EXPECT_EQ(omp_set_num_threads.of<T>()(2), -1);
    EXPECT_EQ(library.freed, 2);
  });
}

// A release that waits for ever is ended by the alarm; one that returns ends the process with success.
template <class T> void release_for_ever() {
  const itimerval soon{{}, {0, 300000}};
  setitimer(ITIMER_REAL, &soon, nullptr);
  free_internal.of<T>()();
}

TEST_BOTH(Dfti, AFailedBuildClosesTheTables) {
  for (const char call : {'c', 'n', 's', 'k'}) {
    EXPECT_IN_FRESH_PROCESS(::testing::KilledBySignal(SIGALRM), {
      lib_init();
      StandIn& library = use_stand_in();
      Vec<T> v{1, 2, 3, 4};
      library.failing = call;
      const int32_t refused = fft(v, 0U), again = fft(v, 0U);  // the lock is this thread's own
      if (refused == -1 && again == -1) std::thread([] { release_for_ever<T>(); }).join();
    });
  }
}

TEST_BOTH(Dfti, AFailedTransformStaysCounted) {
  EXPECT_IN_FRESH_PROCESS(::testing::KilledBySignal(SIGALRM), {
    lib_init();
    StandIn& library = use_stand_in();
    Vec<T> v{1, 2, 3, 4};
    library.failing = 'x';
    const int32_t refused = fft(v, 0U);
    library.failing = 0;
    int32_t elsewhere = -1;
    std::thread([&] { elsewhere = fft(v, 0U); }).join();  // the tables are open
    if (refused == -1 && elsewhere == 0 && library.created == 1) release_for_ever<T>();
  });
}

}  // namespace sigvex_test::dfti_test
