#include <cstring>

#include "support/failing_storage.h"

namespace sigvex_test::storage_test {

TWINS(, init, destroy, alloc, realloc, copy, append);

SUITE_OF_BOTH(Storage);

TEST_BOTH(Storage, InitAndDestroyGiveTheEmptyRecord) {
  T storage[] = {1, 2};
  for (const bool destroyed : {false, true}) {
    Record<T> v;
    std::memset(&v, destroyed ? 0 : 0xA5, sizeof v);
    v.data = storage;  // a view: nothing to free
    v.points = 2;
    v.complex = 1;
    v.reserved = 9;
    EXPECT_EQ(destroyed ? destroy(&v) : init(&v), 0);
    EXPECT_TRUE(v.delta == T(1) && v.data == nullptr && v.allocated == 0 && v.points == 0 && v.complex == 0 &&
                v.reserved == 0);
  }
  EXPECT_EQ(storage[1], 2);
  EXPECT_EQ(init(static_cast<Record<T>*>(nullptr)), -1);
}

TEST_BOTH(Storage, CapacityIsExactReusedAndNeverShrinks) {
  Vec<T> v{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(v->allocated, 6);
  const T* const block = v->data;
  v->points = 3;
  v->complex = 1;
  EXPECT_EQ(alloc(v), 0);
  EXPECT_TRUE(v->data == block && exactly(v, {1, 2, 3, 4, 5, 6}));
  v->points = 4;
  EXPECT_EQ(realloc(v, 3, 1), 0);
  EXPECT_TRUE(v->allocated == 8 && v.at(2) == std::complex<T>(5, 6));
  v->points = -4;
  EXPECT_EQ(alloc(v), 0);
  EXPECT_EQ(v->allocated, 8);
}

TEST_BOTH(Storage, AViewIsLeftBehindByGrowth) {
  T storage[] = {1, 2, 3};
  for (const bool keep : {false, true}) {
    Vec<T> v = Vec<T>::over(storage, 4);
    EXPECT_EQ(keep ? realloc(v, 3, 0) : alloc(v), 0);
    EXPECT_TRUE(v->data != storage && v->allocated == 4);
    EXPECT_TRUE(!keep || (v[0] == 1 && v[1] == 2 && v[2] == 3));
  }
  EXPECT_EQ(storage[2], 3);
}

TEST_BOTH(Storage, MoreScalarsThanTheRecordCanCountAreRefused) {
  T storage[] = {1};
  Vec<T> one{2};
  for (const int call : {0, 1, 2}) {
    for (const bool owning : {false, true}) {
      Vec<T> v = owning ? Vec<T>{1} : Vec<T>::over(storage, 1);
      v->points = INT32_MAX;  // claims more than there is: refused before anything is read
      v->complex = call != 2;
      EXPECT_EQ(call == 0 ? alloc(v) : call == 1 ? realloc(v, 1, 0) : append(v, one), -1);
      EXPECT_TRUE(!v->data && !v->allocated && !v->points);
    }
  }
}

TEST_BOTH(Storage, HooksServeTheirPrecisionOnly) {
  using Hooks = FailingStorage<T>;
  {
    const Hooks installed(100);
    int32_t (*previous)(Record<T>*) = nullptr;
    TWIN_OF(, lib_free)(nullptr, &previous);
    TWIN_OF(, lib_free)(previous, nullptr);
    const Vec<std::conditional_t<std::is_same_v<T, double>, float, double>> elsewhere{1, 2};
    EXPECT_EQ(Hooks::growths, 0);
    Vec<T> v{1, 2}, tail{3};
    EXPECT_EQ(append(v, tail), 0);
    EXPECT_TRUE(exactly(v, {1, 2, 3}));
    EXPECT_TRUE(Hooks::growths == 3 && Hooks::kept == 20 && Hooks::frees == 0);
    for (int k = 0; k < 2; ++k) destroy(v);  // owns nothing the second time
    EXPECT_EQ(Hooks::frees, 1);
  }
  const Vec<T> after{1};
  EXPECT_EQ(Hooks::growths, 3);
}

TEST_BOTH(Storage, AFailingHookLeavesARecordThatCanBeUsedAgain) {
  const Vec<T> source{1, 2, 3};
  Vec<T> v, w;
  {
    const FailingStorage<T> none(0);
    EXPECT_EQ(copy(v, source), -1);
  }
  const FailingStorage<T> one(1);
  EXPECT_EQ(copy(w, source), 0);
  EXPECT_EQ(append(w, source), -1);
  for (const Vec<T>* each : {&v, &w}) EXPECT_TRUE(!(*each)->data && !(*each)->allocated && !(*each)->points);
}

}  // namespace sigvex_test::storage_test
