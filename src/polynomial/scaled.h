// A polynomial whose values neither overflow nor underflow: coefficients as fractions with exponents of their own,
// places as w * 2^exponent with |w| about 1, and values in units that keep the largest term near 1.
#pragma once

#include <cstdint>
#include <vector>

#include "polynomial/double_double.h"

namespace sigvex::polynomial {

// A place in the plane: w * 2^exponent.
struct Place {
  Point<DoubleDouble> w;
  int exponent = 0;
};
Place relative_to(Place z, int exponent);  // in units of 2^exponent, for a place that is not much farther away

class Polynomial {
 public:
  // Without the coefficients 0 at the end. False if a coefficient is not finite.
  template <class T> bool read(const Vector<T>& p);

  // Divides by the largest power of x that leaves no remainder, and says which. Nothing is left of 0.
  size_t take_off_zero_roots();

  size_t degree() const { return fractions_.empty() ? 0 : fractions_.size() - 1; }
  bool real() const { return real_; }
  // The same place with |w| in 1/2 .. 2, and 0 in units in which the constant coefficient still counts.
  Place normalized(Place z) const;
  double log2_coefficient(size_t k) const;  // of its magnitude; -infinity for 0

 private:
  friend class Evaluator;
  std::vector<Point<double>> fractions_;
  std::vector<int> exponents_;
  bool real_ = true;
};

// What an iteration needs to know at a place, in the units of w.
template <class R> struct Value {
  Point<R> numerator, denominator;  // of p / p'
  double noise;                     // what rounding may have put into the numerator
  double log2_size;                 // of |p| itself, comparable from place to place
};

class Evaluator {
 public:
  explicit Evaluator(const Polynomial& p) : p_(p), scaled_(p.degree() + 1), sizes_(p.degree() + 1) {}

  const Polynomial& polynomial() const { return p_; }

  template <class R> Value<R> at(const Place& z);

  // Coefficients 0 .. count - 1 of the polynomial in (x - z), and bounds of their noise. |w| is best at most 1.
  struct Taylor {
    std::vector<Point<DoubleDouble>> terms;
    std::vector<double> noise;
  };
  Taylor taylor(const Place& z, size_t count);

 private:
  void scale_to(int exponent);

  const Polynomial& p_;
  std::vector<Point<double>> scaled_;  // the coefficients of w^k for exponent_, times 2^-unit_
  std::vector<double> sizes_;
  bool ready_ = false;
  int exponent_ = 0;
  int64_t unit_ = 0;
};

}  // namespace sigvex::polynomial
