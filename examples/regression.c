/* Calibration line of a sensor: gain and zero with their 95 % bounds, and how far a reading lies off the line. */
#include <sigvex.h>

int main(void) {
  double celsius[] = {0.0, 20.0, 40.0, 60.0, 80.0, 100.0};
  double ohm[] = {100.02, 107.77, 115.55, 123.22, 130.91, 138.48};
  dsp_vector x, y, line;
  dsp_init(&x);
  dsp_init(&y);
  dsp_init(&line);
  x.data = celsius; /* views: the arrays stay ours */
  y.data = ohm;
  x.points = y.points = 6;
  if (dsps_lin_regres2(&x, &y, &line) != 0) return 1;

  const double* value = line.data;
  printf("zero  %9.4f ohm      (%.4f to %.4f)\n", value[0], value[15], value[16]);
  printf("gain  %9.4f ohm/K    (%.4f to %.4f)\n", value[1], value[17], value[18]);
  printf("off the line by %.4f ohm, r^2 = %.6f\n", value[6], value[5]);
  return dsp_destroy(&line);
}
