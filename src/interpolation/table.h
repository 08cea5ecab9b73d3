// Tables of a function: increasing abscissae, the search for a place among them, the cubic between two of them. All is
// computed in double, whatever the precision of the records.
#pragma once

#include <algorithm>
#include <cmath>

#include "core/vector.h"

namespace sigvex::interpolation {

// The abscissae of a table, or 0, step, 2 step ... where it has none.
template <class T> class Abscissae {
 public:
  Abscissae(const Vector<T>* x, double step, size_t n) : x_(x ? x->data : nullptr), step_(n > 1 ? step : 0), size_(n) {
    usable_ = x ? !x->complex && points<T>(*x) == n : true;
    if (n > 0) usable_ = usable_ && std::isfinite((*this)[0]);
    for (size_t k = 0; usable_ && k + 1 < n; ++k) usable_ = width(k) > 0 && std::isfinite(width(k));
  }

  bool usable() const { return usable_; }  // as many as there are values, finite, strictly increasing
  size_t size() const { return size_; }
  double operator[](size_t k) const { return x_ ? double(x_[k]) : static_cast<double>(k) * step_; }
  double width(size_t k) const { return (*this)[k + 1] - (*this)[k]; }
  bool contains(double at) const { return size_ > 0 && at >= (*this)[0] && at <= (*this)[size_ - 1]; }

  // The interval k that holds a place, x[k] <= at < x[k + 1]; the outermost one for what lies outside. The search goes
  // out from the interval found last in doubling steps: rising places take constant time each.
  size_t locate(double at, size_t last) const {
    if (size_ < 3 || !(at >= (*this)[1])) return 0;
    if (at >= (*this)[size_ - 2]) return size_ - 2;
    if (!x_) return evenly_spaced(at);
    size_t low = last, high = last, step = 1;
    if (at >= (*this)[last]) {
      for (high = last + step; high < size_ && at >= (*this)[high]; high += step) low = high, step *= 2;
      high = std::min(high, size_ - 1);
    } else {
      for (low = last - step; at < (*this)[low]; low -= std::min(low, step)) high = low, step *= 2;
    }
    while (high - low > 1) {
      const size_t middle = low + (high - low) / 2;
      (at >= (*this)[middle] ? low : high) = middle;
    }
    return low;
  }

 private:
  // The quotient may be off by its rounding.
  size_t evenly_spaced(double at) const {
    size_t k = static_cast<size_t>(at / step_);
    while (at < (*this)[k]) --k;
    while (at >= (*this)[k + 1]) ++k;
    return k;
  }

  const T* x_;
  double step_;
  size_t size_;
  bool usable_;
};

// A table with its values: samples, or the two parts of points.
template <class T> struct Table {
  Abscissae<T> x;
  const T* y;
  size_t width;

  Table(const Vector<T>* abscissae, const Vector<T>& values)
      : x(abscissae, values.delta, points<T>(values)), y(values.data), width(values.complex ? 2 : 1) {}
  double value(size_t k, size_t part) const { return y[k * width + part]; }
};

// One end of an interval.
struct End {
  double x, y, slope;
};

// The cubic with given values and slopes at both ends of an interval, written about the nearer end: exact in both. Ends
// in one place make a constant.
class Cubic {
 public:
  Cubic() = default;
  Cubic(const End& left, const End& right) : left_(left), right_(right) {
    const double h = right.x - left.x;
    if (h == 0) return;
    const double chord = (right.y - left.y) / h;
    left_bend_ = (3 * chord - 2 * left.slope - right.slope) / h;
    right_bend_ = (left.slope + 2 * right.slope - 3 * chord) / h;
    twist_ = (left.slope - 2 * chord + right.slope) / h / h;
  }

  double operator()(double at) const {
    const double s = at - left_.x, t = at - right_.x;
    return s <= -t ? about(left_, left_bend_, s) : about(right_, right_bend_, t);
  }

 private:
  double about(const End& end, double bend, double s) const {
    if (s == 0 || (left_.x == right_.x && s == s)) return end.y;
    return end.y + s * (end.slope + s * (bend + s * twist_));
  }

  End left_{}, right_{};
  double left_bend_ = 0, right_bend_ = 0, twist_ = 0;
};

// out = the piece of the interval that holds it, at every place of xi. make(k, part) builds the piece of interval k; it
// is called once for places that follow each other in one interval.
template <class T, class Make> void evaluate(const Table<T>& table, const Vector<T>& xi, T* out, Make make) {
  decltype(make(size_t{0}, size_t{0})) pieces[2]{};
  size_t last = 0;
  bool made = false;
  for (size_t k = 0, n = points<T>(xi); k < n; ++k) {
    const double at = xi.data[k];
    const size_t interval = table.x.locate(at, last);
    for (size_t part = 0; part < table.width; ++part) {
      if (!made || interval != last) pieces[part] = make(interval, part);
      out[k * table.width + part] = static_cast<T>(pieces[part](at));
    }
    last = interval;
    made = true;
  }
}

// What every operation on a table refuses: no usable table, no real places, and, if `strict`, places outside.
template <class T> bool refused(const Abscissae<T>& x, const Vector<T>& xi, bool strict) {
  const size_t n = points<T>(xi);
  if (!x.usable() || xi.complex || (x.size() == 0 && n > 0)) return true;
  return strict && !std::all_of(xi.data, xi.data + n, [&](T at) { return x.contains(at); });
}

}  // namespace sigvex::interpolation
