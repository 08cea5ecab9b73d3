/* Reads a vector file, prints what it holds and writes it as "#DSP" text: example_file IN OUT, each may be - */
#include <sigvex.h>

static int report(const dsp_vector *v) {
  dsp_vector mean, deviation;
  dsp_init(&mean);
  dsp_init(&deviation);
  int failed = dsps_mean(v, &mean) || dsps_samp_stddev(v, &deviation);
  if (!failed) {
    fprintf(stderr, "%d points, spacing %g, mean %g, deviation %g\n", v->points, v->delta, mean.data[0], deviation.data[0]);
  }
  dsp_destroy(&mean);
  dsp_destroy(&deviation);
  return failed;
}

int main(int argc, char **argv) {
  if (argc != 3) return fprintf(stderr, "usage: example_file IN OUT\n"), 2;
  FILE *in = dspf_fopen(argv[1], "rb"), *out = dspf_fopen(argv[2], "wb");
  dsp_vector v;
  dsp_init(&v);
  int failed = !in || !out || dspf_fread(&v, in) != 1 || report(&v) || dspf_fwrite_ascii(&v, out);
  if (failed) fprintf(stderr, "example_file: cannot convert %s to %s\n", argv[1], argv[2]);
  dsp_destroy(&v);
  if (in) dspf_fclose(in);
  if (out) failed |= dspf_fclose(out) != 0;
  return failed;
}
