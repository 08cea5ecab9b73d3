/* Trigger times of a noisy tone, and its frequency from the line through them. */
#include <sigvex.h>

int main(void) {
  dsp_vector tone, noise, line;
  dsp_init(&tone);
  dsp_init(&noise);
  dsp_init(&line);
  tone.points = noise.points = 10000;
  tone.delta = noise.delta = 1e-4; /* a second at 10 kHz */
  if (dspc_cos(&tone, 50.03, 0.0) != 0) return 1;
  if (dspc_rand(&noise, DSP_RAND_GAUSS) != 0 || dspi_scale(&noise, 0.02) != 0 || dspb_add(&tone, &noise, &tone) != 0)
    return 1;

  /* Upward through 0, once a period however often the noise crosses: armed again below -0.2. */
  if (dspi_edge(&tone, 0.0, 0.2, DSP_EDGE_UP) != 0) return 1;
  if (dsps_lin_regres(NULL, &tone, &line) != 0) return 1; /* trigger k at intercept + k slope */
  printf("%d triggers, the first at %.3f ms, %.2f Hz\n", (int)tone.points, 1e3 * tone.data[0], 1 / line.data[1]);

  dsp_destroy(&tone);
  dsp_destroy(&noise);
  return dsp_destroy(&line);
}
