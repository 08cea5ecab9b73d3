// The settings of the transform engine in one precision, and the start-up that its first use runs.
#pragma once

#include <cstdint>

#include "core/vector.h"

namespace sigvex {

// Looks for the transform library once, at the first of these calls. A caller that comes while another thread is still
// looking goes on at once, with the library's own kernels.
template <class T> void first_use();

// The flags word after the first-use step: bits DSP_DFT_...
template <class T> uint32_t dft_flags();

}  // namespace sigvex

namespace sigvex::dsp {

template <class T> Status omp_get_max_threads(int32_t* count);

}  // namespace sigvex::dsp
