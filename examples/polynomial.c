/* Finds the resonances of a recursive filter: the poles are the roots of its denominator, written in powers of 1/z. */
#include <math.h>
#include <sigvex.h>

int main(void) {
  double coefficients[] = {1, -3.5026, 4.9768, -3.3633, 0.9224}; /* 1 - 3.5026/z + 4.9768/z^2 - ... */
  const double rate = 1000, turn = 2 * acos(-1.0);
  dsp_vector denominator, poles;
  dsp_init(&denominator); /* a view: points that belong to the caller */
  dsp_init(&poles);
  denominator.data = coefficients;
  denominator.points = 5;

  /* Coefficient k multiplies x^k with x = 1/z, so that a root x is the pole 1/x: each pair is one resonance. */
  if (dsps_proots(&denominator, &poles)) return 1;
  for (int k = 0; k < poles.points; ++k) {
    const double re = poles.data[2 * k], im = poles.data[2 * k + 1];
    if (im > 0) printf("%8.3f Hz, damping time %.1f ms\n", atan2(im, re) / turn * rate, 1e3 / (log(hypot(re, im)) * rate));
  }

  /* The roots multiplied out are the coefficients again, divided by the last one. */
  if (dspi_pztoc(&poles) || dspi_real(&poles)) return 1;
  for (int k = 0; k < poles.points; ++k) printf("%10.4f", poles.data[k] * coefficients[4]);
  printf("\n");
  return dsp_destroy(&poles);
}
