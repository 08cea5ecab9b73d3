#include <cstdlib>
#include <cstring>

#include "support/twin.h"

namespace sigvex_test {
namespace {

TWIN(, init);
TWIN(, destroy);
TWIN(, alloc);
TWIN(, realloc);
TWIN(, copy);
TWIN(, append);
TWIN(, lib_alloc);
TWIN(, lib_free);
TWIN(, lib_realloc);

template <class T> struct Storage : ::testing::Test {};
TYPED_TEST_SUITE(Storage, Precisions);

TYPED_TEST(Storage, InitAndDestroyGiveTheEmptyRecord) {
  using T = TypeParam;
  T storage[] = {1, 2};
  for (const bool destroyed : {false, true}) {
    Record<T> v;
    std::memset(&v, destroyed ? 0 : 0xA5, sizeof v);
    v.data = storage;  // a view: nothing to free
    v.points = 2;
    v.complex = 1;
    v.reserved = 9;
    EXPECT_EQ(destroyed ? destroy(&v) : init(&v), 0);
    EXPECT_EQ(v.delta, T(1));
    EXPECT_EQ(v.data, nullptr);
    EXPECT_TRUE(v.allocated == 0 && v.points == 0 && v.complex == 0 && v.reserved == 0);
  }
  EXPECT_EQ(storage[1], 2);
  EXPECT_EQ(init(static_cast<Record<T>*>(nullptr)), -1);
}

TYPED_TEST(Storage, CapacityIsExactReusedAndNeverShrinks) {
  using T = TypeParam;
  Vec<T> v{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(v->allocated, 6);
  T* const block = v->data;
  v->points = 3;
  v->complex = 1;
  EXPECT_EQ(alloc(v.get()), 0);
  EXPECT_EQ(v->data, block);
  EXPECT_TRUE(exactly(v, {1, 2, 3, 4, 5, 6}));
  v->points = 4;
  EXPECT_EQ(realloc(v.get(), 3, 1), 0);
  EXPECT_EQ(v->allocated, 8);
  EXPECT_EQ(v.at(2), std::complex<T>(5, 6));
  v->points = -4;
  EXPECT_EQ(alloc(v.get()), 0);
  EXPECT_EQ(v->allocated, 8);
}

TYPED_TEST(Storage, AViewIsLeftBehindByGrowth) {
  using T = TypeParam;
  T storage[] = {1, 2, 3};
  for (const bool keep : {false, true}) {
    Vec<T> v;
    v->data = storage;
    v->points = 4;
    EXPECT_EQ(keep ? realloc(v.get(), 3, 0) : alloc(v.get()), 0);
    EXPECT_NE(v->data, storage);
    EXPECT_EQ(v->allocated, 4);
    EXPECT_TRUE(!keep || (v[0] == 1 && v[1] == 2 && v[2] == 3));
  }
  EXPECT_EQ(storage[2], 3);
}

TYPED_TEST(Storage, MoreScalarsThanTheRecordCanCountAreRefused) {
  using T = TypeParam;
  for (const bool owning : {false, true}) {
    for (const bool keep : {false, true}) {
      T storage[] = {1};
      Vec<T> v = owning ? Vec<T>{1} : Vec<T>{};
      if (!owning) v->data = storage;
      v->points = INT32_MAX;
      v->complex = 1;
      EXPECT_EQ(keep ? realloc(v.get(), 1, 0) : alloc(v.get()), -1);
      EXPECT_EQ(v->data, nullptr);
      EXPECT_TRUE(v->allocated == 0 && v->points == 0);
    }
  }
  T storage[] = {1};
  Vec<T> one{2}, full;
  full->data = storage;  // claims more than it views: the sum is refused before anything is read
  full->points = INT32_MAX;
  EXPECT_EQ(append(full.get(), one.get()), -1);
  EXPECT_TRUE(full->data == nullptr && full->points == 0);
}

// Hooks that count what they are asked, serve from the C heap, and fail from a given request on.
template <class T> struct Counting {
  static inline int allocs, frees, reallocs, budget;
  static inline int32_t seen_points, seen_complex;

  static size_t bytes(const Record<T>* v) { return static_cast<size_t>(v->points) * (v->complex ? 2 : 1) * sizeof(T); }
  static int32_t on_alloc(Record<T>* v) {
    ++allocs;
    if (v->allocated > 0) std::free(v->data);
    v->data = budget-- > 0 ? static_cast<T*>(std::malloc(bytes(v))) : nullptr;
    return 77;  // ignored
  }
  static int32_t on_free(Record<T>* v) {
    ++frees;
    std::free(v->data);
    return 77;
  }
  static int32_t on_realloc(Record<T>* v, int32_t points, int32_t complex) {
    ++reallocs;
    seen_points = points;
    seen_complex = complex;
    T* const block = budget-- > 0 ? static_cast<T*>(std::realloc(v->data, bytes(v))) : nullptr;
    if (!block) std::free(v->data);
    v->data = block;
    return 77;
  }
};

template <class T> struct Installed {
  explicit Installed(int budget) {
    using C = Counting<T>;
    C::allocs = C::frees = C::reallocs = 0;
    C::budget = budget;
    lib_alloc.of<T>()(C::on_alloc, nullptr);
    lib_free.of<T>()(C::on_free, nullptr);
    lib_realloc.of<T>()(C::on_realloc, nullptr);
  }
  ~Installed() {
    lib_alloc.of<T>()(nullptr, nullptr);
    lib_free.of<T>()(nullptr, nullptr);
    lib_realloc.of<T>()(nullptr, nullptr);
  }
};

TYPED_TEST(Storage, HooksServeTheirPrecisionOnly) {
  using T = TypeParam;
  using Other = std::conditional_t<std::is_same_v<T, double>, float, double>;
  using C = Counting<T>;
  {
    const Installed<T> installed(100);
    decltype(&C::on_alloc) previous = nullptr;
    lib_alloc.of<T>()(C::on_alloc, &previous);
    EXPECT_EQ(previous, &C::on_alloc);
    const Vec<Other> elsewhere{1, 2};
    EXPECT_EQ(C::allocs, 0);
    Vec<T> v{1, 2}, tail{3};
    EXPECT_EQ(C::allocs, 2);
    EXPECT_EQ(append(v.get(), tail.get()), 0);
    EXPECT_TRUE(exactly(v, {1, 2, 3}));
    EXPECT_TRUE(C::reallocs == 1 && C::seen_points == 2 && C::seen_complex == 0);
    destroy(v.get());
    EXPECT_EQ(C::frees, 1);
    destroy(v.get());  // nothing owned any more
    EXPECT_EQ(C::frees, 1);
  }
  const Vec<T> v{1};
  EXPECT_EQ(C::allocs, 2);
}

TYPED_TEST(Storage, AFailingHookLeavesARecordThatCanBeUsedAgain) {
  using T = TypeParam;
  const Vec<T> source{1, 2, 3};
  const Installed<T> installed(0);
  Vec<T> v;
  EXPECT_EQ(copy(v.get(), source.operator->()), -1);
  EXPECT_TRUE(v->data == nullptr && v->allocated == 0 && v->points == 0);
  Counting<T>::budget = 1;
  EXPECT_EQ(copy(v.get(), source.operator->()), 0);
  EXPECT_TRUE(exactly(v, source.samples()));
  EXPECT_EQ(append(v.get(), source.operator->()), -1);
  EXPECT_TRUE(v->data == nullptr && v->allocated == 0 && v->points == 0);
}

}  // namespace
}  // namespace sigvex_test
