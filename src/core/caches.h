// What dsp_free_internal releases. Each cache lives in the file that uses it, which also defines its release.
#pragma once

#include "core/vector.h"

namespace sigvex {

template <class T> Status release_fir();
template <class T> Status release_bitrev();
template <class T> Status release_dct();
template <class T> Status release_dft();
template <class T> Status release_plans();
template <class T> Status release_twiddles();
template <class T> Status release_windows();

}  // namespace sigvex
