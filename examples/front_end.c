/* A tone behind an instrument's decimating front end, as measured there and corrected for it: example_front_end */
#include <sigvex.h>

/* Height of the strongest line of a spectrum with the bins of a real signal. */
static double height(const dsp_vector *spectrum, dsp_vector *peak) {
  dsps_peak(spectrum, peak, 0, 0);
  return peak->data[0];
}

int main(void) {
  const double rate = 51200, tone = 2860; /* Hz; three octaves down the rate is 6400 Hz */
  dsp_vector block, low, all, state, peak;
  dsp_init(&block), dsp_init(&low), dsp_init(&all), dsp_init(&state), dsp_init(&peak);

  block.points = 1000; /* the blocks of an acquisition; their length is of no account */
  block.delta = 1 / rate;
  for (int32_t k = 0; k < 40; ++k) {
    dspc_cos(&block, tone, 2 * 3.14159265358979 * tone * block.points / rate * k);
    dspd_hwfilt(&block, &low, DSP_FIR_SET_121, 3, &state);
    all.delta = low.delta;
    dsp_append(&all, &low);
  }
  dspi_shift(&all, all.points - 4096); /* without the front end's start from silence */

  dspi_window(&all, DSP_WINDOW_FLATTOP, 0);
  dspi_rdft(&all);
  dspi_mag(&all);
  dspi_scale(&all, 2);
  printf("%.0f Hz of height 1: %.4f measured", tone, height(&all, &peak));
  dspi_hwfilt(&all, DSP_FIR_SET_121, 3, rate, 1);
  printf(", %.4f corrected\n", height(&all, &peak));

  dsp_destroy(&block), dsp_destroy(&low), dsp_destroy(&all), dsp_destroy(&state), dsp_destroy(&peak);
  return 0;
}
