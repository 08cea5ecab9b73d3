// The roots of a polynomial, for the operations on single roots.
#pragma once

#include <tuple>
#include <vector>

#include "polynomial/scaled.h"

namespace sigvex::polynomial {

// All roots of a polynomial of degree 1 or more without zero roots, in no order; false if the iteration does not end.
bool find_roots(const Polynomial& p, std::vector<Place>& roots);

// Makes the roots of a real polynomial real or pairs of exact conjugates.
void make_self_conjugate(std::vector<Place>& roots);

// Gives clusters that are multiple roots, as far as 106 bits can tell, one common place.
void merge_multiple_roots(Evaluator& p, std::vector<Place>& roots);

// Moves a place within reach of an m-fold root onto it. False, with the place moved all the same, if there is none.
bool multiple_root(Evaluator& p, Place& z, size_t m, double reach);

// The order in which roots are handed out.
template <class T> bool before(Point<T> a, Point<T> b) {
  return std::make_tuple(a.re, std::abs(a.im), a.im) < std::make_tuple(b.re, std::abs(b.im), b.im);
}

template <class T> bool finite(Point<T> z) { return std::isfinite(z.re) && std::isfinite(z.im); }

// Rounded once; a part that is zero within the accuracy of the iteration is zero.
Point<double> rounded(const Place& z);

}  // namespace sigvex::polynomial
