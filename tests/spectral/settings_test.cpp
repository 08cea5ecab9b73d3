#include <sys/resource.h>

#include <filesystem>
#include <string>

#include "support/fresh_process.h"
#include "support/stand_in.h"
#include "support/twin.h"

namespace sigvex_test::settings_test {

TWINS(, dft_get_flags, dft_set_flags, omp_get_max_threads, omp_set_num_threads, kmp_get_blocktime, kmp_set_blocktime,
      free_internal);

// What a getter writes; no record chooses its precision.
template <class T, class Word> Word got(const auto& getter) {
  Word word = 99;
  EXPECT_EQ(getter.template of<T>()(&word), 0);
  return word;
}
template <class T> uint32_t flags() { return got<T, uint32_t>(dft_get_flags); }
template <class T> int32_t max_threads() { return got<T, int32_t>(omp_get_max_threads); }
template <class T> int32_t blocktime() { return got<T, int32_t>(kmp_get_blocktime); }
std::string variable(const char* name) {
  const char* const value = getenv(name);
  return value ? value : "(unset)";
}

template <class T> struct Settings : ::testing::Test {
  void SetUp() override {
    for (const char* name : {"SIGVEX_MKL_LIBRARY", "SIGVEX_OMP_LIBRARY", "KMP_BLOCKTIME", "MKL_DISABLE_FAST_MM"})
      unsetenv(name);
    if (dlopen("libmkl_rt.so.2", RTLD_NOW) || dlopen("libmkl_rt.so", RTLD_NOW)) GTEST_SKIP() << "needs none installed";
  }
};
TYPED_TEST_SUITE(Settings, Precisions);

TEST_BOTH(Settings, FlagsAndVariables) {
  IN_FRESH_PROCESS({  // without a transform library its bits stay clear
    EXPECT_EQ(omp_get_max_threads.of<T>()(nullptr) | kmp_get_blocktime.of<T>()(nullptr), 0);
    EXPECT_EQ(variable("KMP_BLOCKTIME"), "(unset)");  // a null pointer is not even a first use
    EXPECT_EQ(dft_get_flags.of<T>()(nullptr), 0);
    EXPECT_EQ(variable("KMP_BLOCKTIME"), "0");
    EXPECT_EQ(variable("MKL_DISABLE_FAST_MM"), "YES");
    EXPECT_TRUE(max_threads<T>() == 0 && blocktime<T>() == 0);
    EXPECT_EQ(omp_set_num_threads.of<T>()(3) | kmp_set_blocktime.of<T>()(3), 0);
    EXPECT_EQ(free_internal.of<T>()(), 0);
    EXPECT_EQ(dft_set_flags.of<T>()(0x7000), 0);
    EXPECT_EQ(flags<T>(), 0U);
    EXPECT_EQ(dft_set_flags.of<T>()(0x8000f123U), 0);
    EXPECT_EQ(flags<T>(), 0x80008123U);
  });
  IN_FRESH_PROCESS({  // a variable that is set keeps its value
    StandIn& library = use_stand_in();
    setenv("KMP_BLOCKTIME", "", 1);
    setenv("MKL_DISABLE_FAST_MM", "a value longer than twenty characters", 1);
    EXPECT_EQ(flags<T>(), 0x7000U);
    EXPECT_EQ(variable("KMP_BLOCKTIME"), "");
    EXPECT_EQ(variable("MKL_DISABLE_FAST_MM"), "a value longer than twenty characters");
    EXPECT_EQ(library.fast_mm_disabled, 0);
  });
  using Other = std::conditional_t<std::is_same_v<T, double>, float, double>;
  IN_FRESH_PROCESS({  // with both libraries, the bit that says available cannot be cleared
    StandIn& library = use_stand_in();
    EXPECT_EQ(dft_set_flags.of<T>()(0x2005), 0);  // a first use, too
    EXPECT_EQ(flags<T>(), 0x3005U);
    EXPECT_EQ(library.fast_mm_disabled, 1);
    EXPECT_EQ(dft_set_flags.of<T>()(0), 0);
    EXPECT_EQ(flags<T>(), 0x1000U);
    EXPECT_EQ(flags<Other>(), 0x7000U);  // starts on its own, with the variables set
    EXPECT_EQ(library.fast_mm_disabled, 1);
  });
}

TEST_BOTH(Settings, ReachTheOpenMpRuntime) {
  IN_FRESH_PROCESS({
    use_stand_in();
    EXPECT_EQ(blocktime<T>(), 0);
    EXPECT_EQ(kmp_set_blocktime.of<T>()(200), 0);
    EXPECT_EQ(blocktime<T>(), 200);
    EXPECT_EQ(omp_set_num_threads.of<T>()(3), 0);
    EXPECT_EQ(max_threads<T>(), 3);
  });
  IN_FRESH_PROCESS({  // a bit of the host's own opens the way without a transform library
    EXPECT_EQ(dft_set_flags.of<T>()(8) | omp_set_num_threads.of<T>()(3), 0);
    EXPECT_EQ(max_threads<T>(), 3);
    EXPECT_EQ(flags<T>(), 8U);
  });
  IN_FRESH_PROCESS({  // but does nothing where no file opens, so that no runtime loads
    const rlimit none{0, 0};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    EXPECT_EQ(dft_set_flags.of<T>()(8) | omp_set_num_threads.of<T>()(3) | kmp_set_blocktime.of<T>()(3), 0);
    EXPECT_TRUE(max_threads<T>() == 0 && blocktime<T>() == 0);
  });
}

TEST_BOTH(Settings, FilesWithoutTheEntryPointsArePassedOver) {
  IN_FRESH_PROCESS({
    use_stand_in();
    setenv("SIGVEX_OMP_LIBRARY", SIGVEX_STAND_IN, 1);
    EXPECT_EQ(flags<T>(), 0x7000U);  // with the runtime next in line
    EXPECT_GE(max_threads<T>(), 1);
  });
  IN_FRESH_PROCESS({  // a runtime that is loaded is preferred to a second copy
    use_stand_in();
    void* const runtime = dlopen("libomp.so.5", RTLD_NOW);
    ASSERT_NE(runtime, nullptr);
    Dl_info origin;
    ASSERT_NE(dladdr(dlsym(runtime, "kmp_set_defaults"), &origin), 0);
    const std::string copy = ::testing::TempDir() + "sigvex_copied_runtime.so";
    std::filesystem::copy_file(origin.dli_fname, copy, std::filesystem::copy_options::overwrite_existing);
    setenv("SIGVEX_OMP_LIBRARY", copy.c_str(), 1);
    EXPECT_EQ(flags<T>(), 0x7000U);
    EXPECT_EQ(dlopen(copy.c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr);
    std::filesystem::remove(copy);
  });
  for (const char* file : {"libm.so.6", "/nowhere/library.so", ""}) {
    setenv("SIGVEX_MKL_LIBRARY", file, 1);
    IN_FRESH_PROCESS({ EXPECT_EQ(flags<T>(), 0U); });
  }
}

}  // namespace sigvex_test::settings_test
