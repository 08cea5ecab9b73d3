/* Finds the strongest line of a vector file above 50 Hz: example_spectrum examples/data/ecg.dsp */
#include <math.h>
#include <sigvex.h>

int main(int argc, char **argv) {
  dsp_vector v, peak;
  dsp_init(&v);
  dsp_init(&peak);
  FILE *file = argc == 2 ? dspf_fopen(argv[1], "rb") : NULL;
  if (!file || dspf_fread(&v, file) != 1) return 1;

  dspi_window(&v, DSP_WINDOW_HANN, 0); /* unity mean: a line keeps its height */
  dspi_rdft(&v);                       /* any length; delta is now the bin spacing in Hz */
  int32_t first = (int32_t)(50.0 / v.delta);
  dspi_shift(&v, first);
  dsps_peak(&v, &peak, 0x100, 0); /* the largest squared magnitude, refined between the bins */
  printf("%.3f Hz, amplitude %.4f\n", (first + peak.data[1]) * v.delta, 2 * sqrt(peak.data[0]));

  dsp_destroy(&v);
  dsp_destroy(&peak);
  return dspf_fclose(file);
}
