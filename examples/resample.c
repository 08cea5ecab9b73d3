/* Reads 48000 samples a second as text from stdin, writes 44100: example_resample < IN > OUT */
#include <sigvex.h>

#include <math.h>

enum { kBlock = 4096, kTail = 1000 };

int main(void) {
  const double ratio = 48000.0 / 44100; /* input rate over output rate */
  static double samples[kBlock + kTail];
  dsp_vector in = {1.0 / 48000, samples, 0, 0, 0, 0}, out;
  dsp_rsmp_coef kernel;
  dsp_rsmp_state state;
  double delay = 0;
  dsp_init(&out);
  dsph_rsmp_coef_init(&kernel);
  dsph_rsmp_state_init(&state);
  /* 120 dB, flat up to 0.45 of the lower rate; the delay is taken out. */
  int failed = dsph_rsmp_coef_setup(&kernel, DSP_RSMP_KAISER, 120, 0.05, ratio, 0) ||
               dsph_rsmp_get_delay_pts(&kernel, &delay) || dsph_rsmp_state_set_offset(&state, delay);
  for (int more = 1; more && !failed;) {
    for (in.points = 0; in.points < kBlock && (more = scanf("%lf", &samples[in.points]) == 1);) ++in.points;
    if (!more) in.points += (int32_t)ceil(delay); /* zeros push out what is still on its way */
    failed = dsph_rsmp(&in, &out, &kernel, ratio, &state);
    for (int32_t k = 0; k < out.points && !failed; ++k) printf("%.9g\n", out.data[k]);
    for (int32_t k = 0; k < kBlock; ++k) samples[k] = 0;
  }
  dsph_rsmp_coef_destroy(&kernel);
  dsph_rsmp_state_destroy(&state);
  dsp_destroy(&out);
  return failed != 0;
}
