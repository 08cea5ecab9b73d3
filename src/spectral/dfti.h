// Transforms through the DFTI library, which dsp_dft_set_flags chooses where it is loaded.
#pragma once

#include "core/vector.h"

namespace sigvex {

// The whole of dspi_fft (complex) or of dspi_rfft (not complex, forward), delta included. Only while DSP_DFT_USE_MKL is
// set, because the library is loaded then.
template <class T> Status dfti_transform(Vector<T>& v, bool inverse, bool complex);

}  // namespace sigvex
