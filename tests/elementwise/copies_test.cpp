#include "elementwise/inplace.h"

namespace sigvex_test::copies_test {

// An operation beside its form in place, which has tests of its values.
template <class T> struct Copy {
  const char* name;
  std::function<int32_t(const Record<T>*, Record<T>*)> operation;
  InPlace<T> in_place;
};
template <class T> std::vector<Copy<T>> copies() {
  return {{"scale", WITH(u, scale, T(-2.5)), WITH(i, scale, T(-2.5))},
          {"cscale", WITH(u, cscale, 2, -3), WITH(i, cscale, 2, -3)},
          {"zinter", WITH(u, zinter, 3), WITH(i, zinter, 3)},
          {TWIN_ROW(u, sqrt), TWIN_OF(i, sqrt)},
          {TWIN_ROW(u, mag), TWIN_OF(i, mag)},
          {TWIN_ROW(u, magsq), TWIN_OF(i, magsq)}};
}

SUITE_OF_BOTH(Copies);

// Into other records, the same one, and one over the same block, some scalars apart: either may lie in front and own
// the block, which may have room for the result or not.
TEST_BOTH(Copies, GetTheInPlaceResultWhereverTheResultLies) {
  std::vector<T> x = {-4, 9, T(-0.0), 0, kInf<T>, 1, 2 * kHuge<T>, kNaN<T>, -kHuge<T>};  // what the guards are for
  while (x.size() < 66) x.push_back(T(0.7) * static_cast<T>(x.size()) - T(9));
  for (const Copy<T>& copy : copies<T>()) {
    for (size_t bits = 0; bits < 68; ++bits) {
      const bool complex = bits & 1;
      SCOPED_TRACE(copy.name + std::to_string(bits / 2) + (complex ? " complex" : " real"));
      Vec<T> source({x.begin(), x.begin() + (complex ? bits / 2 * 2 : bits / 2)}, complex);
      source->delta = T(0.3);
      const Vec<T> original = source;
      Vec<T> expected = source, fresh, used = Vec<T>::pairs({{1, 2}, {3, 4}});
      EXPECT_EQ(copy.in_place(expected), 0);
      source->complex *= 5;  // any value but 0 means complex; what a destination gets is 1
      EXPECT_EQ(copy.operation(source, fresh) + copy.operation(source, used), 0);
      source->complex = complex;
      Vec<T> view = source.view();
      EXPECT_EQ(copy.operation(view, view), 0);  // which gets a block of its own
      EXPECT_TRUE(same(fresh, expected) && same(used, expected) && same(view, expected) && same(source, original));
      EXPECT_EQ(copy.operation(source, source), 0);
      EXPECT_TRUE(same(source, expected));
      for (const size_t apart : {0, 1, 2, 5, 64, 65, 66, 69}) {  // and with room from 64 on
        for (const bool destination_in_front : {false, true}) {
          SCOPED_TRACE(std::to_string(apart) + (destination_in_front ? " behind" : " ahead"));
          Vec<T> front(std::vector<T>(apart % 64 + (apart < 64 ? original.size() : 80)));
          Vec<T> behind = Vec<T>::over(front->data + apart % 64, 0);
          Vec<T>&from = destination_in_front ? behind : front, &to = destination_in_front ? front : behind;
          std::copy_n(original->data, original.size(), from->data);
          from->points = original->points;
          from->complex = original->complex;
          from->delta = original->delta;
          const T* const block = to->data;
          EXPECT_EQ(copy.operation(from, to), 0);
          EXPECT_TRUE(same(to, expected));
          if (apart % 64 != 0 || to->data == block) continue;
          EXPECT_TRUE(same(from, original));
          from->allocated = 1;  // now the only record that knows the block
        }
      }
    }
  }
}

}  // namespace sigvex_test::copies_test
