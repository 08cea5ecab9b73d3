/* Built as C99 and as C++ against an installed sigvex: two calls that need the library, one per precision. */
#include <complex.h>
#include <sigvex.h>

int main(void) {
  double storage[] = {1.0, 2.0, 3.0};
  dsp_vector view, copy;
  dspf_vector single;
  int32_t order = 1;
  dsp_init(&view);
  dsp_init(&copy);
  dspf_init(&single);
  view.data = storage;
  view.points = 3;
  if (dsp_version() != 3035006 || dsp_lib_init() != 0) return 1;
  if (dsp_copy(&copy, &view) != 0 || dsp_cmp(&view, &copy, 0.0, &order) != 0 || order != 0) return 2;
  if (dspu_tof(&copy, &single) != 0 || single.points != 3 || single.data[2] != 3.0f) return 3;
  dsp_destroy(&copy);
  dspf_destroy(&single);
  return dsp_free_internal();
}
