// A vector record that releases its storage, and the library's operations under one name for both precisions.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "errors.h"
#include "sigvex.h"

namespace sigvex_tool {

template <class T> struct Library;

template <> struct Library<double> {
  using Record = dsp_vector;
  static constexpr auto init = dsp_init, destroy = dsp_destroy, alloc = dsp_alloc;
  static constexpr auto window = dspi_window2;
  static constexpr auto rdft = dspi_rdft;
  static constexpr auto dft = dspi_dft;
  static constexpr auto magsq = dspi_magsq;
  static constexpr auto swap_halves = dspi_swap_halves;
  static constexpr auto avg = dsph_avg;
  static constexpr auto sub = dspb_sub;
  static constexpr auto mul = dspb_mul;
  static constexpr auto dot = dspbs_dot;
  static constexpr auto scale = dspu_scale;
  static constexpr auto cscale = dspu_cscale;
  static constexpr auto mean = dsps_mean;
  static constexpr auto fwrite2 = dspf_fwrite2;
};

template <> struct Library<float> {
  using Record = dspf_vector;
  static constexpr auto init = dspf_init, destroy = dspf_destroy, alloc = dspf_alloc;
  static constexpr auto window = dspfi_window2;
  static constexpr auto rdft = dspfi_rdft;
  static constexpr auto dft = dspfi_dft;
  static constexpr auto magsq = dspfi_magsq;
  static constexpr auto swap_halves = dspfi_swap_halves;
  static constexpr auto avg = dspfh_avg;
  static constexpr auto sub = dspfb_sub;
  static constexpr auto mul = dspfb_mul;
  static constexpr auto dot = dspfbs_dot;
  static constexpr auto scale = dspfu_scale;
  static constexpr auto cscale = dspfu_cscale;
  static constexpr auto mean = dspfs_mean;
  static constexpr auto fwrite2 = dspff_fwrite2;
};

// Throws if an operation of the library failed; the text says what was being done.
inline void check(int32_t status, const char* doing) {
  if (status < 0) throw DataError(std::string("not enough memory for ") + doing);
}

template <class T> struct Vector : Library<T>::Record {
  Vector() { Library<T>::init(this); }
  Vector(size_t count, bool pairs) : Vector() { resize(count, pairs); }
  ~Vector() { Library<T>::destroy(this); }
  Vector(const Vector&) = delete;
  Vector& operator=(const Vector&) = delete;

  void resize(size_t count, bool pairs) {
    if (count > INT32_MAX) throw DataError("a vector holds at most 2147483647 values; use a shorter range");
    this->points = static_cast<int32_t>(count);
    this->complex = pairs;
    check(Library<T>::alloc(this), "the samples");
  }
  void swap(Vector& other) {
    std::swap(static_cast<typename Library<T>::Record&>(*this), static_cast<typename Library<T>::Record&>(other));
  }
  size_t scalars() const { return static_cast<size_t>(this->points) * (this->complex ? 2 : 1); }
};

}  // namespace sigvex_tool
