/* Corrects readings by a calibration curve: what a pressure sensor showed at eleven known pressures, and its inverse. */
#include <sigvex.h>

int main(void) {
  double shown[] = {0.031, 0.982, 1.954, 2.939, 3.931, 4.927, 5.926, 6.930, 7.942, 8.967, 10.011}; /* volts */
  double known[] = {0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100};                                   /* kilopascals */
  double readings[] = {0.5, 2.0, 4.321, 7.5, 10.5};
  const int count = sizeof readings / sizeof *readings;
  dsp_vector volts, pressure, input, smooth, safe;
  dsp_init(&volts); /* views: arrays that belong to the caller */
  dsp_init(&pressure);
  dsp_init(&input);
  dsp_init(&smooth);
  dsp_init(&safe);
  volts.data = shown, pressure.data = known, input.data = readings;
  volts.points = pressure.points = sizeof shown / sizeof *shown;
  input.points = count;

  /* The spline is the more accurate between smooth points, and continues beyond them; the shape-preserving cubic never
     overshoots, and holds the end values outside. */
  int failed = dsp_cspline(&volts, &pressure, &input, &smooth, DSP_SPLINE_NOT_A_KNOT) ||
               dsp_interp(&volts, &pressure, &input, &safe, DSP_INTERP_CUBIC);
  for (int k = 0; !failed && k < count; ++k) {
    printf("%7.3f V   spline %8.3f kPa   shape-preserving %8.3f kPa\n", readings[k], smooth.data[k], safe.data[k]);
  }
  dsp_destroy(&smooth);
  dsp_destroy(&safe);
  return failed;
}
