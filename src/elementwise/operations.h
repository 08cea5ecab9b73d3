// The elementwise and sequence operations that other files of the library build on, generic in the precision.
#pragma once

#include "core/scratch.h"

namespace sigvex::dspi {

template <class T> Status scale(Vector<T>& v, T factor);
template <class T> Status cscale(Vector<T>& v, T re, T im);
template <class T> Status recip(Vector<T>& v);
template <class T> Status exp(Vector<T>& v);
template <class T> Status log(Vector<T>& v);
template <class T> Status sqrt(Vector<T>& v);
template <class T> Status mag(Vector<T>& v);
template <class T> Status magsq(Vector<T>& v);
template <class T> Status conj(Vector<T>& v);
template <class T> Status real(Vector<T>& v);
template <class T> Status rtoc(Vector<T>& v);
template <class T> Status zero(Vector<T>& v);
template <class T> Status zpad(Vector<T>& v, int32_t n);
template <class T> Status rev(Vector<T>& v);
template <class T> Status sort(Vector<T>& v);
template <class T> Status swap_halves(Vector<T>& v);
template <class T> Status swap_halves2(Vector<T>& v);
template <class T> Status orecon(Vector<T>& v, uint32_t odd);
template <class T> Status bitrev(Vector<T>& v);
template <class T> Status bitrev_scale(Vector<T>& v, T factor);

}  // namespace sigvex::dspi

namespace sigvex::dspu {

template <class T> Status mag(const Vector<T>& source, Vector<T>& destination);
template <class T> Status magsq(const Vector<T>& source, Vector<T>& destination);

}  // namespace sigvex::dspu

namespace sigvex::dspb {

template <class T> Status add(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status sub(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status mul(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status conj_mul(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status avg_add(const Vector<T>& a, const Vector<T>& b, Vector<T>& result, T weight);
template <class T> Status max(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status min(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);

}  // namespace sigvex::dspb

namespace sigvex {

// I0(x) of the Kaiser window, by the kernel of dspi_besi0 but without its limits.
double bessel_i0(double x);

// The result preparation shared by the pointwise binary operations and the out-of-place ones: delta the mean of the
// inputs', points the first input's, form complex if either input is (or the form that is asked for); storage sized,
// its contents kept where it is shared. The result may be an input record: take its form before, its data after. Where
// it shares storage with an input without being that record, an owner of that storage keeps it.
template <class T> Status prepare_result(const Vector<T>& a, const Vector<T>& b, Vector<T>& result);
template <class T> Status prepare_result(const Vector<T>& a, const Vector<T>& b, bool complex, Vector<T>& result);

// The storage half of it: sizes the result for n points of a form.
template <class T>
Status size_result(const Vector<T>& a, const Vector<T>& b, size_t n, bool complex, Vector<T>& result);

// A result that needs more than the block it shares with an input which owns it becomes a view of that block: the next
// sizing gives it one of its own.
template <class T> void leave_to_owner(const Vector<T>& input, Vector<T>& result, size_t need);

// Whether an input must be read from a copy: sizing the result for `need` scalars could move the input's storage away,
// or the result would be written over samples that are still to be read. Storage that starts at one address is safe.
template <class T> inline bool endangered(const Vector<T>& input, const Vector<T>& result, size_t need) {
  // A result that views is not written over: it gets a block of its own. A size that is refused moves nothing.
  if (&input == &result || result.allocated <= 0 || !fits(need) || !overlap<T>(input, result)) return false;
  if (result.data != input.data) return true;
  return input.allocated <= 0 && count(result.allocated) < need;  // viewed, and about to move
}

}  // namespace sigvex
