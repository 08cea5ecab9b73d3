/*
 * sigvex - signal processing for measurement software.
 *
 * Conventions
 *   Precision    Every operation exists twice: on dsp_vector (double) and, with the letter f after "dsp", on dspf_vector
 *                (float). Both do the same; parameters and results of the twin are float unless its prototype says otherwise.
 *   Record       The caller owns every record. dsp_init makes one, operations size and fill it, dsp_destroy releases it.
 *                `allocated` > 0 means that the record owns `data`; otherwise a non-null `data` is a view of storage that
 *                belongs to somebody else: it is read and written in place, never freed, and left behind when it is too
 *                small. Capacity only grows. A negative point count counts as none.
 *   Form         `complex` = 0: `points` real samples. Otherwise `points` interleaved pairs (real part, imaginary part).
 *   Status       0 success, -1 failure, unless said otherwise. A failure leaves every record in a state that dsp_destroy
 *                can release. A null record is refused with -1. Nothing is ever printed.
 *   Storage      Where an operation sizes a record, exhausted memory and a size beyond 2^31 - 1 scalars are the same
 *                failure: the record is left with no storage, `allocated` 0 and `points` 0.
 *   Unbounded    1e100 (float: 999999986991104, the float nearest 1e15) stands for an infinite or unbounded result;
 *                "huge" below means this number, "tiny" the smallest normal number of the precision.
 *   Threads      Records are not locked. After dsp_lib_init any number of threads may call the library on distinct records.
 *
 * Names: dsp, f for single precision, a family letter, _ and the operation.
 *   (none) core, frame, settings    i  in place           u  one vector into another    b, bs  two vectors in
 *   c  fill a vector                s  statistics         d, h  blocks with carried state        f  vector files
 *
 * Labels in the contracts: real / complex (what happens to a sample), params, sizes (of the output), keeps, delta,
 * alias (whether records may be the same), state, returns, fails (each cause of -1 and what is left untouched).
 */
#ifndef SIGVEX_H
#define SIGVEX_H

#include <stdint.h>
#include <stdio.h>

/* <complex.h> makes `complex` a keyword of C; here it is the name of a field. */
#pragma push_macro("complex")
#undef complex

#ifdef __cplusplus
extern "C" {
#endif

#if defined(_WIN32)
#define DSP_API
#else
#define DSP_API __attribute__((visibility("default")))
#endif

/** A sampled signal in double precision. Zero-filled or passed to dsp_init before its first use. */
typedef struct dsp_vector {
  double delta;      /**< spacing of the samples in time or frequency; 1.0 after dsp_init */
  double *data;      /**< the samples */
  int32_t allocated; /**< capacity of data in scalars, not points; 0: data is not owned */
  int32_t points;    /**< number of points */
  int32_t complex;   /**< 0 real, otherwise complex; operations that set it write 1 */
  uint64_t reserved; /**< zeroed by dsp_init and dsp_destroy, otherwise neither read nor written */
} dsp_vector;

/** A sampled signal in single precision; the fields as in dsp_vector. */
typedef struct dspf_vector {
  float delta;
  float *data;
  int32_t allocated;
  int32_t points;
  int32_t complex;
  uint64_t reserved;
} dspf_vector;

#pragma pop_macro("complex")

/* ------------------------------------------------------------------------------------------------------------------
 * Record and storage
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Makes an empty record: delta 1.0, everything else 0 or null. Frees nothing: a record that owns storage would leak it.
 *   returns  0
 */
DSP_API int32_t dsp_init (dsp_vector  *v);
DSP_API int32_t dspf_init(dspf_vector *v);

/**
 * Releases the storage the record owns (through the free hook if there is one) and makes the record empty as dsp_init
 * does. A view is only forgotten. May be called any number of times.
 *   returns  0
 */
DSP_API int32_t dsp_destroy (dsp_vector  *v);
DSP_API int32_t dspf_destroy(dspf_vector *v);

/**
 * Makes data large enough for the present points and complex; when it grows, the contents are dropped.
 *   sizes    exactly the scalars needed; a capacity that suffices is kept, contents included
 *   alias    a view that is too small is replaced by a fresh block and left as it was
 *   fails    storage: the record then has no data, allocated 0 and points 0
 */
DSP_API int32_t dsp_alloc (dsp_vector  *v);
DSP_API int32_t dspf_alloc(dspf_vector *v);

/**
 * Makes data large enough for the present points and complex, keeping the first samples: as many scalars as the old
 * point count and form held, or as the new ones need if that is less. Samples beyond those are indeterminate.
 *   alias    a view that is too small is copied into a fresh block and left as it was
 *   fails    storage: as dsp_alloc
 */
DSP_API int32_t dsp_realloc (dsp_vector  *v, int32_t old_points, int32_t old_complex);
DSP_API int32_t dspf_realloc(dspf_vector *v, int32_t old_points, int32_t old_complex);

/**
 * Storage hooks, each with the record; what they return is ignored. Hooks are plain globals of each precision, to be
 * set before other threads use the library. In the hooks points and complex have their new values, allocated its old.
 *   alloc    must leave in data a block for the record's points and form, or null, and dispose of an owned old block
 *   free     must release data; called only for records that own it
 *   realloc  must leave in data a block for the record's points and form that holds the previous contents, or null; of
 *            a view it finds null there, and the samples viewed are copied into the block afterwards
 */
typedef int32_t (*dsp_alloc_hook)(dsp_vector *v);
typedef int32_t (*dsp_free_hook)(dsp_vector *v);
typedef int32_t (*dsp_realloc_hook)(dsp_vector *v, int32_t old_points, int32_t old_complex);
typedef int32_t (*dspf_alloc_hook)(dspf_vector *v);
typedef int32_t (*dspf_free_hook)(dspf_vector *v);
typedef int32_t (*dspf_realloc_hook)(dspf_vector *v, int32_t old_points, int32_t old_complex);

/**
 * Install a storage hook for the records of one precision; null restores the C heap.
 *   params   previous: receives the hook installed so far, may be null
 *   returns  0
 */
DSP_API int32_t dsp_lib_alloc (dsp_alloc_hook  hook, dsp_alloc_hook  *previous);
DSP_API int32_t dspf_lib_alloc(dspf_alloc_hook hook, dspf_alloc_hook *previous);
DSP_API int32_t dsp_lib_free (dsp_free_hook  hook, dsp_free_hook  *previous);
DSP_API int32_t dspf_lib_free(dspf_free_hook hook, dspf_free_hook *previous);
DSP_API int32_t dsp_lib_realloc (dsp_realloc_hook  hook, dsp_realloc_hook  *previous);
DSP_API int32_t dspf_lib_realloc(dspf_realloc_hook hook, dspf_realloc_hook *previous);

/* ------------------------------------------------------------------------------------------------------------------
 * Whole vectors: append, copy, cut, compare
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Appends the source's points. A complex source makes a real destination complex first (imaginary parts 0.0); real
 * points enter a complex destination as (x, 0.0).
 *   keeps    the destination's delta; the source's is ignored
 *   alias    appending a vector to itself doubles it; source and destination may share storage
 *   fails    storage
 */
DSP_API int32_t dsp_append (dsp_vector  *destination, const dsp_vector  *source);
DSP_API int32_t dspf_append(dspf_vector *destination, const dspf_vector *source);

/**
 * Copies the whole source: delta, form, points and samples. Mind the order: the destination comes first.
 *   fails    storage
 */
DSP_API int32_t dsp_copy (dsp_vector  *destination, const dsp_vector  *source);
DSP_API int32_t dspf_copy(dspf_vector *destination, const dspf_vector *source);

/** dsp_copy of the first `count` points, or of all of them if there are fewer; a negative count copies none. */
DSP_API int32_t dsp_copy_at_most (dsp_vector  *destination, const dsp_vector  *source, int32_t count);
DSP_API int32_t dspf_copy_at_most(dspf_vector *destination, const dspf_vector *source, int32_t count);

/**
 * Copies points start .. start + count - 1 of the source, cut to those it has, with its delta and form.
 *   alias    source and destination may be one record or share storage
 *   fails    storage
 */
DSP_API int32_t dspu_subvec (const dsp_vector  *source, dsp_vector  *destination, int32_t start, int32_t count);
DSP_API int32_t dspfu_subvec(const dspf_vector *source, dspf_vector *destination, int32_t start, int32_t count);

/**
 * Writes source points start .. start + count - 1, cut to those it has, over the destination's points from `position`
 * on (cut to the destination's length), growing it as needed; points behind them stay, nothing is shifted. A complex
 * source makes a real destination complex; real points enter a complex one as (x, 0.0).
 *   delta    becomes the source's
 *   alias    source and destination may be one record or share storage
 *   fails    storage
 */
DSP_API int32_t dsp_insert_subvec (const dsp_vector  *source, dsp_vector  *destination, int32_t start, int32_t count,
                                   int32_t position);
DSP_API int32_t dspf_insert_subvec(const dspf_vector *source, dspf_vector *destination, int32_t start, int32_t count,
                                   int32_t position);

/**
 * Three-way comparison, decided by the first difference a - b beyond the tolerance: delta first, then point by point
 * the real and the imaginary part, a real vector's imaginary parts counting as 0.0.
 *   params   tolerance: largest difference that counts as equal
 *            result: receives 1 (a greater), -1 (a less, or the difference is NaN) or 0
 *   fails    unequal point counts (result untouched)
 */
DSP_API int32_t dsp_cmp (const dsp_vector  *a, const dsp_vector  *b, double tolerance, int32_t *result);
DSP_API int32_t dspf_cmp(const dspf_vector *a, const dspf_vector *b, float  tolerance, int32_t *result);

/**
 * Converts to single precision, each sample and delta rounded to nearest. The twin has nothing to convert and copies.
 *   alias    the twin's records may share storage, as for dsp_copy
 *   fails    source and destination are one record (untouched); storage
 */
DSP_API int32_t dspu_tof (const dsp_vector  *source, dspf_vector *destination);
DSP_API int32_t dspfu_tof(const dspf_vector *source, dspf_vector *destination);

/* ------------------------------------------------------------------------------------------------------------------
 * Library frame
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Creates the library's two locks; further calls only count. Without it the library runs unlocked, which is right for
 * single-threaded use only. One function under both names.
 *   returns  0
 */
DSP_API int32_t dsp_lib_init (void);
DSP_API int32_t dspf_lib_init(void);

/** The version as one integer, 3035006 for 3.35.6. One function under both names. */
DSP_API int32_t dsp_version (void);
DSP_API int32_t dspf_version(void);

/**
 * Releases every cache of this precision: permutation and twiddle tables, transform workspaces and plans, windows. May
 * be called at any time; it waits for running transforms, and every cache is rebuilt on its next use.
 *   fails    a plan that cannot be released; the caches after it are then kept
 */
DSP_API int32_t dsp_free_internal (void);
DSP_API int32_t dspf_free_internal(void);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, in place: arithmetic
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * For all operations in place, here and in the next sections: delta is never touched; points and form are kept unless
 * the contract says otherwise. An empty vector is no failure, and where the form changes, that of an empty vector does;
 * what refuses complex vectors refuses empty ones too. A view is written where it lies; only where it has to grow (real
 * made complex) it gets storage of its own and leaves the viewed samples as they were. "real" and "complex" say what
 * becomes of a sample x and of a point (re, im). Out of range means beyond +-huge, or NaN.
 */

/**
 * Absolute value: clears the sign bit, so that -0.0 becomes 0.0 and a NaN keeps its other bits.
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_abs (dsp_vector  *v);
DSP_API int32_t dspfi_abs(dspf_vector *v);

/** Changes the sign of every sample, of both parts of a point: plain arithmetic without guards. */
DSP_API int32_t dspi_neg (dsp_vector  *v);
DSP_API int32_t dspfi_neg(dspf_vector *v);

/** Multiplies every sample, both parts of a point, by a factor: plain arithmetic without guards. */
DSP_API int32_t dspi_scale (dsp_vector  *v, double factor);
DSP_API int32_t dspfi_scale(dspf_vector *v, float  factor);

/** Adds an offset to every sample, in a complex vector to the real parts only: plain arithmetic without guards. */
DSP_API int32_t dspi_offset (dsp_vector  *v, double offset);
DSP_API int32_t dspfi_offset(dspf_vector *v, float  offset);

/**
 * Multiplies by the complex constant re + j im; a real vector becomes complex.
 *   real     (x re, x im)
 *   complex  (a re - b im, b re + a im) for the point (a, b): plain arithmetic without guards
 *   sizes    a real vector grows to twice the scalars, its form is then complex, also when it is empty
 *   fails    storage (no data, allocated 0, points 0)
 */
DSP_API int32_t dspi_cscale (dsp_vector  *v, double re, double im);
DSP_API int32_t dspfi_cscale(dspf_vector *v, float  re, float  im);

/**
 * Multiplies by j; a real vector becomes complex.
 *   real     (0.0, x)
 *   complex  (-im, re)
 *   sizes    as dspi_cscale
 *   fails    storage (no data, allocated 0, points 0)
 */
DSP_API int32_t dspi_timesi (dsp_vector  *v);
DSP_API int32_t dspfi_timesi(dspf_vector *v);

/**
 * Clips every sample, both parts of a point alike, to lo = min(a, b) .. hi = max(a, b). NaN counts as below, becomes lo.
 *   params   ignored: any value
 *            a, b: the bounds, in either order; infinite bounds are allowed
 *            clipped: receives 1 if at least one sample was changed, else 0; may be null
 *   fails    a bound is NaN (vector and clipped untouched)
 */
DSP_API int32_t dspi_limit (dsp_vector  *v, int32_t ignored, double a, double b, int32_t *clipped);
DSP_API int32_t dspfi_limit(dspf_vector *v, int32_t ignored, float  a, float  b, int32_t *clipped);

/**
 * Reciprocal.
 *   real     1 / x; 0.0, -0.0 and NaN stay what they are
 *   complex  (re k, -im k) with k = 1 / (re^2 + im^2); k = huge where that sum is 0, 1 / huge where a part is out of
 *            range
 */
DSP_API int32_t dspi_recip (dsp_vector  *v);
DSP_API int32_t dspfi_recip(dspf_vector *v);

/**
 * Square: plain arithmetic without guards (dspi_magsq is the one that is capped).
 *   real     x^2
 *   complex  (re^2 - im^2, 2 re im)
 */
DSP_API int32_t dspi_square (dsp_vector  *v);
DSP_API int32_t dspfi_square(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, in place: exponentials, logarithms, roots
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Exponential. At most 1 ulp off; the largest error found is 0.77.
 *   real     e^x; huge where x exceeds ln huge = 230.25850929940458 (float: 34.538776); NaN stays NaN
 *   complex  magnitude as the real result for re, times (cos im, sin im)
 */
DSP_API int32_t dspi_exp (dsp_vector  *v);
DSP_API int32_t dspfi_exp(dspf_vector *v);

/**
 * Power of ten, as e^(x ln 10): the roundings of the product and of ln 10 cost up to |x ln 10| epsilon beside those of
 * the exponential.
 *   real     10^x; huge where x exceeds log10 huge = 100 (float: 15) and where x is out of range, below as well as NaN
 *   complex  magnitude as the real result for re, times (cos a, sin a) with a = im ln 10
 */
DSP_API int32_t dspi_exp10 (dsp_vector  *v);
DSP_API int32_t dspfi_exp10(dspf_vector *v);

/**
 * Natural logarithm, of samples at most 1 ulp off; the largest error found is 0.70. There is no complex result for a
 * negative sample.
 *   real     ln x; ln tiny = -708.3964185322641 (float: -87.33654) where x is below tiny, zero, negative or NaN
 *   complex  (0.5 ln m, atan2(im, re)) with m = re^2 + im^2, the angle in radians, -pi .. pi; (ln tiny, 0.0) where m is
 *            below tiny. Where a part is out of range, m is huge itself, and in the angle the part counts as +-huge,
 *            NaN as -huge.
 */
DSP_API int32_t dspi_log (dsp_vector  *v);
DSP_API int32_t dspfi_log(dspf_vector *v);

/**
 * Logarithm to base ten: exactly dspi_db with factor 1. Of samples at most 1 ulp off; the largest error found is 0.91.
 *   real     log10 x, or its floor log10 tiny = -307.6526555685888 (float: -37.92978)
 */
DSP_API int32_t dspi_log10 (dsp_vector  *v);
DSP_API int32_t dspfi_log10(dspf_vector *v);

/**
 * Level: the logarithm to base ten times a factor, 10 for power, 20 for amplitude. No absolute value is taken.
 *   real     factor log10 x; factor times log10 tiny = -307.6526555685888 (float: -37.92978) where x is below tiny,
 *            zero, negative or NaN
 *   complex  (factor 0.5 log10 m, factor 0.4342944819032518 atan2(im, re)) with m = re^2 + im^2, the complex logarithm
 *            to base ten times the factor; (factor log10 tiny, 0.0) where m is below tiny. Parts out of range count as
 *            +-huge throughout, NaN as -huge.
 */
DSP_API int32_t dspi_db (dsp_vector  *v, double factor);
DSP_API int32_t dspfi_db(dspf_vector *v, float  factor);

/**
 * Square root, for a point the principal one: its real part is not negative.
 *   real     sqrt x, correctly rounded; 0.0 where x is negative or NaN; -0.0 stays
 *   complex  (r cos(t/2), r sin(t/2)) with r = sqrt(sqrt(re^2 + im^2)) and t = atan2(im, re); r = sqrt(huge) where a
 *            part is out of range (a NaN part makes t and the result NaN); (0.0, 0.0) where r is 0
 */
DSP_API int32_t dspi_sqrt (dsp_vector  *v);
DSP_API int32_t dspfi_sqrt(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, in place: trigonometric and hyperbolic
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Arc cosine and arc sine, in radians; 0.0 where |x| exceeds 1; NaN stays NaN. At most 1 ulp off; the largest errors
 * found are 0.72 (acos) and 0.75 (asin).
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_acos (dsp_vector  *v);
DSP_API int32_t dspfi_acos(dspf_vector *v);
DSP_API int32_t dspi_asin (dsp_vector  *v);
DSP_API int32_t dspfi_asin(dspf_vector *v);

/**
 * The function of that name, angles in radians, without guards: cosh and sinh overflow to infinity, an infinite angle
 * gives NaN. At most 1 ulp off, for arguments of any size; the largest errors found are 0.51 (atan), 0.66 (cosh), 0.79
 * (sinh), 0.83 (sin, cos, tanh) and 0.97 (tan).
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_atan (dsp_vector  *v);
DSP_API int32_t dspfi_atan(dspf_vector *v);
DSP_API int32_t dspi_cos (dsp_vector  *v);
DSP_API int32_t dspfi_cos(dspf_vector *v);
DSP_API int32_t dspi_sin (dsp_vector  *v);
DSP_API int32_t dspfi_sin(dspf_vector *v);
DSP_API int32_t dspi_tan (dsp_vector  *v);
DSP_API int32_t dspfi_tan(dspf_vector *v);
DSP_API int32_t dspi_cosh (dsp_vector  *v);
DSP_API int32_t dspfi_cosh(dspf_vector *v);
DSP_API int32_t dspi_sinh (dsp_vector  *v);
DSP_API int32_t dspfi_sinh(dspf_vector *v);
DSP_API int32_t dspi_tanh (dsp_vector  *v);
DSP_API int32_t dspfi_tanh(dspf_vector *v);

/**
 * sin(x) / x, without a factor of pi; 1.0 for 0.0 and -0.0. The sine and the quotient round once each: the largest error
 * found is 1.54 ulp.
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_sinc (dsp_vector  *v);
DSP_API int32_t dspfi_sinc(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, in place: Bessel functions and the functions not provided
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Modified Bessel function of the first kind, order 0: the I0 of the Kaiser window. To |x| = 20 the power series in
 * (x/2)^2, beyond it the asymptotic series. Relative error below 8 epsilon; single precision is computed in double and
 * rounded once.
 *   real     I0(x); huge where |x| exceeds ln huge = 230.25850929940458 (float: 34.538776) or x is NaN
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_besi0 (dsp_vector  *v);
DSP_API int32_t dspfi_besi0(dspf_vector *v);

/**
 * Bessel functions of the first (J) and second (Y) kind, orders 0 and 1. Y of 0 is -infinity; Y of negative x and what
 * the functions give for infinities and NaN is the C library's. Largest error found: 2.2 units in the last place of the
 * amplitude sqrt(J^2 + Y^2) with which they swing, for J of |x| below 2 of the result itself, and less near the zeros.
 * Single precision is computed in double and rounded once: 0.51 units of the result.
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_besj0 (dsp_vector  *v);
DSP_API int32_t dspfi_besj0(dspf_vector *v);
DSP_API int32_t dspi_besj1 (dsp_vector  *v);
DSP_API int32_t dspfi_besj1(dspf_vector *v);
DSP_API int32_t dspi_besy0 (dsp_vector  *v);
DSP_API int32_t dspfi_besy0(dspf_vector *v);
DSP_API int32_t dspi_besy1 (dsp_vector  *v);
DSP_API int32_t dspfi_besy1(dspf_vector *v);

/**
 * Not provided: the names are reserved. They refuse every vector, touch nothing and accept a null record. One function
 * under all eight names.
 *   returns  -1
 */
DSP_API int32_t dspi_erf (dsp_vector  *v);
DSP_API int32_t dspfi_erf(dspf_vector *v);
DSP_API int32_t dspi_erfc (dsp_vector  *v);
DSP_API int32_t dspfi_erfc(dspf_vector *v);
DSP_API int32_t dspi_gamma (dsp_vector  *v);
DSP_API int32_t dspfi_gamma(dspf_vector *v);
DSP_API int32_t dspi_lgamma (dsp_vector  *v);
DSP_API int32_t dspfi_lgamma(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, in place: real, complex and polar form
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Makes a real vector complex, with imaginary parts 0.0, also when it is empty. A complex one stays as it is.
 *   sizes    a real vector grows to twice the scalars
 *   fails    storage (no data, allocated 0, points 0)
 */
DSP_API int32_t dspi_rtoc (dsp_vector  *v);
DSP_API int32_t dspfi_rtoc(dspf_vector *v);

/** Keeps the real parts: a complex vector becomes real. A real one stays as it is. */
DSP_API int32_t dspi_real (dsp_vector  *v);
DSP_API int32_t dspfi_real(dspf_vector *v);

/**
 * Keeps the imaginary parts: a complex vector becomes real.
 *   real     every sample becomes 0.0
 */
DSP_API int32_t dspi_imag (dsp_vector  *v);
DSP_API int32_t dspfi_imag(dspf_vector *v);

/** Complex conjugate: changes the sign of the imaginary parts. A real vector stays as it is. */
DSP_API int32_t dspi_conj (dsp_vector  *v);
DSP_API int32_t dspfi_conj(dspf_vector *v);

/**
 * Magnitude; a complex vector becomes real. Nothing is capped.
 *   real     |x| by clearing the sign bit, as dspi_abs
 *   complex  sqrt(re^2 + im^2) without overflow or underflow on the way, at most 1 ulp off (largest error found: 0.57);
 *            infinity where a part is infinite
 */
DSP_API int32_t dspi_mag (dsp_vector  *v);
DSP_API int32_t dspfi_mag(dspf_vector *v);

/**
 * Squared magnitude; a complex vector becomes real.
 *   real     x^2, huge where x is out of range
 *   complex  re^2 + im^2, huge where a part is out of range
 */
DSP_API int32_t dspi_magsq (dsp_vector  *v);
DSP_API int32_t dspfi_magsq(dspf_vector *v);

/**
 * Phase in radians; a complex vector becomes real.
 *   real     pi where x is negative, else 0.0, for NaN too
 *   complex  atan2(im, re), -pi .. pi, at most 1 ulp off (largest error found: 0.52); 0.0 where both parts are zero,
 *            whatever their signs
 */
DSP_API int32_t dspi_phase (dsp_vector  *v);
DSP_API int32_t dspfi_phase(dspf_vector *v);

/**
 * Rectangular to polar form: (re, im) becomes (magnitude, phase in radians). A real vector stays as it is.
 *   complex  magnitude as dspi_mag, phase as dspi_phase; parts out of range count as +-huge, NaN as -huge
 */
DSP_API int32_t dspi_rtop (dsp_vector  *v);
DSP_API int32_t dspfi_rtop(dspf_vector *v);

/**
 * Polar to rectangular form: the point (magnitude, phase) becomes (magnitude cos phase, magnitude sin phase), without
 * guards. A real vector stays as it is.
 */
DSP_API int32_t dspi_ptor (dsp_vector  *v);
DSP_API int32_t dspfi_ptor(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Two vectors in, one out
 *
 * Common to the pointwise operations (add sub mul conj_mul div avg_add max min):
 *   sizes    the points of the inputs; complex if either input is, a real sample then counting as (x, 0)
 *   delta    the mean of the inputs' deltas
 *   alias    the result may be a, b or both, or another record over storage of theirs. Such another record that has to
 *            grow gets a block of its own; the shared block is left as it was to a (the host's to release, if a only
 *            viewed it), or to b where b owns it.
 *   fails    unequal point counts (everything untouched); storage (the result is then empty, or as it was where a copy of
 *            an input that shares its storage failed)
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * a + b. The shorter input counts as extended by zeros; the result has the longer length.
 *   alias    as above, but to a shorter input a shared block is left only if that owns it
 *   fails    storage only
 */
DSP_API int32_t dspb_add (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_add(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * a - b. The shorter input counts as extended by zeros; the result has the longer length.
 *   alias    as above, but to a shorter input a shared block is left only if that owns it
 *   fails    storage only
 */
DSP_API int32_t dspb_sub (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_sub(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/** a * b. */
DSP_API int32_t dspb_mul (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_mul(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/** a * conj(b); for a real b the same as dspb_mul. */
DSP_API int32_t dspb_conj_mul (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_conj_mul(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * a / b. A zero divisor never fails:
 *   real     a / b; b = 0 gives huge (positive whatever the signs), 0 / 0 gives 0
 *   complex  real b: a * (1 / b); b = 0 gives (huge, huge), or (0, 0) where a is zero too.
 *            complex b, with m = |b|^2: a * conj(b) * (1 / m); where m is zero, which a b below the square root of tiny
 *            reaches by underflow, or NaN: (huge, huge), or (0, 0) where a and b are both zero
 */
DSP_API int32_t dspb_div (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_div(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * (a - b) * weight + b: one step of an exponential average, a being the new data and b the running mean.
 *   complex  a real: ((a - re b) * weight + re b, (1 - weight) * im b); b real: ((re a - b) * weight + b, im a * weight)
 *   params   weight: 0 keeps b, 1 takes a; not restricted
 */
DSP_API int32_t dspb_avg_add (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result, double weight);
DSP_API int32_t dspfb_avg_add(const dspf_vector *a, const dspf_vector *b, dspf_vector *result, float  weight);

/**
 * The larger of a and b at each point, the second input's where they are equal.
 *   real     where either is NaN, the second input's value
 *   complex  the point of the larger squared magnitude, taken whole; a point with a part beyond +-huge, or NaN, counts as
 *            having the squared magnitude huge
 */
DSP_API int32_t dspb_max (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_max(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/** The smaller of a and b at each point; otherwise as dspb_max, ties and NaN taking the second input included. */
DSP_API int32_t dspb_min (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_min(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * Joins real parts a and imaginary parts b to a complex vector: point k is (a[k], b[k]).
 *   sizes    the points of the inputs, complex
 *   delta    half of a's
 *   alias    the result may be an input or share storage with one; another record over an input's block that has to
 *            grow leaves the block to an input that owns it
 *   fails    a complex input, unequal point counts (everything untouched); storage
 */
DSP_API int32_t dspb_ritoc (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_ritoc(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * Interleaves two vectors point by point: a[0], b[0], a[1], b[1] ...
 *   sizes    twice the points of the inputs; complex if either input is, a real sample then counting as (x, 0)
 *   delta    half of a's
 *   alias    the result may be an input or share storage with one; another record over an input's block that has to
 *            grow leaves the block to an input that owns it
 *   fails    unequal point counts (everything untouched); storage
 */
DSP_API int32_t dspb_inter (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_inter(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * Product of two polynomials whose coefficients are the points, which is their full linear convolution:
 * result[i + j] += a[i] * b[j] over all pairs.
 *   sizes    points of a + points of b - 1, none if either input is empty; complex if either input is
 *   delta    a's
 *   alias    the result may be an input or share storage with one, and the inputs are then copied first; another
 *            record over an input's block that has to grow leaves the block to an input that owns it
 *   fails    storage (the result is then empty, or as it was where a copy of an input failed)
 */
DSP_API int32_t dspb_pmul (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfb_pmul(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/**
 * Sum of a[k] * b[k], as one running sum; neither input is conjugated.
 *   sizes    one point, complex if either input is; 0 for empty inputs
 *   keeps    the result's delta
 *   alias    as for the pointwise operations
 *   fails    unequal point counts (result untouched), storage
 */
DSP_API int32_t dspbs_dot (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result);
DSP_API int32_t dspfbs_dot(const dspf_vector *a, const dspf_vector *b, dspf_vector *result);

/* ------------------------------------------------------------------------------------------------------------------
 * Elementwise, into another vector
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * For all operations of this section: the destination gets the source's points and delta and the values of the
 * operation in place of the same name, with its guards. A destination that owns enough storage keeps it; one that is a
 * view gets a fresh block.
 *   alias    Source and destination may be one record (with the result of the operation in place; a view gets a block of
 *            its own, and the viewed storage stays as it was) or share storage in any way; samples that both hold are
 *            then overwritten by the result. A destination that has to grow gets a block of its own: the one it shares
 *            is left as it was to a source that starts where it does (the host's to release, if the source only views
 *            it); around a source that lies further inside, it is released, and the source is left without samples.
 *   fails    storage: no value is written; the destination has no samples then, or is as it was
 */

/** Every sample, both parts of a point, times a factor, as dspi_scale. */
DSP_API int32_t dspu_scale (const dsp_vector  *source, dsp_vector  *destination, double factor);
DSP_API int32_t dspfu_scale(const dspf_vector *source, dspf_vector *destination, float  factor);

/** Times the complex constant re + j im, as dspi_cscale. The destination is complex. */
DSP_API int32_t dspu_cscale (const dsp_vector  *source, dsp_vector  *destination, double re, double im);
DSP_API int32_t dspfu_cscale(const dspf_vector *source, dspf_vector *destination, float  re, float  im);

/** Square root, as dspi_sqrt. The form is the source's. */
DSP_API int32_t dspu_sqrt (const dsp_vector  *source, dsp_vector  *destination);
DSP_API int32_t dspfu_sqrt(const dspf_vector *source, dspf_vector *destination);

/** Magnitude, as dspi_mag. The destination is real. */
DSP_API int32_t dspu_mag (const dsp_vector  *source, dsp_vector  *destination);
DSP_API int32_t dspfu_mag(const dspf_vector *source, dspf_vector *destination);

/** Squared magnitude, as dspi_magsq. The destination is real. */
DSP_API int32_t dspu_magsq (const dsp_vector  *source, dsp_vector  *destination);
DSP_API int32_t dspfu_magsq(const dspf_vector *source, dspf_vector *destination);

/* ------------------------------------------------------------------------------------------------------------------
 * Order and length of a sequence
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Sets every sample to 0. The record is emptied and padded again: where its storage is a view, or shorter than its
 * points, it gets a fresh block of its own, and viewed storage stays as it was.
 *   keeps    points (a negative count becomes 0), form, delta
 *   fails    storage
 */
DSP_API int32_t dspi_zero (dsp_vector  *v);
DSP_API int32_t dspfi_zero(dspf_vector *v);

/**
 * Appends points 0 until there are n; never shortens.
 *   params   n: the new point count; one that is not above the present count changes nothing
 *   keeps    form, delta, the samples
 *   alias    a view gets a block of its own, and the viewed storage stays as it was
 *   fails    storage
 */
DSP_API int32_t dspi_zpad (dsp_vector  *v, int32_t n);
DSP_API int32_t dspfi_zpad(dspf_vector *v, int32_t n);

/**
 * Inserts points 0 in the middle until there are n: the first (N + 1) / 2 points (integer division) stay in front, the
 * other N / 2 move to the end, so that a frame whose centre lies at index 0 keeps it there. For a spectrum of N bins, N
 * odd or bin N/2 empty, it interpolates the signal to n points within its band (times n / N). Never shortens.
 *   params   n: the new point count; one that is not above the present count changes nothing
 *   keeps    form, delta, the samples
 *   alias    a view gets a block of its own, and the viewed storage stays as it was
 *   fails    storage
 */
DSP_API int32_t dspi_zpad2 (dsp_vector  *v, int32_t n);
DSP_API int32_t dspfi_zpad2(dspf_vector *v, int32_t n);

/**
 * Removes points from the middle until there are n: the first (n + 1) / 2 and the last n / 2 remain. The inverse of
 * dspi_zpad2; of a spectrum it keeps the bins around 0. Never lengthens.
 *   params   n: the new point count, a negative one counts as 0; one that is not below the present count changes nothing
 *   keeps    form, delta; a view stays one
 *   returns  0
 */
DSP_API int32_t dspi_unzpad (dsp_vector  *v, int32_t n);
DSP_API int32_t dspfi_unzpad(dspf_vector *v, int32_t n);

/**
 * Drops the first `count` points and moves the rest to the front. A count beyond the length leaves an empty vector, a
 * negative one changes nothing.
 *   keeps    form, delta
 *   alias    a view that keeps points gets a block of its own, and the viewed storage stays as it was
 *   fails    storage (of a view only)
 */
DSP_API int32_t dspi_shift (dsp_vector  *v, int32_t count);
DSP_API int32_t dspfi_shift(dspf_vector *v, int32_t count);

/**
 * Stuffs zeros: every point is followed by factor - 1 points 0, the first half of an interpolation (a low-pass of gain
 * `factor` is the second).
 *   params   factor: 1, which changes nothing, or more
 *   sizes    points * factor
 *   keeps    form
 *   delta    divided by factor
 *   alias    a view gets a block of its own, and the viewed storage stays as it was
 *   fails    factor below 1 (untouched); storage
 */
DSP_API int32_t dspi_zinter (dsp_vector  *v, int32_t factor);
DSP_API int32_t dspfi_zinter(dspf_vector *v, int32_t factor);

/**
 * dspi_zinter into another vector. A destination that owns enough storage keeps it; one that is a view gets a fresh block.
 *   sizes    the source's points * factor, in its form
 *   delta    the source's divided by factor
 *   alias    source and destination may be one record or share storage, as for dspu_scale and the others
 *   fails    factor below 1 (everything untouched); storage (no value is written)
 */
DSP_API int32_t dspu_zinter (const dsp_vector  *source, dsp_vector  *destination, int32_t factor);
DSP_API int32_t dspfu_zinter(const dspf_vector *source, dspf_vector *destination, int32_t factor);

/**
 * Moves the second half in front of the first: new[k] = old[(k + (n + 1) / 2) mod n], so that index 0 lands at n / 2
 * (integer divisions). 0 1 2 3 becomes 2 3 0 1, and 0 1 2 3 4 becomes 3 4 0 1 2.
 *   returns  0
 */
DSP_API int32_t dspi_swap_halves (dsp_vector  *v);
DSP_API int32_t dspfi_swap_halves(dspf_vector *v);

/**
 * The inverse of dspi_swap_halves: new[k] = old[(k + n / 2) mod n]. 0 1 2 3 4 becomes 2 3 4 0 1; for even counts both
 * are the same.
 *   returns  0
 */
DSP_API int32_t dspi_swap_halves2 (dsp_vector  *v);
DSP_API int32_t dspfi_swap_halves2(dspf_vector *v);

/**
 * Reverses the order of the points; a complex point keeps its parts in order.
 *   returns  0
 */
DSP_API int32_t dspi_rev (dsp_vector  *v);
DSP_API int32_t dspfi_rev(dspf_vector *v);

/**
 * Sorts ascending, in place.
 *   real     by value; NaN counts as below every number, -0.0 comes before 0.0
 *   complex  by squared magnitude, then real part, then imaginary part, NaN being the least at each stage
 *   returns  0
 */
DSP_API int32_t dspi_sort (dsp_vector  *v);
DSP_API int32_t dspfi_sort(dspf_vector *v);

/**
 * Puts the points into a random order, each equally likely. Draws from the random source of the precision, which
 * dspc_rand shares and which is seeded once per process from the system, the place in memory and the clocks.
 *   returns  0
 */
DSP_API int32_t dspi_shuffle (dsp_vector  *v);
DSP_API int32_t dspfi_shuffle(dspf_vector *v);

/**
 * Full conjugate-symmetric spectrum from its half, bins 0 upwards, as dspi_rfft and dspi_rdft leave it: bin N - k is the
 * conjugate of bin k. A real vector becomes complex.
 *   params   odd: 0 when the full spectrum has an even number of points, 2 points - 2, the last bin given being its own
 *            mirror image; otherwise 2 points - 1. Never below 0.
 *   keeps    delta
 *   fails    storage
 */
DSP_API int32_t dspi_orecon (dsp_vector  *v, uint32_t odd);
DSP_API int32_t dspfi_orecon(dspf_vector *v, uint32_t odd);

/** dspi_orecon with odd 0. */
DSP_API int32_t dspi_recon (dsp_vector  *v);
DSP_API int32_t dspfi_recon(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Running structure of a sequence
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * First difference divided by delta: (x[k] - x[k-1]) * (1 / delta) with x[-1] = 0, so that the first point becomes
 * x[0] / delta. A delta of 0 multiplies by huge. Both parts of complex points alike.
 *   keeps    points, form, delta
 *   returns  0
 */
DSP_API int32_t dspi_differ (dsp_vector  *v);
DSP_API int32_t dspfi_differ(dspf_vector *v);

/**
 * Difference of a phase sequence in radians divided by delta: each step, brought into -pi..pi by the multiple of 2 pi
 * that dspi_unwrap would take off, times (1 / delta). This is the angular frequency in radians per unit of delta, without
 * unwrapping first. The first point is measured against 0; a delta of 0 multiplies by huge.
 *   real     a step into or out of a NaN or an infinity gives NaN, the steps beyond do not
 *   keeps    points, delta
 *   fails    a complex vector (untouched)
 */
DSP_API int32_t dspi_pdiffer (dsp_vector  *v);
DSP_API int32_t dspfi_pdiffer(dspf_vector *v);

/**
 * Running sum times delta: delta * (x[0] + ... + x[k]), summed one by one in the precision of the samples. Both parts
 * of complex points alike.
 *   keeps    points, form, delta
 *   returns  0
 */
DSP_API int32_t dspi_integ (dsp_vector  *v);
DSP_API int32_t dspfi_integ(dspf_vector *v);

/**
 * Removes the jumps of a phase sequence in radians: a sample that lies more than pi from the one before it (already
 * corrected; 0 before the first) becomes that one plus the rest of the step modulo 2 pi, within -pi..pi. Smaller steps
 * stay as they are, to the bit. After a NaN or an infinity every sample is NaN.
 *   keeps    points, delta
 *   fails    a complex vector (untouched)
 */
DSP_API int32_t dspi_unwrap (dsp_vector  *v);
DSP_API int32_t dspfi_unwrap(dspf_vector *v);

/**
 * As dspi_unwrap for a quantity of any period (degrees, encoder counts): half of it stands for pi.
 *   params   period: above 0; an infinite one leaves every finite sample as it is
 *   keeps    points, delta
 *   fails    a complex vector, a period that is not above 0 or NaN (untouched)
 */
DSP_API int32_t dspi_unwrap_wnd (dsp_vector  *v, double period);
DSP_API int32_t dspfi_unwrap_wnd(dspf_vector *v, float  period);

/** Which crossings dspi_edge looks for. */
enum {
  DSP_EDGE_UP = 1,    /**< from below the level to it or above */
  DSP_EDGE_DOWN = 2,  /**< from above the level to it or below */
  DSP_EDGE_EITHER = 3 /**< both, each armed for itself */
};

/**
 * Replaces a waveform by the positions where it crosses a level: the triggers of an instrument, in order. The crossing
 * upward is armed by a sample below level - hysteresis, and completed by the first sample after it that is not below the
 * level; it then has to be armed anew, so that noise within the band around the level fires once. Downward likewise,
 * armed above level + hysteresis. A waveform that begins within the band is not armed yet.
 *   real     position: (j + (level - x[j]) / (x[j+1] - x[j])) * delta, on the straight line between the last sample before
 *            the level and the first at or beyond it, computed in double. Samples are brought into +-huge; a NaN is a
 *            gap: nothing is armed across it
 *   params   level: within +-huge; hysteresis: at least 0; direction: DSP_EDGE_...
 *   sizes    a point for each crossing, at most points - 1; a view stays one
 *   delta    1
 *   fails    a complex vector, a parameter out of range or NaN (untouched)
 */
DSP_API int32_t dspi_edge (dsp_vector  *v, double level, double hysteresis, uint32_t direction);
DSP_API int32_t dspfi_edge(dspf_vector *v, float  level, float  hysteresis, uint32_t direction);

/* ------------------------------------------------------------------------------------------------------------------
 * Bit-reversed order
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Bit-reversed order, in place: with the index written in log2 points bits, point k goes to the index with these bits
 * in reverse. Its own inverse. The exchange table of each length is kept until dsp_free_internal.
 *   sizes    the point count must be a power of two; 1 is one
 *   keeps    points, form, delta
 *   returns  0
 *   fails    any other count, exhausted memory: nothing changes
 */
DSP_API int32_t dspi_bitrev (dsp_vector  *v);
DSP_API int32_t dspfi_bitrev(dspf_vector *v);

/**
 * As dspi_bitrev, and every sample, both parts of a complex one, times the factor.
 */
DSP_API int32_t dspi_bitrev_scale (dsp_vector  *v, double factor);
DSP_API int32_t dspfi_bitrev_scale(dspf_vector *v, float  factor);

/* ------------------------------------------------------------------------------------------------------------------
 * Transform and threading settings
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Bits of the transform flags, one word per precision, 0 at load. Other bits are kept as given and mean nothing, except
 * that any nonzero word lets the thread settings below reach the OpenMP runtime.
 */
enum {
  DSP_DFT_MKL_AVAILABLE = 0x1000, /**< transform library and OpenMP runtime are loaded; cannot be set or cleared */
  DSP_DFT_USE_MKL = 0x2000,       /**< power-of-two transforms, alone or as steps of others, are the library's */
  DSP_DFT_KEEP_PLANS = 0x4000     /**< its plans stay cached; without it all are released after each transform */
};

/**
 * First use. The first call in each precision that reads or sets a setting here, transforms, or releases the caches
 * looks for a library with the DFTI interface and an OpenMP runtime, once and silently; both are optional, and a failed
 * search is not repeated. If both are found, the three bits above are set. Callers in other threads do not wait for the
 * search: until it ends they see flags 0.
 *   searched   the file that SIGVEX_MKL_LIBRARY names, libmkl_rt.so.2, libmkl_rt.so; the file that SIGVEX_OMP_LIBRARY
 *              names, libiomp5.so, libomp.so.5 (Windows: Corvanta_IntelMKL.dll; libiomp5md.dll). A file that does not
 *              load or lacks an entry point is passed over; one that the process has loaded already is preferred.
 *   sets       the environment variables MKL_DISABLE_FAST_MM to YES (and the library's buffer caching off) and
 *              KMP_BLOCKTIME to 0, each only where it has no value, before either file is loaded
 *
 * dsp_dft_get_flags reads the flags.
 *   params   flags: receives the word, may be null
 *   returns  0
 */
DSP_API int32_t dsp_dft_get_flags (uint32_t *flags);
DSP_API int32_t dspf_dft_get_flags(uint32_t *flags);

/**
 * Sets the flags. DSP_DFT_MKL_AVAILABLE stays as it is; where it is not set, all three bits stay clear.
 *   returns  0
 */
DSP_API int32_t dsp_dft_set_flags (uint32_t flags);
DSP_API int32_t dspf_dft_set_flags(uint32_t flags);

/**
 * The number of threads that the OpenMP runtime would use.
 *   params   count: receives the number, 0 while the flags are 0 or without a runtime; null: nothing is done
 *   returns  0
 */
DSP_API int32_t dsp_omp_get_max_threads (int32_t *count);
DSP_API int32_t dspf_omp_get_max_threads(int32_t *count);

/**
 * Sets the number of threads of the OpenMP runtime and releases the cached plans, which carry the old number; waits for
 * running transforms. Does nothing while the flags are 0 or without a runtime.
 *   fails    a plan that cannot be released (the number is set, the cache empty all the same)
 */
DSP_API int32_t dsp_omp_set_num_threads (int32_t count);
DSP_API int32_t dspf_omp_set_num_threads(int32_t count);

/**
 * How long the runtime's threads spin before they sleep.
 *   params   milliseconds: receives the time, 0 while the flags are 0 or without a runtime; null: nothing is done
 *   returns  0
 */
DSP_API int32_t dsp_kmp_get_blocktime (int32_t *milliseconds);
DSP_API int32_t dspf_kmp_get_blocktime(int32_t *milliseconds);

/**
 * Passes the runtime the setting KMP_BLOCKTIME=milliseconds. Does nothing while the flags are 0 or without a runtime.
 *   returns  0
 */
DSP_API int32_t dsp_kmp_set_blocktime (int32_t milliseconds);
DSP_API int32_t dspf_kmp_set_blocktime(int32_t milliseconds);

/* ------------------------------------------------------------------------------------------------------------------
 * Transforms of power-of-two length
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * For all transforms: forward results are scaled by 1/N, inverse results are not, so that one undoes the other:
 *   X[k] = (1/N) sum over j of x[j] e^(-2 pi i jk/N),   x[j] = sum over k of X[k] e^(+2 pi i jk/N)
 *   delta    becomes 1/(N delta), the spacing of the bins; huge where delta is 0. The inverse restores it.
 *   error    relative L2 error of a forward transform at most 0.6 eps sqrt(log2 N) for powers of two, 4 eps sqrt(log2 N)
 *            for other lengths, eps being 2^-52 or 2^-23
 *   fails    besides what each states: storage, a table that memory does not suffice for, the transform library's refusal.
 *            A transform of several steps can leave its vector half transformed.
 * Transforms run in any number of threads at once; those of other than power-of-two length one at a time.
 *
 * Complex transform of a power-of-two number of points. A real vector becomes complex; a single point stays as it is,
 * unless the transform library is in use, which makes it complex too.
 *   params   inverse: 0 forward, otherwise inverse
 *   fails    points not a power of two, or below 1 (untouched)
 */
DSP_API int32_t dspi_fft (dsp_vector  *v, uint32_t inverse);
DSP_API int32_t dspfi_fft(dspf_vector *v, uint32_t inverse);

/**
 * Forward transform of a power-of-two number N of real samples.
 *   sizes    N/2 + 1 complex bins, 0 to half the sampling rate; data owns room for N complex points. A single sample stays
 *            a real one, unless the transform library is in use: that leaves one complex bin.
 *   fails    complex; points not a power of two, or below 1 (both untouched)
 */
DSP_API int32_t dspi_rfft (dsp_vector  *v);
DSP_API int32_t dspfi_rfft(dspf_vector *v);

/**
 * Inverse of dspi_rfft: dspi_recon, dspi_fft inverse, dspi_real.
 *   sizes    2 points - 2 real samples
 *   fails    2 points - 2 is not a power of two (the vector then holds its full spectrum)
 */
DSP_API int32_t dspi_irfft (dsp_vector  *v);
DSP_API int32_t dspfi_irfft(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Transforms of any length
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Complex transform of any number of points: dspi_fft for a power of two, otherwise a convolution, with Bluestein's chirp
 * or, of 65537 complex points, after Rader. Fewer than two points, or none, stay as they are; delta becomes 1/delta.
 *   params   inverse: 0 forward, otherwise inverse
 *   sizes    points are kept; a convolution works in data, which then owns room for M = 4 * 2^floor(log2(N - 1.5))
 *            complex points
 */
DSP_API int32_t dspi_dft (dsp_vector  *v, uint32_t inverse);
DSP_API int32_t dspfi_dft(dspf_vector *v, uint32_t inverse);

/**
 * Forward transform of any number N of real samples.
 *   sizes    N/2 + 1 complex bins, N/2 rounded down; no points stay none; data as dspi_rfft or dspi_dft
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_rdft (dsp_vector  *v);
DSP_API int32_t dspfi_rdft(dspf_vector *v);

/**
 * Inverse of dspi_rdft.
 *   params   odd: 0 when the samples were even in number, otherwise odd; the half spectrum does not say
 *   sizes    2 points - 2 real samples, with odd 2 points - 1; never below 0
 */
DSP_API int32_t dspi_irdft (dsp_vector  *v, uint32_t odd);
DSP_API int32_t dspfi_irdft(dspf_vector *v, uint32_t odd);

/** Flags of dspi_dct. */
enum {
  DSP_DCT_INVERSE = 1,    /**< the inverse transform, DCT-III */
  DSP_DCT_ORTHONORMAL = 2 /**< twice the plain transform, coefficient 0 also times sqrt(1/2): proportional to a rotation */
};

/**
 * Discrete cosine transform, DCT-II, of any number N of real samples:
 *   y[k] = (1/N) sum over j of x[j] cos(pi k (2j + 1)/(2N))
 * Computed by a real transform of the reordered samples (Makhoul, IEEE Trans. ASSP 28, 27-34, 1980).
 *   params   flags: DSP_DCT_*
 *   keeps    points, real
 *   delta    becomes 1/(2 N delta); where delta is 0, half of huge, or huge if there are no points. The inverse with the
 *            same DSP_DCT_ORTHONORMAL restores samples and delta.
 *   fails    complex (untouched)
 */
DSP_API int32_t dspi_dct (dsp_vector  *v, uint32_t flags);
DSP_API int32_t dspfi_dct(dspf_vector *v, uint32_t flags);

/**
 * Hilbert transform by the spectrum: bins of positive frequency times -i, of negative frequency times +i, bin 0 and for
 * even N bin N/2 set to 0. A cosine becomes a sine.
 *   keeps    points, form
 *   delta    kept to rounding, but that 0 becomes 1/(N huge)
 */
DSP_API int32_t dspi_hilbert (dsp_vector  *v);
DSP_API int32_t dspfi_hilbert(dspf_vector *v);

/**
 * Analytic signal: the real part is the signal, the imaginary part its Hilbert transform. The spectrum's positive
 * frequencies are doubled, the negative ones set to 0, bin 0 and for even N bin N/2 kept.
 *   sizes    as many complex points; fewer than two stay as they are
 *   delta    as dspi_hilbert
 */
DSP_API int32_t dspi_analytic (dsp_vector  *v);
DSP_API int32_t dspfi_analytic(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Windows
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Window types. d is the distance of sample j from the centre of the frame, N/2: d = j - N/2. Every window has its
 * peak, 1, at d = 0 and is periodic: the sample at d = N/2 would be the first of the next frame. For odd N the centre
 * falls between two samples; only triangle and Tukey keep their peak on one, at the integer index N/2.
 *
 *   cosine sum   w = a0 + a1 cos(2 pi d/N) + a2 cos(4 pi d/N) + ...; below are a0, a1, ... for unity peak, rounded.
 *                The sets for unity mean and unity RMS are stored too and used as they are, so that the mean of a flat
 *                top (8 to 13) is a little below 1: 0.99945 for 8, 0.99964 for 9, 0.9997 to 0.9998 for the others.
 *   triangle     w = 1 - |d| / ((N+1)/2), integer division; index 0 is 0 for even N
 *   Kaiser       w = I0(beta sqrt(max(0, 1 - (2d/N)^2))) / I0(beta)
 *   Gauss        w = exp(-0.5 (d / (p N))^2)
 *   sinc         w = sin(u) / u, u = scale 2d / (width N); type 23 has width 1, scale pi
 *   Tukey        w = 1 where 2|d|/N <= 1-f, towards the edges 0.5 (1 + cos(pi (2|d|/N - (1-f)) / f)); f: both tapers
 *                together, as a fraction of the frame
 *   cosine lobe  w = cos(pi d/N)
 */
enum {
  DSP_WINDOW_UNIFORM = 0, DSP_WINDOW_RECTANGULAR = 0, DSP_WINDOW_NONE = 0, DSP_WINDOW_P000 = 0, /**< a0 = 1 */
  DSP_WINDOW_BARTLETT = 1, DSP_WINDOW_TRIANGULAR = 1, /**< triangle */
  DSP_WINDOW_HANN = 2, DSP_WINDOW_P110 = 2, /**< 0.5, 0.5 */
  DSP_WINDOW_HAMMING = 3, DSP_WINDOW_P100 = 3, /**< 0.54, 0.46 */
  DSP_WINDOW_BLACKMAN = 4, /**< 0.42, 0.5, 0.08 */
  DSP_WINDOW_BLACKMAN_HARRIS3 = 5, DSP_WINDOW_P200 = 5, /**< 0.42438, 0.49734, 0.07828 */
  DSP_WINDOW_BLACKMAN_HARRIS4 = 6, DSP_WINDOW_P310 = 6, DSP_WINDOW_LOWLEAK = 6,
      /**< 0.355768, 0.487396, 0.144232, 0.012604 */
  DSP_WINDOW_GAUSSTOP = 7, DSP_WINDOW_P400 = 7, DSP_WINDOW_CHEBY5 = 7,
      /**< 0.32322, 0.47149, 0.17553, 0.02850, 0.00126 */
  DSP_WINDOW_FLAT4 = 8, DSP_WINDOW_P301 = 8, /**< 0.23952, 0.45809, 0.25849, 0.04390 */
  DSP_WINDOW_FLATTOP = 9, DSP_WINDOW_FLAT5 = 9, DSP_WINDOW_P401 = 9, /**< 0.21328, 0.41401, 0.27906, 0.08617, 0.00749 */
  DSP_WINDOW_FLAT6 = 10, DSP_WINDOW_P511 = 10, /**< 0.19185, 0.37597, 0.28443, 0.12274, 0.02373, 0.00128 */
  DSP_WINDOW_FLAT7 = 11, DSP_WINDOW_P611 = 11, /**< 0.17787, 0.35027, 0.28164, 0.14478, 0.04033, 0.00496, 0.00016 */
  DSP_WINDOW_P501 = 12, /**< 0.19419, 0.38017, 0.28406, 0.11877, 0.02173, 0.00108 */
  DSP_WINDOW_P601 = 13, /**< 0.17932, 0.35295, 0.28197, 0.14251, 0.03857, 0.00454, 0.00014 */
  DSP_WINDOW_KAISER70 = 14, /**< Kaiser, beta 9.473960131326246 */
  DSP_WINDOW_KAISER80 = 15, /**< Kaiser, beta 10.751776690564654 */
  DSP_WINDOW_KAISER90 = 16, /**< Kaiser, beta 12.014077292090791 */
  DSP_WINDOW_KAISER100 = 17, /**< Kaiser, beta 13.264372446115681 */
  DSP_WINDOW_KAISER110 = 18, /**< Kaiser, beta 14.505082414495599 */
  DSP_WINDOW_KAISER120 = 19, /**< Kaiser, beta 15.73795091271457 */
  DSP_WINDOW_GAUSS60 = 20, /**< Gauss, p 0.1583722 */
  DSP_WINDOW_GAUSS70 = 21, /**< Gauss, p 0.1442161 */
  DSP_WINDOW_GAUSS80 = 22, /**< Gauss, p 0.1328102 */
  DSP_WINDOW_RIEMANN = 23, DSP_WINDOW_SINC_LOBE = 23, /**< sinc */
  DSP_WINDOW_TUKEY25 = 24, /**< Tukey, f 0.25 */
  DSP_WINDOW_COS_LOBE = 25, DSP_WINDOW_RRC = 25, DSP_WINDOW_SQRT_HANN = 25, /**< cosine lobe */
  DSP_WINDOW_CHEBY6 = 26, /**< 0.29356, 0.45194, 0.20142, 0.04793, 0.00503, 0.00014 */
  DSP_WINDOW_CHEBY7 = 27, /**< 0.27122, 0.43344, 0.21800, 0.06579, 0.01076, 0.00077, 0.00001 */
  DSP_WINDOW_CHEBY4 = 28, DSP_WINDOW_NUTTALL = 28, DSP_WINDOW_BLACKMAN_NUTTALL = 28,
      /**< 0.3635819, 0.4891775, 0.1365995, 0.0106411 */
  DSP_WINDOW_ORIG_BLACKMAN_HARRIS4 = 29, /**< 0.35875, 0.48829, 0.14128, 0.01168 */
  DSP_WINDOW_KAISER89 = 30, /**< Kaiser, beta 11.9 */
  DSP_WINDOW_GAUSS73 = 31 /**< Gauss, p 1/7.16 */
};

/** Window flags. Bits above these are ignored. */
enum {
  DSP_WINFLAG_MEAN = 0,        /**< bits 0 and 1: unity mean, a sine keeps its level */
  DSP_WINFLAG_RMS = 1,         /**< unity RMS, noise keeps its power */
  DSP_WINFLAG_PEAK = 2,        /**< unity peak, the window as defined; the value 3 is refused */
  DSP_WINFLAG_ALTERNATIVE = 4, /**< alternative construction: Tukey has one, with the same result; refused by others */
  DSP_WINFLAG_PARAMETER = 8,   /**< the window uses the caller's parameter, see dspi_window2 */
  DSP_WINFLAG_ROTATE = 16,     /**< Uniform: rotate by half the length (the other types do unless told not to) */
  DSP_WINFLAG_CENTRED = 32     /**< every other type: do not rotate, leave the peak in the middle of the frame */
};

/**
 * Multiplies a vector by a window of its own length, both parts of a complex point by the same weight; then, unless
 * DSP_WINFLAG_CENTRED is set, rotates it by half its length as dspi_swap_halves2 does, so that the centre of the frame
 * lands at index 0 and a transform measures phase from there. The Uniform window leaves the samples as they are, with or
 * without DSP_WINFLAG_ALTERNATIVE, and rotates only with DSP_WINFLAG_ROTATE.
 *   params   type: DSP_WINDOW_*
 *            flags: DSP_WINFLAG_*. Unity mean and unity RMS hold over the frame: by formula for the triangle, by the
 *            stored sets for cosine sums (given at least twice as many points as terms), otherwise by the mean and the
 *            RMS of the weights
 *   keeps    points, form, delta; fewer than 1 point: nothing to do
 *   state    the last window is kept for the next call; dsp_free_internal releases it. Windows are built and applied
 *            one at a time
 *   returns  0
 *   fails    type above 31, normalisation 3, DSP_WINFLAG_PARAMETER, a type without alternative construction, a complex
 *            vector with the triangle, a window whose mean or RMS is 0, storage: the vector is unchanged
 */
DSP_API int32_t dspi_window (dsp_vector  *v, uint32_t type, uint32_t flags);
DSP_API int32_t dspfi_window(dspf_vector *v, uint32_t type, uint32_t flags);

/**
 * As dspi_window, with a parameter that counts when DSP_WINFLAG_PARAMETER is set (otherwise it is ignored):
 *   cosine sums, Uniform too, and cosine lobe
 *            the width of the window in samples, L > 0 and finite: L stands for N in the formula; the weight is 0 beyond
 *            |d| = L/2
 *   Kaiser   the width in samples, as above: L stands for N, beta is the type's; the weight is 1/I0(beta) beyond |d| = L/2
 *   Gauss    p, as in dspi_window_gauss
 *   sinc     width, as in dspi_window_sinc; scale is pi
 *   Tukey    f, as in dspi_window_tukey
 *   triangle refused
 * Unity mean and unity RMS always refer to the whole frame.
 *   fails    as dspi_window, where the flag itself is no failure; a parameter out of range or NaN
 */
DSP_API int32_t dspi_window2 (dsp_vector  *v, uint32_t type, uint32_t flags, double parameter);
DSP_API int32_t dspfi_window2(dspf_vector *v, uint32_t type, uint32_t flags, float  parameter);

/**
 * One family's window: multiplies as dspi_window2 does, but never rotates, whatever DSP_WINFLAG_ROTATE and
 * DSP_WINFLAG_CENTRED say.
 *   cos      the cosine lobe; DSP_WINFLAG_PARAMETER is refused
 *   gauss    width: p, the standard deviation as a fraction of the frame, not 0 or NaN; DSP_WINFLAG_PARAMETER is ignored
 *   kaiser   beta within +-460.51701859880916, for unity RMS within +-230.25850929940458 (float: twice the logarithm of
 *            huge, and once); DSP_WINFLAG_PARAMETER is refused
 *   sinc     width: finite, not 0, the fraction of the frame at whose ends the argument is -scale and scale; scale in
 *            radians, scale/width finite; DSP_WINFLAG_PARAMETER is ignored
 *   tukey    fraction: f, 0 (Uniform) to 1 (Hann); DSP_WINFLAG_PARAMETER is ignored
 *   keeps    points, form, delta; fewer than 1 point: nothing to do
 *   fails    normalisation 3, a parameter out of range or NaN, DSP_WINFLAG_ALTERNATIVE but for Tukey, a window whose
 *            mean or RMS is 0, storage: the vector is unchanged
 */
DSP_API int32_t dspi_window_cos (dsp_vector  *v, uint32_t flags);
DSP_API int32_t dspfi_window_cos(dspf_vector *v, uint32_t flags);
DSP_API int32_t dspi_window_gauss (dsp_vector  *v, uint32_t flags, double width);
DSP_API int32_t dspfi_window_gauss(dspf_vector *v, uint32_t flags, float  width);
DSP_API int32_t dspi_window_kaiser (dsp_vector  *v, uint32_t flags, double beta);
DSP_API int32_t dspfi_window_kaiser(dspf_vector *v, uint32_t flags, float  beta);
DSP_API int32_t dspi_window_sinc (dsp_vector  *v, uint32_t flags, double width, double scale);
DSP_API int32_t dspfi_window_sinc(dspf_vector *v, uint32_t flags, float  width, float  scale);
DSP_API int32_t dspi_window_tukey (dsp_vector  *v, uint32_t flags, double fraction);
DSP_API int32_t dspfi_window_tukey(dspf_vector *v, uint32_t flags, float  fraction);

/**
 * The window of a filter design: as dspi_window2 with the same formulas, but with d = j - (N-1)/2, so that the taps are
 * symmetric about the centre tap, for even N about the middle between two; and never rotated. The period of a cosine sum
 * stays N: the outermost taps are not wasted on the window's zeros.
 *   keeps, fails  as dspi_window2
 */
DSP_API int32_t dspi_window_fir (dsp_vector  *v, uint32_t type, uint32_t flags, double parameter);
DSP_API int32_t dspfi_window_fir(dspf_vector *v, uint32_t type, uint32_t flags, float  parameter);

/**
 * Finds a window type by name: each enumerator above, and 60 plain names from "Uniform" to "Gauss73". Upper and lower
 * case of ASCII letters are the same, whatever the locale; nothing is abbreviated or trimmed.
 *   fails    text or type null: nothing is stored; an unknown name: 0 is stored
 */
DSP_API int32_t dsp_window_from_str (const char *text, uint32_t *type);
DSP_API int32_t dspf_window_from_str(const char *text, uint32_t *type);

/**
 * Writes the name of a window type, for example "Hann". The rest of the buffer is filled with zeros; a longer name is
 * cut to size - 1 characters, which is no failure. 24 bytes hold every name.
 *   fails    buffer null or size below 1: nothing is written; type above 31: an empty string is written
 */
DSP_API int32_t dsp_window_to_str (uint32_t type, char *buffer, int32_t size);
DSP_API int32_t dspf_window_to_str(uint32_t type, char *buffer, int32_t size);

/* ------------------------------------------------------------------------------------------------------------------
 * Window metrics
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * The number by which the unit-peak window of `points` points is multiplied for the normalisation in bits 0 and 1 of
 * the flags: 1/mean, 1/RMS or 1. It is the factor that dspi_window and dspi_window2 apply; for the cosine sums it is the
 * ratio of the stored coefficients a0 (Hann: 2, 1.632993161855452, 1) whatever the number of points.
 *   params   flags and parameter as in dspi_window2; dsp_window_scale refuses DSP_WINFLAG_PARAMETER
 *   fails    scale null; what dspi_window2 refuses of type, flags and parameter; fewer than 1 point where the factor
 *            depends on them; a mean or RMS of 0: the result is not written
 */
DSP_API int32_t dsp_window_scale (double *scale, uint32_t type, uint32_t flags, int32_t points);
DSP_API int32_t dspf_window_scale(float  *scale, uint32_t type, uint32_t flags, int32_t points);
DSP_API int32_t dsp_window2_scale (double *scale, uint32_t type, uint32_t flags, int32_t points, double parameter);
DSP_API int32_t dspf_window2_scale(float  *scale, uint32_t type, uint32_t flags, int32_t points, float  parameter);

/**
 * Equivalent noise bandwidth in bins: (scale for unity mean / scale for unity RMS)^2, which is the mean square of the
 * window over its squared mean. Uniform: 1, Hann: 1.5. dsp_window2_enbw is for the window with its parameter, as if
 * DSP_WINFLAG_PARAMETER were set.
 *   fails    enbw null; whatever fails in dsp_window_scale or dsp_window2_scale: the result is not written
 */
DSP_API int32_t dsp_window_enbw (double *enbw, uint32_t type, int32_t points);
DSP_API int32_t dspf_window_enbw(float  *enbw, uint32_t type, int32_t points);
DSP_API int32_t dsp_window2_enbw (double *enbw, uint32_t type, int32_t points, double parameter);
DSP_API int32_t dspf_window2_enbw(float  *enbw, uint32_t type, int32_t points, float  parameter);

/**
 * Figures of merit of a window, for dsp_window_metric. w is the unity-peak window of n points as dspi_window applies it,
 * W(f) = sum of w[j] exp(-2 pi i f j / n) its spectrum at f bins from the peak. Definitions and signs are those of the
 * table of F. J. Harris, "On the use of windows for harmonic analysis with the discrete Fourier transform", Proc. IEEE 66
 * (1978): losses are positive decibels, levels and slopes are negative ones.
 */
enum {
  DSP_WINMETRIC_COHERENT_GAIN = 0,   /**< sum w / n */
  DSP_WINMETRIC_ENBW = 1,            /**< equivalent noise bandwidth in bins: n sum w^2 / (sum w)^2 */
  DSP_WINMETRIC_PROCESSING_LOSS = 2, /**< dB: 10 lg of the equivalent noise bandwidth */
  DSP_WINMETRIC_SCALLOPING_LOSS = 3, /**< dB: 20 lg |W(0) / W(1/2)|, a tone midway between bins; some flat tops gain */
  DSP_WINMETRIC_WORST_CASE_LOSS = 4, /**< dB: scalloping and processing loss together */
  DSP_WINMETRIC_WIDTH_3DB = 5,       /**< bins, both sides: to where |W(f) / W(0)|^2 has first fallen to 1/2 */
  DSP_WINMETRIC_WIDTH_6DB = 6,       /**< bins, both sides: to where |W(f) / W(0)| has first fallen to 1/2 */
  DSP_WINMETRIC_MAIN_LOBE = 7,       /**< bins, from null to null: the first minima of |W| below |W(0)| / 2 */
  DSP_WINMETRIC_SIDE_LOBE = 8,       /**< dB: 20 lg of the highest |W(f) / W(0)| beyond the main lobe, to f = n/2 */
  DSP_WINMETRIC_ROLL_OFF = 9,        /**< dB per octave: -20 lg(2) p, see dsp_window_metric */
  DSP_WINMETRIC_OVERLAP_50 = 10,     /**< sum w[j] w[j + s] / sum w^2 for s = n/2, halves rounded up */
  DSP_WINMETRIC_OVERLAP_75 = 11      /**< the same for s = n/4 */
};

/**
 * One figure of merit of a window with the parameter of its type. Everything but the roll-off is measured on the window
 * of n points itself, in double precision in the twin too, between the bins by its exact spectrum. The roll-off is that
 * of the envelope of the side lobes for n without bound, 1/f^p: p - 1 is the order of the window's lowest derivative that
 * jumps, at the ends of the frame (0 outside) or within; a side lobe follows it once it lies below that jump.
 * The noise bandwidth of a flat top is that of its shape; dsp_window_enbw compares the stored sets and is up to 0.11 %
 * lower. Beyond 2^20 points the figures are those of 2^20 points or up to 3 less, the same to one part in a million.
 * The time goes with n: the side lobe takes some 2000 n multiplications, a width 200 n.
 *   params   type: DSP_WINDOW_*; n: at least 2; which: DSP_WINMETRIC_*
 *   fails    result null; type above 31; which above 11; n below 2; a window without such a figure at n points (no null
 *            or no side lobe below n/2 bins); storage: the result is not written
 */
DSP_API int32_t dsp_window_metric (uint32_t type, int32_t n, uint32_t which, double *result);
DSP_API int32_t dspf_window_metric(uint32_t type, int32_t n, uint32_t which, float  *result);

/* ------------------------------------------------------------------------------------------------------------------
 * Correlation
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Slides the first m points of a along b: lag k is (1/P) * sum over j < m of conj(a[j]) * b[j + k], P being the smallest
 * power of two that is not below the points of b. Computed by transforms of P points; the factor 1/P belongs to the
 * result. For P = 1 the result is conj(a[0]) * b[0].
 *   params   m: 1 .. the points of a and of b
 *            halve: nonzero multiplies the result by 0.5
 *            work: a record to compute in, so that repeated calls need not allocate; overwritten. Where it is null, an
 *            input or the result, or shares storage with one, a temporary takes its place
 *   sizes    points of b - m + 1 (lags 0, 1, 2 ...), complex if either input is
 *   delta    the mean of the inputs' deltas
 *   alias    the result may be an input, or share storage with one
 *   fails    m out of range (everything untouched); storage, a transform: the result is then empty or half computed
 */
DSP_API int32_t dsph_corr (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result, dsp_vector  *work,
                           int32_t m, uint32_t halve);
DSP_API int32_t dspfh_corr(const dspf_vector *a, const dspf_vector *b, dspf_vector *result, dspf_vector *work,
                           int32_t m, uint32_t halve);

/** dsph_corr with halve 0. */
DSP_API int32_t dspb_corr (const dsp_vector  *a, const dsp_vector  *b, dsp_vector  *result, dsp_vector  *work,
                           int32_t m);
DSP_API int32_t dspfb_corr(const dspf_vector *a, const dspf_vector *b, dspf_vector *result, dspf_vector *work,
                           int32_t m);

/* ------------------------------------------------------------------------------------------------------------------
 * Statistics
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * For all statistics. They read v and give one point; n is the number of v's points.
 *   sizes    result: 1 point, in the form of v where said so, else real; the histogram its bins, the regression its values
 *   delta    result's is left as it was, but for the histogram
 *   alias    v and result may be one record or share storage
 *   sums     in blocks of 2048 points: each block sum starts at 0.0 and runs in order, and the finished block sums are
 *            added to the total in order, so every bit of a result is defined
 *   clamped  brought into +-huge; NaN gives -huge
 *   fails    storage; nothing but a regression fails for want of points
 */

/**
 * Sum of the samples, nothing clamped; the real and the imaginary parts of complex points separately. Form of v.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_sum (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_sum(const dspf_vector *v, dspf_vector *result);

/**
 * Arithmetic mean: dsps_sum, each part times 1.0 / n. Form of v.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_mean (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_mean(const dspf_vector *v, dspf_vector *result);

/**
 * Geometric mean, by way of the plain product P of all samples from left to right, nothing scaled. Form of v.
 *   real     exp(ln(P) / n) if P >= tiny, else 0.0: also for a negative, vanishing or NaN product; infinite if P is
 *   complex  magnitude exp(ln(|P|^2) / 2n), angle arg(P) / n, if |P|^2 >= tiny, else (0, 0)
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_gmean (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_gmean(const dspf_vector *v, dspf_vector *result);

/**
 * Harmonic mean: n / S, S being the sum of the reciprocals. Form of v.
 *   real     0.0 if a sample is 0.0; huge if S is 0.0
 *   complex  parts clamped; 1 / |z|^2 counts as huge where |z|^2 is 0 (also by underflow), and 1 / |S|^2 where that is 0
 *            or NaN
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_hmean (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_hmean(const dspf_vector *v, dspf_vector *result);

/**
 * The middle sample in the order of dspi_sort, or for an even number the mean of the two in the middle, real and
 * imaginary parts of complex points separately. Form of v.
 *   returns  0; no points give 0.0
 *   fails    storage, also that of a sorted copy (result then untouched)
 */
DSP_API int32_t dsps_median (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_median(const dspf_vector *v, dspf_vector *result);

/**
 * Largest sample. Form of v.
 *   real     NaN and samples not above -huge are skipped; where only such are left: -huge
 *   complex  the first point of largest squared magnitude, copied as it is; a point with a part outside +-huge, or NaN,
 *            is rated as huge (the squared magnitude, not the magnitude)
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_max (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_max(const dspf_vector *v, dspf_vector *result);

/**
 * Smallest sample. Form of v.
 *   real     NaN and samples not below huge are skipped; where only such are left: huge
 *   complex  the first point of smallest squared magnitude, rated as in dsps_max, copied as it is
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_min (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_min(const dspf_vector *v, dspf_vector *result);

/**
 * Sum of the squares of the clamped samples, or of re^2 + im^2 of the clamped parts.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_magsq_sum (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_magsq_sum(const dspf_vector *v, dspf_vector *result);

/**
 * Root mean square: the square root of dsps_magsq_sum divided by n.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_rms (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_rms(const dspf_vector *v, dspf_vector *result);

/**
 * Variance of a population, from the sums S1 of d and S2 of d^2, d being the clamped deviations from a shift point c:
 * c = (v[n/2] + v[0] + v[n-1]) * 0.3333333333333333.
 *   real     S2 / n - (S1 / n)^2, the divisions being products with 1.0 / n; rounding may leave it just below 0.0
 *   complex  the variance of the real parts plus that of the imaginary parts, each about its own shift point
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_pop_var (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_pop_var(const dspf_vector *v, dspf_vector *result);

/**
 * Standard deviation of a population: the square root of dsps_pop_var, NaN where rounding left that below 0.0.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_pop_stddev (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_pop_stddev(const dspf_vector *v, dspf_vector *result);

/**
 * Variance of a sample: dsps_pop_var times n / (n - 1); of one point, the population's.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_samp_var (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_samp_var(const dspf_vector *v, dspf_vector *result);

/**
 * Standard deviation of a sample: the square root of the product in dsps_samp_var, NaN below 0.0.
 *   returns  0; no points give 0.0
 */
DSP_API int32_t dsps_samp_stddev (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_samp_stddev(const dspf_vector *v, dspf_vector *result);

/**
 * Skewness, from the means m1, m2, m3 of d, d^2, d^3, d being the clamped deviations from (v[n/2] + v[0] + v[n-1]) / 3.
 *   real     (m3 - 3 m2 m1 + 2 m1^3) / (m2 - m1^2)^1.5; over a denominator of 0.0: 0.0 if the numerator is, else huge
 *   returns  0; no points, and samples all alike, give 0.0
 *   fails    v is complex (result untouched); storage
 */
DSP_API int32_t dsps_skew (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_skew(const dspf_vector *v, dspf_vector *result);

/**
 * Excess kurtosis, from the means m2, m4 of d^2, d^4, d being the clamped deviations from the mean of clamped samples.
 *   real     m4 / m2^2 - 3.0; where m2^2 is 0.0: -3.0 if m4 is, else huge
 *   returns  0; no points, and samples all alike, give -3.0
 *   fails    v is complex (result untouched); storage
 */
DSP_API int32_t dsps_excess (const dsp_vector  *v, dsp_vector  *result);
DSP_API int32_t dspfs_excess(const dspf_vector *v, dspf_vector *result);

/**
 * Histogram of the samples, of a complex vector of the magnitudes. Bin k counts the values from lo + k width up to, not
 * including, lo + (k + 1) width: position (x - lo) / width, cut to an integer. The upper edge of the last bin, with ten
 * epsilon to spare, belongs to that bin. What is outside, or NaN, is not counted; a point with a part outside +-huge,
 * or NaN, has the magnitude huge.
 *   params   lo, width: any, in both precisions doubles, converted to the precision of v before use; a width of 0.0
 *            counts only the values equal to lo, in bin 0
 *            bins: number of bins; a negative number counts as none
 *   sizes    result: one real point for each bin, the counts as samples (a float count stops at 16777216)
 *   delta    width
 *   fails    storage; where v and result are one record or share storage, also that of a temporary (result untouched)
 */
DSP_API int32_t dsps_hist (const dsp_vector  *v, dsp_vector  *result, double lo, double width, int32_t bins);
DSP_API int32_t dspfs_hist(const dspf_vector *v, dspf_vector *result, double lo, double width, int32_t bins);

/**
 * Straight line y = a + b x through n points by least squares (N. R. Draper, H. Smith, "Applied Regression Analysis",
 * chapter 1), with all that is usually asked of it. Two points have no deviation to judge them by: what rests on s is
 * unbounded then. A ratio over a deviation of 0 is huge with the sign of its numerator, and 0 if that is 0.
 * mx and my are the means, Sxx, Syy and Sxy the sums of (x - mx)^2, (y - my)^2 and (x - mx)(y - my), all about the means
 * and in double in both precisions; t is what |Student's t| of n - 2 degrees of freedom stays below with probability 0.95.
 *   result    0  a = my - b mx, the intercept
 *             1  b = Sxy / Sxx, the slope
 *             2  standard error of a: sa = s sqrt(1 / n + mx^2 / Sxx); n = 2: huge
 *             3  standard error of b: sb = s / sqrt(Sxx); n = 2: huge
 *             4  correlation: r = Sxy / sqrt(Sxx Syy); 0 where all y are alike
 *             5  determination: r^2
 *             6  residual standard deviation: s = sqrt(sum of (y - a - b x)^2 / (n - 2)); n = 2: huge
 *             7  t value of a: a / sa; n = 2: 0
 *             8  t value of b: b / sb; n = 2: 0
 *             9  F value: b Sxy / s^2, of 1 and n - 2 degrees of freedom; n = 2: 0
 *            10  mean of x: mx
 *            11  mean of y: my
 *            12  standard deviation of x: sqrt(Sxx / (n - 1))
 *            13  standard deviation of y: sqrt(Syy / (n - 1))
 *            14  covariance: Sxy / (n - 1)
 *            15  lower 95 % bound of a: a - t sa; n = 2: -huge
 *            16  upper 95 % bound of a: a + t sa; n = 2: huge
 *            17  lower 95 % bound of b: b - t sb; n = 2: -huge
 *            18  upper 95 % bound of b: b + t sb; n = 2: huge
 *            19  n (a float is exact to 16777216)
 *   params   x: may be null; x is then 0, delta, 2 delta ... with y's delta. Nothing is clamped: a NaN or an infinity makes
 *            what depends on it NaN
 *   sizes    result: 20 real points
 *   alias    the result may be x or y, or share storage with one
 *   fails    a complex input, unequal point counts, fewer than 2 points, x all alike (result untouched); storage
 */
DSP_API int32_t dsps_lin_regres2 (const dsp_vector  *x, const dsp_vector  *y, dsp_vector  *result);
DSP_API int32_t dspfs_lin_regres2(const dspf_vector *x, const dspf_vector *y, dspf_vector *result);

/**
 * The first two values of dsps_lin_regres2: intercept and slope.
 *   sizes    result: 2 real points
 *   params, alias, fails  as dsps_lin_regres2
 */
DSP_API int32_t dsps_lin_regres (const dsp_vector  *x, const dsp_vector  *y, dsp_vector  *result);
DSP_API int32_t dspfs_lin_regres(const dspf_vector *x, const dspf_vector *y, dspf_vector *result);

/* ------------------------------------------------------------------------------------------------------------------
 * Peak search
 * ------------------------------------------------------------------------------------------------------------------ */

/** Flags of dsps_peak: where to look, and one refinement. Bits not named here are ignored. */
enum {
  DSP_PEAK_PARABOLIC = 0x0100,       /**< parabola through the sample and its neighbours */
  DSP_PEAK_GAUSS = 0x0200,           /**< Gaussian lobe through two samples */
  DSP_PEAK_GAUSS_CORRECTED = 0x0300, /**< the same, its offset corrected for the shape of the lobe */
  DSP_PEAK_REFINEMENT = 0x0700,      /**< mask of the refinement: 0 none, the three above, all else refused */
  DSP_PEAK_AT_INDEX = 0x1000,        /**< take the sample at the given index, do not search */
  DSP_PEAK_MINIMUM = 0x2000          /**< search the smallest sample instead of the largest */
};

/**
 * Height and position of the largest (or smallest) sample, refined between samples on request. Result sample 0 is the
 * height, sample 1 the position as a fractional index, not multiplied by delta.
 *   real     samples are compared as they are; the first of equals wins, a NaN replaces the best so far and is replaced
 *            by the sample after it; where none lies above -huge (for the minimum: below huge) the first is taken
 *   complex  the same on squared magnitudes, which the height then is; a point with a part outside +-huge, or NaN,
 *            counts as huge
 *   params   flags: DSP_PEAK_...
 *            index: for DSP_PEAK_AT_INDEX, brought into 0 .. points - 1
 *   refine   parabolic: y0, y1, y2 at k - 1, k, k + 1 give a = (y2 - y0) / 2 and b = (y2 - 2 y1 + y0) / 2; position
 *            k - a / 2b, height y1 - a^2 / 4b, not finite on a flat top (b = 0); none at the first and the last sample
 *            Gaussian: from the pair ya, yb at k, k + 1 that encloses the peak, the offset
 *            d = 0.792233201343665 ln(yb / ya), if corrected times 1 - 0.02036 (d^2 - 0.25), plus 0.5; position k + d,
 *            height ya exp(0.6260852964868817 d^2), or if yb is larger yb exp(0.6260852964868817 (1 - d)^2);
 *            none for fewer than two points
 *   sizes    result: 2 points, real; no points in v give (0, 0)
 *   delta    result's is left as it was; it becomes 1.0 where v itself is the result
 *   alias    v and result may be one record or share storage
 *   returns  0; -1 with the result written if the Gaussian offset left -0.5 .. 1.5 (or is NaN), taken then as 1.5 where
 *            it was above and as -0.5 otherwise
 *   fails    a refinement of 0x400 or more (result untouched, also without points); storage
 */
DSP_API int32_t dsps_peak (const dsp_vector  *v, dsp_vector  *result, uint32_t flags, int32_t index);
DSP_API int32_t dspfs_peak(const dspf_vector *v, dspf_vector *result, uint32_t flags, int32_t index);

/* ------------------------------------------------------------------------------------------------------------------
 * Polynomials
 *
 * A polynomial is the vector of its coefficients, real or complex; coefficient k multiplies x^k, so that the constant comes
 * first. Coefficients 0.0 at the end only stand for a higher degree. delta means nothing here.
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Value of a polynomial at every point of x.
 *   real     both real: Horner's rule with its rounding errors carried along (Graillat, Langlois and Louvet, Jpn. J. Ind.
 *            Appl. Math. 26, 191-214, 2009): as good as evaluated in twice the precision and rounded once. The twin computes
 *            in double and rounds once.
 *   complex  the same for points (Graillat and Menissier-Morain, Inform. and Comput. 216, 57-71, 2012), also where only one
 *            of the two is complex
 *   sizes    result: the points of x; complex if p or x is. A polynomial without coefficients is 0.0 everywhere
 *   delta    of x
 *   alias    result may be p or x, or share storage with them
 *   fails    storage
 */
DSP_API int32_t dsps_peval (const dsp_vector  *p, const dsp_vector  *x, dsp_vector  *result);
DSP_API int32_t dspfs_peval(const dspf_vector *p, const dspf_vector *x, dspf_vector *result);

/**
 * All complex roots of a polynomial, each as often as it occurs. Found by the Ehrlich-Aberth iteration, in both precisions
 * ended with 106 bits and rounded once: the roots of the coefficients as they are given, correct to an ulp or two of the
 * larger part where rounding all coefficients by 2^-90 would not move them farther. A part below 2^-90 of the magnitude is
 * 0.0. Approximations that 106 bits cannot tell from one multiple root are made equal. The time grows with the square of the
 * degree.
 *   real     (or complex with all imaginary parts 0.0) real roots have the imaginary part 0.0, the others come as pairs that
 *            are conjugate to the last bit
 *   sizes    roots: complex, one point for each degree: coefficients 0.0 at the end do not count, those at the beginning
 *            give roots (0.0, 0.0). A constant, 0.0 everywhere and no points: none
 *   order    of rising real parts; where these are equal, of rising magnitude of the imaginary part, the negative one first
 *   keeps    the delta of roots
 *   alias    roots may be p or share its storage
 *   fails    a coefficient that is not finite, no convergence, a root beyond the range of the precision (all of these:
 *            roots untouched); storage
 */
DSP_API int32_t dsps_proots (const dsp_vector  *p, dsp_vector  *roots);
DSP_API int32_t dspfs_proots(const dspf_vector *p, dspf_vector *roots);
/** dsps_proots in place: v, the coefficients, becomes the roots. */
DSP_API int32_t dspi_proots (dsp_vector  *v);
DSP_API int32_t dspfi_proots(dspf_vector *v);

/**
 * One real root of a real polynomial, the one that is reached from a start value: by Newton's method with its steps
 * halved until |p| falls, or, on the slow way to a multiple root, multiplied as long as it falls further (after Madsen, BIT
 * 13, 71-75, 1973), with 106 bits and rounded once; a multiple root is as accurate as in dsps_proots. Where it ends without
 * a root, as between two extrema that do not cross zero, or takes more than 32 steps and 4 for each degree, the real root
 * nearest to start is taken, the smaller one of two.
 *   params   root: receives the root
 *            start: any finite number
 *   fails    complex p; a coefficient or start not finite; no real root, which includes a constant, 0.0 everywhere too;
 *            no convergence; a root beyond the range of the precision (all of these: root untouched)
 */
DSP_API int32_t dsps_psolve (const dsp_vector  *p, double *root, double start);
DSP_API int32_t dspfs_psolve(const dspf_vector *p, float  *root, float  start);

/**
 * One root of a polynomial, the one that is reached from a start point: as dsps_psolve in the complex plane, p real or
 * complex. A real polynomial does not leave the real axis from a start on it, unless it has no other root there.
 *   params   start: one point; a real one counts as (x, 0)
 *   sizes    root: 1 point, complex
 *   keeps    the delta of root
 *   alias    root may be p or start, or share storage with them
 *   fails    start has not exactly one point; a coefficient or start not finite; a constant; no convergence; a root beyond
 *            the range of the precision (all of these: root untouched); storage
 */
DSP_API int32_t dsps_pcsolve (const dsp_vector  *p, dsp_vector  *root, const dsp_vector  *start);
DSP_API int32_t dspfs_pcsolve(const dspf_vector *p, dspf_vector *root, const dspf_vector *start);

/**
 * Zeros to coefficients, in place: the polynomial with the leading coefficient 1.0 whose roots are the points of v, the
 * inverse of dspi_proots up to a factor. Multiplied out in Leja order (Calvetti and Reichel, BIT 43, 2003), which keeps the
 * intermediate coefficients small, with 106 bits in both precisions, and rounded once.
 *   real     real coefficients
 *   complex  complex coefficients; where every zero is real or has its exact conjugate among the others, as often as itself,
 *            the imaginary parts are 0.0, and dspi_real leaves the real polynomial
 *   sizes    one point more than the zeros; no zeros give the constant 1.0
 *   keeps    form, delta
 *   fails    a zero that is not finite, a coefficient beyond the range of the precision (v untouched); storage
 */
DSP_API int32_t dspi_pztoc (dsp_vector  *v);
DSP_API int32_t dspfi_pztoc(dspf_vector *v);

/* ------------------------------------------------------------------------------------------------------------------
 * Signal generators
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * For all generators: they fill a vector whose points, form and delta the caller has set, and keep those. The first
 * sample stands at time 0, sample k at k * delta. Storage that suffices is filled in place; a view gets a fresh block.
 * Parameters are double in both precisions.
 *   fails    storage
 */

/**
 * Complex exponential: point k is (cos(w k + phase), sin(w k + phase)) with w = 2 pi delta frequency. A real vector
 * receives the cosine, exactly as from dspc_cos.
 *   params   frequency: cycles per unit of delta (Hz where delta is in seconds), of either sign; phase: radians
 *   state    none. Every 256th sample is computed from the cosine and the sine of its own angle, the others by turning
 *            the one before by w, which errs by up to about 256 epsilon. The angles are double in both precisions; the
 *            twin turns in float
 */
DSP_API int32_t dspc_cexp (dsp_vector  *v, double frequency, double phase);
DSP_API int32_t dspfc_cexp(dspf_vector *v, double frequency, double phase);

/** Cosine: the real parts of dspc_cexp. A complex vector receives them with imaginary parts 0.0. */
DSP_API int32_t dspc_cos (dsp_vector  *v, double frequency, double phase);
DSP_API int32_t dspfc_cos(dspf_vector *v, double frequency, double phase);

/**
 * Straight line from `offset` with the given slope per unit of delta, as a running sum: each sample is the one before
 * plus slope * delta, which is computed in double, rounded once to the precision of the samples and added in it. Over
 * n samples the sum may therefore leave the line by about n epsilon of its value. A complex vector receives the line
 * with imaginary parts 0.0.
 */
DSP_API int32_t dspc_line (dsp_vector  *v, double slope, double offset);
DSP_API int32_t dspfc_line(dspf_vector *v, double slope, double offset);

/** Distributions of dspc_rand. */
enum {
  DSP_RAND_UNIFORM = 0,     /**< real: -1 .. below 1; complex: inside the unit circle */
  DSP_RAND_GAUSS = 1,       /**< mean 0, variance 1; complex: both parts, independent of each other */
  DSP_RAND_EXPONENTIAL = 2, /**< mean 1, real vectors only */
  DSP_RAND_LAPLACE = 3      /**< exponential with a random sign, variance 2, real vectors only */
};

/**
 * White noise: every sample drawn on its own from one distribution, from a variate of 60 random bits (twin: 30).
 *   params   kind: DSP_RAND_*
 *   state    one random source per precision, which dspi_shuffle shares; seeded at its first use, never the same way
 *            twice, and not by the caller. Its lock is held for the whole fill
 *   fails    a kind that does not exist, or not for complex vectors: the storage is sized, the samples are not written
 */
DSP_API int32_t dspc_rand (dsp_vector  *v, int32_t kind);
DSP_API int32_t dspfc_rand(dspf_vector *v, int32_t kind);

/* ------------------------------------------------------------------------------------------------------------------
 * Averaged spectra
 * ------------------------------------------------------------------------------------------------------------------ */

/** What dsph_fft and dsph_dft compute: DSP_SPECTRUM_* together with averaging flags, DSP_AVG_* times 256. */
enum {
  DSP_SPECTRUM_AVERAGE = 1,     /**< average the frames; without it the two further vectors are not used */
  DSP_SPECTRUM_TWO_SIDED = 2,   /**< all N bins of a real input, frequency 0 in the middle, at index N/2 */
  DSP_SPECTRUM_SUM = 4,         /**< plain sums: times N, which takes the transform's 1/N back; the phase from the middle
                                     of the frame, as with DSP_SPECTRUM_CENTRED */
  DSP_SPECTRUM_NO_WINDOW = 8,   /**< apply no window; a type other than 0 still sets the origin of the phase */
  DSP_SPECTRUM_CENTRED = 16,    /**< measure phase from the middle of the frame without a window too, as it is with one */
  DSP_SPECTRUM_RAW = 128,       /**< dspi_dft of the frame and nothing else: two-sided, frequency 0 first */
  DSP_SPECTRUM_AVG_FACTOR = 256 /**< what the DSP_AVG_* flags are multiplied by */
};

/**
 * Spectrum of one frame of N points, of any length, and on request the average over the frames so far. dsph_fft and
 * dsph_dft are the same operation. One frame, unless DSP_SPECTRUM_RAW:
 *   1. window with unity mean as dspi_window, which rotates the frame by half its length; where there is no window
 *      (DSP_SPECTRUM_NO_WINDOW), or Uniform, dspi_swap_halves2 for a type other than 0 and with DSP_SPECTRUM_SUM or
 *      DSP_SPECTRUM_CENTRED, and nothing otherwise
 *   2. times N with DSP_SPECTRUM_SUM; otherwise times 2 without DSP_SPECTRUM_TWO_SIDED, for a complex frame too
 *   3. a real frame without DSP_SPECTRUM_TWO_SIDED: dspi_rdft, N/2 + 1 bins; otherwise dspi_dft and dspi_swap_halves
 * A real sine of amplitude A in a bin's centre thus shows as a bin of magnitude A; frequency 0 and, for even N, the last
 * bin are doubled with the others.
 *
 * With DSP_SPECTRUM_AVERAGE the spectrum then enters the accumulator through dsph_avg with weight -1 and bits 8 to 15
 * of the flags; DSP_AVG_SYNCHRONOUS takes the strongest bin for its reference. y becomes a copy of the accumulator.
 *   params   type: DSP_WINDOW_*; flags: see above
 *            accumulator: in and out; what it holds before the first frame is dropped
 *            state: (frames so far, average length), as two real points. Empty or zeros: the next frame is the first,
 *            and the average linear; the host writes the length for DSP_AVG_EXPONENTIAL. Both may be null without
 *            DSP_SPECTRUM_AVERAGE
 *   sizes    y (and the accumulator): the bins; complex unless the averaging flags make them real
 *   delta    of y: 1 / (N delta)
 *   alias    y may be x or the accumulator, which may be x
 *   state    brought to two real points, by zeros or by cutting; the count, which one that is negative or NaN starts
 *            afresh, goes up by one with each frame that succeeds, to 2^31 - 1 at the most (twin: 2^24)
 *   fails    averaging without accumulator or state, or with a state that shares storage with x, y or the accumulator
 *            (everything untouched); what dspi_window refuses; what dsph_avg refuses, as a frame of another number of bins
 *            than those before (accumulator and count are kept); storage
 */
DSP_API int32_t dsph_fft (const dsp_vector  *x, dsp_vector  *y, dsp_vector  *accumulator, dsp_vector  *state,
                           uint32_t type, uint32_t flags);
DSP_API int32_t dspfh_fft(const dspf_vector *x, dspf_vector *y, dspf_vector *accumulator, dspf_vector *state,
                           uint32_t type, uint32_t flags);
DSP_API int32_t dsph_dft (const dsp_vector  *x, dsp_vector  *y, dsp_vector  *accumulator, dsp_vector  *state,
                           uint32_t type, uint32_t flags);
DSP_API int32_t dspfh_dft(const dspf_vector *x, dspf_vector *y, dspf_vector *accumulator, dspf_vector *state,
                           uint32_t type, uint32_t flags);

/** How dsph_avg takes the current result c into the accumulator A: one mode, and any of the flags below it. */
enum {
  DSP_AVG_LAST = 0,         /**< A = c */
  DSP_AVG_MEAN = 1,         /**< A moves toward c by the weight w: dspb_avg_add */
  DSP_AVG_MAX = 2,          /**< A = max(A, c) by dspb_max: maximum hold */
  DSP_AVG_MIN = 3,          /**< A = min(A, c) by dspb_min: minimum hold */
  DSP_AVG_HARMONIC = 4,     /**< the mean of the reciprocals, by dspi_recip before and after */
  DSP_AVG_GEOMETRIC = 5,    /**< the mean of the logarithms, by dspi_log before and dspi_exp after */
  DSP_AVG_SYNCHRONOUS = 6,  /**< the mean of c turned so that its reference bin has the phase of A's: lines locked to that
                                 bin add up in phase, noise and other lines average out without a trigger */
  DSP_AVG_EXPONENTIAL = 16, /**< weight 1/length from frame number `length` on */
  DSP_AVG_POWER = 32,       /**< first replace c by |c|^2 (dspu_magsq), ... */
  DSP_AVG_MAGNITUDE = 64,   /**< ... then c by |c| (dspu_mag), ... */
  DSP_AVG_LOG = 128         /**< ... then c by its natural logarithm (dspi_log) */
};

/**
 * Takes the result of one frame into a running average. The first frame (count 1 or less) sets A = c, whatever the mode;
 * later ones follow the mode, and a mode above 6 leaves A as it is.
 *   weight w weight where that is >= 0; otherwise 1/length where DSP_AVG_EXPONENTIAL is set, length > 0 and
 *            count >= length; otherwise 1/count
 *   synchronous  after the first frame, c is multiplied by A[r] / |A[r]| * conj(c[r]) / |c[r]| first, where A and c are
 *            real a sign; where A[r] or c[r] is 0, or not finite, it is left alone. r = reference; for a negative one r is
 *            the strongest bin of A, the first of equals. The average thus has the phase of the first frame
 *   params   flags: DSP_AVG_*, bits above are ignored
 *            count: the number of this frame, 1 for the first
 *            work: a record to compute in, so that repeated calls need not allocate; overwritten where one is needed. Where
 *            it is null, or shares storage with the current result or A, a temporary takes its place
 *   sizes    A: the points of c; complex if A or the prepared c is. The first frame and DSP_AVG_LAST: the form of c
 *   delta    of A: of c in the first frame and for DSP_AVG_LAST, then the mean of the two
 *   alias    A may be the current result
 *   fails    A of another length than c (but for the first frame, DSP_AVG_LAST and modes above 6), for
 *            DSP_AVG_SYNCHRONOUS after the first frame a reference beyond the last bin: A is untouched; storage
 */
DSP_API int32_t dsph_avg (const dsp_vector  *current, dsp_vector  *accumulator, dsp_vector  *work, uint32_t flags,
                           int32_t count, int32_t reference, double weight, double length);
DSP_API int32_t dspfh_avg(const dspf_vector *current, dspf_vector *accumulator, dspf_vector *work, uint32_t flags,
                           int32_t count, int32_t reference, float  weight, float  length);

/* ------------------------------------------------------------------------------------------------------------------
 * FIR design
 * ------------------------------------------------------------------------------------------------------------------ */

/**
 * Designs of dspc_fir. Frequencies are in cycles per sample, 0.5 is half the sampling rate; N is the number of taps, d the
 * distance of a tap from the centre (N-1)/2, x = 2 pi fc d with the cut-off fc = p1, sinc x = sin x / x (1 at 0). No
 * window is applied.
 */
enum {
  DSP_FIR_BAND_PASS = 0,        /**< centre f0 = p1, bandwidth p2: the low-pass of cut-off p2/2, times 2 cos(2 pi f0 d) */
  DSP_FIR_BAND_STOP = 1,        /**< 1 at the centre less the band-pass; odd N only */
  DSP_FIR_HIGH_PASS = 2,        /**< 1 at the centre less the low-pass; odd N only */
  DSP_FIR_LOW_PASS = 3,         /**< 2 fc sinc x: the ideal response, truncated */
  DSP_FIR_SINH = 4,             /**< low-pass sinh(sqrt(a^2 - v^2/4)) with v = 4 a d / (N+1), beyond the zero of the root
                                     sin(sqrt(v^2/4 - a^2)); unit sum. Shape a = p1. 0 chooses it by N: (N+1) pi/2 for odd
                                     N, N pi/2 + 1.4 for even, some shorter ones apart; for N = 5, 7, 9, 11, 13 the taps
                                     are then the coefficients of a cosine-sum window, whose sum is 1 as they stand */
  DSP_FIR_DELAYED_LOW_PASS = 5, /**< the low-pass delayed by p2 samples more (less where negative), unit sum */
  DSP_FIR_DIFFERENTIATOR = 6,   /**< (cos x - sinc x) / x * 2 pi fc * 2 fc to the right of the centre, its negative to
                                     the left: the slope per sample up to fc */
  DSP_FIR_GAUSS = 7,            /**< low-pass exp(-d^2 / (2 s^2)), s = sqrt(ln 2) / (2 pi fc): half power at fc; unit sum */
  DSP_FIR_HILBERT = 8,          /**< 2 fc (cos x - 1) / x to the right of the centre, its negative to the left: a quarter
                                     turn up to fc */
  DSP_FIR_SINH_RATIO = 9,       /**< as type 4 with sinh(u) / u, sin(u) / u and v = 4 sqrt(a^2 + pi^2) d / (N+1): the
                                     spectrum of a Kaiser window; 0 chooses a = 1.610830415 N + 1.386795655, for
                                     N = 3, 5, 7, 9, 11 apart; unit sum */
  DSP_FIR_RAMP = 10             /**< (sinc x + (cos x - 1) / x^2) (2 fc)^2: the gain grows with |frequency| up to fc, by 2
                                     a cycle per sample */
};

/**
 * The taps of a filter design, for as many taps as the vector has points. They are real; a complex vector receives them
 * with imaginary parts 0.0. Unit sum: divided by the sum of the taps, unless that is exactly 0.
 *   params   type: DSP_FIR_*
 *            p1, p2: the design's, double in both precisions; those it does not name are ignored. Nothing is restricted
 *   keeps    points and delta (which is not read); form
 *   state    none. The twin computes everything in double and rounds every tap once; where a fraction loses its digits,
 *            x^2 < 12 epsilon of the precision, types 8 and 10 take -1/2 for (cos x - 1) / x^2
 *   fails    storage; an unknown type, and an even N (0 too) with types 1 and 2: the storage is sized for real taps then
 *            or larger, with any contents, and the vector is real; type 7 with a cut-off that is NaN or infinite: likewise
 */
DSP_API int32_t dspc_fir (dsp_vector  *v, int32_t type, double p1, double p2);
DSP_API int32_t dspfc_fir(dspf_vector *v, int32_t type, double p1, double p2);

/**
 * Sets of dspc_fir2, by the number of taps of the whole filter. Each holds only half of them, from the outermost up to
 * the centre one: the filter is the set, and the set again backwards without the centre. The gain for a constant is 1 to
 * within 6e-4. Below are gains of the whole filter at frequencies in cycles per sample.
 */
enum {
  DSP_FIR_SET_23 = 100,  /**< 12 points: falls to 0.50 at 0.068 and 0.084 at 0.235, then rises to 1.99 at 0.5 */
  DSP_FIR_SET_39 = 101,  /**< 20 points: low-pass, within 1 % of 1 up to 0.200, below -80 dB from 0.303 */
  DSP_FIR_SET_9 = 102,   /**< 5 points: lifts high frequencies, 1.11 at 0.25, 1.42 at 0.5 */
  DSP_FIR_SET_75 = 103,  /**< 38 points: half-band low-pass, within 1 % up to 0.223, below -80 dB from 0.287 */
  DSP_FIR_SET_121 = 104, /**< 61 points: low-pass, within 1 % up to 0.215, below -80 dB from 0.250 */
  DSP_FIR_SET_189 = 105  /**< 95 points: low-pass, within 1 % up to 0.227, below -80 dB from 0.250 */
};

/**
 * A fixed set of taps. A complex vector receives them with imaginary parts 0.0.
 *   params   set: DSP_FIR_SET_*
 *   sizes    the set's points
 *   keeps    form, delta (which is not read)
 *   fails    an unknown set: the vector is untouched; storage
 */
DSP_API int32_t dspc_fir2 (dsp_vector  *v, int32_t set);
DSP_API int32_t dspfc_fir2(dspf_vector *v, int32_t set);

/* ------------------------------------------------------------------------------------------------------------------
 * FIR filtering and decimation
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * For the block operations, dspd_: a signal goes through in blocks of any sizes, none included, and comes out as it would
 * from one call.
 *   state    a record of the caller's that carries what one block leaves for the next; one for each stream, initialised
 *            and empty before the first block. Every call brings it to its length, by zeros or a cut at its end, and to
 *            the input's form (imaginary parts dropped, or 0.0) and delta. May be null: nothing is carried then
 *   alias    output, input and the other records may be one or share storage: the output is then built aside and copied
 *            in at the end. An output that is the state takes its place
 *   fails    storage: an output apart from the input is then empty or half computed, one that is the input, or shares
 *            storage with it, is as it was; the state has at most its length, form and delta, not the block. Where only the
 *            copy at the end fails, as such an output is a view or too small, the output is empty and the state has the
 *            block
 */

/**
 * Finite impulse response filter: y[n] is the sum over k of taps[k] * x[n - k], where x[-1], x[-2] .. are the last points
 * of the earlier blocks, or 0.0.
 *   taps     N points, real or complex, their delta of no account; fewer than 1: the output is a copy of the input and
 *            the state is untouched
 *   method   real taps, at least 46 (36 for complex input), on blocks of at least N - 1 points are applied by transforms;
 *            the result is the same to rounding, relative to the block as a whole, and so are the results of different
 *            blockings. Otherwise the terms are summed one by one, with the same bits whatever the blocks. The last taps'
 *            spectrum is kept for the next call and serves taps of the same delta that differ from its own by no more
 *            than |taps[0]| * 5 epsilon; filters by transforms take turns when called from several threads
 *   sizes    output: the points of the input, complex if the input or the taps are
 *   delta    the input's
 *   state    the last N - 1 points of the input stream, oldest first
 */
DSP_API int32_t dspd_fir (const dsp_vector  *in, dsp_vector  *out, const dsp_vector  *taps, dsp_vector  *state);
DSP_API int32_t dspfd_fir(const dspf_vector *in, dspf_vector *out, const dspf_vector *taps, dspf_vector *state);

/**
 * Keeps every factor-th point, from point s on. Nothing is filtered: what the signal holds above the new rate's half is
 * folded down unless dspd_fir has removed it.
 *   params   factor: below 1 counts as 1
 *            offset: the state, one point: s for this block, and after it the s of the next. Its first value is rounded
 *            (half up); negative, NaN or no offset: 0
 *   sizes    output: the points s, s + factor, s + 2 factor .. below the input's count, none where s lies beyond; the
 *            form of the input
 *   delta    the input's times factor
 */
DSP_API int32_t dspd_deci (const dsp_vector  *in, dsp_vector  *out, int32_t factor, dsp_vector  *offset);
DSP_API int32_t dspfd_deci(const dspf_vector *in, dspf_vector *out, int32_t factor, dspf_vector *offset);

/**
 * dspd_fir for a symmetric filter, given by the first half of its taps, outermost first and the centre last, as dspc_fir2
 * yields them: the filter is the half, and the half again backwards without the centre. Samples that share a tap are added
 * before the multiplication. Complex taps are mirrored as they are, not conjugated.
 *   half     L points, real or complex, their delta of no account; fewer than 1: the output is a copy of the input and the
 *            state is untouched
 *   method   always term by term, with the same bits whatever the blocks. Where dspd_fir works by transforms, it is faster
 *            on the filter written out; for a decimation dspd_sfir_deci computes only what is kept
 *   sizes    output: the points of the input, complex if the input or the taps are
 *   delta    the input's
 *   state    the last 2 L - 2 points of the input stream, oldest first
 */
DSP_API int32_t dspd_sfir (const dsp_vector  *in, dsp_vector  *out, const dsp_vector  *half, dsp_vector  *state);
DSP_API int32_t dspfd_sfir(const dspf_vector *in, dspf_vector *out, const dspf_vector *half, dspf_vector *state);

/**
 * dspd_sfir followed by dspd_deci, computing only the points that are kept: the same bits as the two in turn, whatever the
 * blocks.
 *   params   half: as dspd_sfir; fewer than 1 point: dspd_deci alone, the state is untouched
 *            factor, offset: as dspd_deci
 *   sizes    output: the points of dspd_deci; complex if the input or the taps are
 *   delta    the input's times factor
 *   state    that of dspd_sfir; what is carried of the decimation is the offset
 *   fails    state and offset one record or sharing storage: nothing is touched; storage
 */
DSP_API int32_t dspd_sfir_deci (const dsp_vector  *in, dsp_vector  *out, const dsp_vector  *half, int32_t factor,
                                dsp_vector  *state, dsp_vector  *offset);
DSP_API int32_t dspfd_sfir_deci(const dspf_vector *in, dspf_vector *out, const dspf_vector *half, int32_t factor,
                                dspf_vector *state, dspf_vector *offset);

/**
 * Hardware filter model: the decimating front end of an instrument. Each of the stages, one for each octave, is a fixed
 * filter as dspd_sfir applies it and a decimation by two from the stream's first point on.
 *   params   set: DSP_FIR_SET_*, the filter of every stage
 *            octaves: the number of stages, 0 .. 30
 *   sizes    output: after n points of a stream, n / 2^octaves have come, rounded up; form of the input. 0 octaves: a copy
 *   delta    the input's times 2^octaves
 *   state    octaves (2 L - 1) points, L being the set's: by stages, where the next kept point lies in its next block (0 or
 *            1) and the last 2 L - 2 points of its input
 *   fails    an unknown set, another number of octaves: nothing is touched; storage
 */
DSP_API int32_t dspd_hwfilt (const dsp_vector  *in, dsp_vector  *out, int32_t set, int32_t octaves, dsp_vector  *state);
DSP_API int32_t dspfd_hwfilt(const dspf_vector *in, dspf_vector *out, int32_t set, int32_t octaves, dspf_vector *state);

/**
 * Multiplies a spectrum by the frequency response of dspd_hwfilt's chain, or takes that response out of a spectrum that
 * was measured behind it. The response is the zero-phase one, a real number that falls below 0 in places: what remains is
 * the chain's delay, (L - 1)(2^octaves - 1) samples of its input. It is the product of the stages' responses, which stage
 * s (from 0) has at its rate, sample_rate / 2^s; what folds down from other frequencies is no part of it.
 *   real     a sample is multiplied or divided, as both parts of a point are
 *   params   set, octaves: those of dspd_hwfilt; 0 octaves: the response is 1
 *            sample_rate: of the chain's input, in the unit of the spectrum's delta; finite and above 0
 *            compensate: 0 multiplies. 1 divides within the passband and leaves the bins beyond it as they are. The
 *            passband ends before the last stage's filter falls to half power: at 0.092, 0.456, 0.5, 0.486, 0.45, 0.466 of
 *            the output rate, sample_rate / 2^octaves, for the sets in their order
 *   bins     bin k stands at k * delta; above half the output rate that rate is subtracted, for the second half of a
 *            two-sided spectrum
 *   keeps    points, form, delta
 *   fails    a parameter out of its range: the spectrum is untouched
 */
DSP_API int32_t dspi_hwfilt (dsp_vector  *v, int32_t set, int32_t octaves, double sample_rate, int32_t compensate);
DSP_API int32_t dspfi_hwfilt(dspf_vector *v, int32_t set, int32_t octaves, float  sample_rate, int32_t compensate);

/* ------------------------------------------------------------------------------------------------------------------
 * Resampling
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * A resampling kernel is a real vector of N points, N even: point 0 holds K, the number of input samples that one output
 * is made of; points 1 .. N - 1 hold the kernel over these K samples, tabulated at N - 2 equal steps, from the angle -pi
 * over 0 at point N / 2 to pi. One turn of the angle is K samples: a term cos(m * angle) of coefficient c passes the
 * frequency m / K of the input's rate with a gain of c * K / 2, and the constant c passes 0 with a gain of c * K.
 */

/**
 * Kernels from coefficients: _cos the cosine series c1 + c2 cos(angle) + c3 cos(2 angle) .., _pcos the polynomial
 * c1 + c2 u + c3 u^2 .. in u = cos(angle). In both precisions computed in double and rounded once.
 *   params   kernel: its points on entry are N, its complex flag asks for a complex kernel with imaginary parts 0.0
 *            coefficients: K, c1, c2 ..; real. Below 2 points, or N below 2: the kernel is zeros but for point 0, K
 *   sizes    exactly N points
 *   keeps    the kernel's points, form, delta
 *   alias    kernel and coefficients may be one record or share storage
 *   fails    N of 3 and more is odd, complex coefficients (the kernel is sized); storage
 */
DSP_API int32_t dspc_rsmp_cos (dsp_vector  *kernel, const dsp_vector  *coefficients);
DSP_API int32_t dspfc_rsmp_cos(dspf_vector *kernel, const dspf_vector *coefficients);
DSP_API int32_t dspc_rsmp_pcos (dsp_vector  *kernel, const dsp_vector  *coefficients);
DSP_API int32_t dspfc_rsmp_pcos(dspf_vector *kernel, const dspf_vector *coefficients);

/**
 * A built-in kernel, as dspc_rsmp_pcos (sets 0 and 1) or dspc_rsmp_cos makes it from the set's coefficients. Their gains
 * are not normalised; frequencies are in units of the input's rate:
 *   set      K    response
 *     0      8    low-pass without overshoot: 0 dB at 0, -1.4 dB at 0.1, -5.8 dB at 0.2, -41 dB at 0.5
 *     1     13    -0.25 dB (0.97138) at 0, within 0.26 dB to 0.3, -7.3 dB at 0.4, -29 dB at 0.5
 *     2      8    as set 0 within 0.6 dB up to 0.5
 *     3     10    flat: 0.99920 at 0, within 0.26 dB to 0.3, -3 dB at 0.4, -11 dB at 0.5, -62 dB at 0.7
 *     4     13    band-pass: 0 dB at 0, +21.5 dB near a quarter, -23 dB at 0.5
 *   params   kernel: as dspc_rsmp_cos
 *            set: 0 .. 4
 *   fails    set above 4 (the kernel is sized); as dspc_rsmp_cos
 */
DSP_API int32_t dspc_rsmp (dsp_vector  *kernel, uint32_t set);
DSP_API int32_t dspfc_rsmp(dspf_vector *kernel, uint32_t set);

/**
 * Changes the sampling rate of a stream. Output m, counted from the start of the stream, stands at the position
 * q = m * ratio of the input and is the sum of the K input samples up to q, weighted from the kernel: the sample at
 * distance d before q, 0 <= d < K, by the kernel at d / K of its length. What lies before the stream counts as 0.0. The
 * output is therefore the input K / 2 input samples late. The kernel passes and stops the same frequencies of the input
 * whatever the ratio: for a ratio above 1, apply a low-pass at 0.5 / ratio of the input's rate first (dspd_fir), or what
 * lies above is folded down.
 *   params   mode: 0 takes the tabulated kernel point nearest to the place, 1 interpolates linearly between neighbours
 *            kernel: as above; fewer than 2 points: the output is a copy of the input, the state is untouched
 *            ratio: output spacing over input spacing, that is input rate over output rate; above 0
 *   sizes    after n input points of a stream, in blocks of any sizes, n / ratio outputs have come, rounded up; form of
 *            the input
 *   delta    the input's times ratio
 *   state    K + 2 points: the first three (their real parts) add up to the distance from the next block's start to the
 *            next output in input samples, the others are the last K - 1 input points, oldest first. Positions have no
 *            rounding error from a ratio of 2^-28 on: every blocking gives the same bits, and nothing drifts
 *   fails    ratio negative, 0 or NaN; K, rounded half up, below 1 or not a number; a complex kernel; mode above 1, or
 *            0 for complex input (all of these: everything untouched); more outputs than fit, storage
 */
DSP_API int32_t dspd_rsmp (const dsp_vector  *in, dsp_vector  *out, uint8_t mode, const dsp_vector  *kernel,
                           double ratio, dsp_vector  *state);
DSP_API int32_t dspfd_rsmp(const dspf_vector *in, dspf_vector *out, uint8_t mode, const dspf_vector *kernel,
                           double ratio, dspf_vector *state);

/**
 * dspd_rsmp with a built-in kernel of 1024 steps to an input sample (set 2: 256), that is of 8194, 13314, 2050, 10242,
 * 13314 points for sets 0 .. 4. The kernels are built at their first use and stay for the life of the process.
 *   fails    set above 4 (everything untouched); as dspd_rsmp
 */
DSP_API int32_t dspd_rsmp2 (const dsp_vector  *in, dsp_vector  *out, uint8_t mode, uint32_t set, double ratio,
                            dsp_vector  *state);
DSP_API int32_t dspfd_rsmp2(const dspf_vector *in, dspf_vector *out, uint8_t mode, uint32_t set, double ratio,
                            dspf_vector *state);

/* ------------------------------------------------------------------------------------------------------------------
 * Streaming resampler
 * ------------------------------------------------------------------------------------------------------------------ */

/*
 * Another sampling rate for streams of any length, at a ratio that may change from block to block and a quality that is
 * chosen. A coefficient object holds the kernel: once set up it is only read, and serves any number of channels and
 * threads. Every channel has a state object of its own. Both are plain records: a host makes its own with _init, or lets
 * _alloc make one on the heap. Their memory comes through the storage hooks of their precision.
 *
 * Output m of a stream stands at the position q of the input, the sum of the ratios (output spacing over input spacing,
 * that is input rate over output rate) of the outputs before it, and shows the input at q - D, where the delay D is the
 * same for all of a stream. It is made of the points within length / 2 of q - D, times the ratio where that is above 1:
 * the kernel is then that much longer and its band edge follows the output's rate, so that nothing is folded down. What
 * lies before the stream counts as 0.0. To take the delay out, set the state's offset to D before the first block, and
 * send D zeros after the last one.
 *
 * After n input points, in blocks of any sizes, ceil(n / ratio) outputs have come. Positions are exact to 2^-80 of the
 * input's spacing: every blocking gives the same bits, and nothing drifts.
 */

/** Kernels for dsph_rsmp_coef_setup. The built-in sets have the numbers of dspc_rsmp, 0 .. 4. */
enum {
  DSP_RSMP_KAISER = 16 /**< Kaiser-windowed sinc, of gain 1 for a constant */
};

/** A resampling kernel in double precision. The fields are for dsph_rsmp alone. Zero-filled or passed to _init. */
typedef struct dsp_rsmp_coef {
  dsp_vector bank;  /**< the weights, row by row, for places between two input samples */
  dsp_vector own;   /**< the block that an object made by _alloc lies in */
  double max_ratio; /**< the largest ratio */
  int32_t length;   /**< input points of an output at a ratio up to 1; 0: not set up */
  int32_t steps;    /**< rows to an input sample */
  int32_t span;     /**< the same points at the largest ratio: twice the delay */
} dsp_rsmp_coef;

/** A resampling kernel in single precision; the fields as in dsp_rsmp_coef. */
typedef struct dspf_rsmp_coef {
  dspf_vector bank;
  dspf_vector own;
  double max_ratio;
  int32_t length;
  int32_t steps;
  int32_t span;
} dspf_rsmp_coef;

/** A channel in double precision. The fields are for dsph_rsmp alone. Zero-filled or passed to _init. */
typedef struct dsp_rsmp_state {
  dsp_vector history;   /**< the last points of the input, and room for a part of the next block */
  dsp_vector own;       /**< the block that an object made by _alloc lies in */
  uint64_t position[2]; /**< from the next input point to the next output, in 2^-80 of a sample, low half first */
  int32_t span;         /**< the coefficients' */
  int32_t parts;        /**< 1: the stream is real, 2: complex, 0: nothing has come */
} dsp_rsmp_state;

/** A channel in single precision; the fields as in dsp_rsmp_state. */
typedef struct dspf_rsmp_state {
  dspf_vector history;
  dspf_vector own;
  uint64_t position[2];
  int32_t span;
  int32_t parts;
} dspf_rsmp_state;

/**
 * Makes coefficients that are not set up: _alloc on the heap, _init in the host's record, whose former contents are not
 * looked at (so none that hold storage, nor an object from _alloc).
 *   fails    storage: *coef is null
 */
DSP_API int32_t dsph_rsmp_coef_alloc (dsp_rsmp_coef  **coef);
DSP_API int32_t dspfh_rsmp_coef_alloc(dspf_rsmp_coef **coef);
DSP_API int32_t dsph_rsmp_coef_init (dsp_rsmp_coef  *coef);
DSP_API int32_t dspfh_rsmp_coef_init(dspf_rsmp_coef *coef);

/**
 * Chooses the kernel. DSP_RSMP_KAISER passes up to 0.5 - transition and stops from 0.5 on, in units of the input's rate,
 * or of the output's if that is lower: nothing is folded into the band. Its length is
 * (attenuation - 7.95) / (14.36 * transition) + 1 points, rounded up to a multiple of 16. A built-in set has its K points
 * and its response as dspc_rsmp tells it, in units of the lower rate.
 *   params   kernel: DSP_RSMP_KAISER, or 0 .. 4 for a built-in set
 *            attenuation: of the stop-band in dB, to within 1, 20 .. 200; not used by a built-in set. Single precision has
 *            rounding noise of its own near -140 dB
 *            transition: above 0, below 0.5; not used by a built-in set
 *            max_ratio: the largest ratio the coefficients will be used at; below 1 counts as 1. The delay and the memory
 *            of each channel grow with it
 *            steps: rows of weights to an input sample, up to 65536, between which a cubic is laid; 0: as many as keep
 *            its error below the attenuation (a built-in set: 256). In a table of fewer, the error for a tone at the
 *            frequency f grows with (f / steps)^4
 *   returns  0; to set up anew replaces the kernel: no channel may be running on it
 *   fails    any other kernel, a parameter out of its range or NaN, more than 2^24 points at max_ratio, storage: the
 *            coefficients are as they were
 */
DSP_API int32_t dsph_rsmp_coef_setup (dsp_rsmp_coef  *coef, uint32_t kernel, double attenuation, double transition,
                                      double max_ratio, int32_t steps);
DSP_API int32_t dspfh_rsmp_coef_setup(dspf_rsmp_coef *coef, uint32_t kernel, double attenuation, double transition,
                                      double max_ratio, int32_t steps);

/**
 * Releases what the coefficients hold and makes them as _init does; an object from _alloc is released itself.
 *   returns  0
 */
DSP_API int32_t dsph_rsmp_coef_destroy (dsp_rsmp_coef  *coef);
DSP_API int32_t dspfh_rsmp_coef_destroy(dspf_rsmp_coef *coef);

/**
 * Makes the state of a stream that has not begun, with offset 0: _alloc on the heap, _init in the host's record, whose
 * former contents are not looked at.
 *   fails    storage: *state is null
 */
DSP_API int32_t dsph_rsmp_state_alloc (dsp_rsmp_state  **state);
DSP_API int32_t dspfh_rsmp_state_alloc(dspf_rsmp_state **state);
DSP_API int32_t dsph_rsmp_state_init (dsp_rsmp_state  *state);
DSP_API int32_t dspfh_rsmp_state_init(dspf_rsmp_state *state);

/**
 * Back to the beginning of a stream: offset 0, zeros before the next block. The storage is kept.
 *   returns  0
 */
DSP_API int32_t dsph_rsmp_state_reset (dsp_rsmp_state  *state);
DSP_API int32_t dspfh_rsmp_state_reset(dspf_rsmp_state *state);

/**
 * Releases what the state holds and makes it as _init does; an object from _alloc is released itself.
 *   returns  0
 */
DSP_API int32_t dsph_rsmp_state_destroy (dsp_rsmp_state  *state);
DSP_API int32_t dspfh_rsmp_state_destroy(dspf_rsmp_state *state);

/**
 * The offset: how many input samples, and parts of one, the next output stands behind the first point of the next block.
 * Set it to align a stream by parts of a sample: an offset larger by x gives the outputs that stand x later.
 *   params   offset: 0 .. 2^31. What is got is rounded to a double: the state itself is finer
 *   fails    set: any other offset, or NaN; the state is untouched
 */
DSP_API int32_t dsph_rsmp_state_get_offset (const dsp_rsmp_state  *state, double *offset);
DSP_API int32_t dspfh_rsmp_state_get_offset(const dspf_rsmp_state *state, double *offset);
DSP_API int32_t dsph_rsmp_state_set_offset (dsp_rsmp_state  *state, double offset);
DSP_API int32_t dspfh_rsmp_state_set_offset(dspf_rsmp_state *state, double offset);

/**
 * The next block of a stream.
 *   complex  both parts alike
 *   params   ratio: output spacing over input spacing, above 0, up to the coefficients' max_ratio. It is the kernel's and
 *            the spacing after each output of this block; the first one stands where the ratio before put it
 *   sizes    as dsph_rsmp_get_out_pts tells; the form of the input
 *   delta    the input's times ratio
 *   alias    the output may be the input or share its storage: it is then built aside and copied in at the end
 *   state    the last points of the input, span of them, and the offset. A change of form converts them, another span
 *            cuts them or adds zeros at their beginning. NaN or infinity makes such outputs of all that a point enters
 *   fails    coefficients not set up, a ratio out of its range or NaN (all untouched); more outputs than fit, storage:
 *            the state has not taken the block, an output apart from the input is empty, or else untouched
 */
DSP_API int32_t dsph_rsmp (const dsp_vector  *in, dsp_vector  *out, const dsp_rsmp_coef  *coef, double ratio,
                           dsp_rsmp_state  *state);
DSP_API int32_t dspfh_rsmp(const dspf_vector *in, dspf_vector *out, const dspf_rsmp_coef *coef, double ratio,
                           dspf_rsmp_state *state);

/**
 * The delay D in input samples, the same at every ratio: half the length at max_ratio, a whole number or a half beside one.
 *   fails    coefficients not set up
 */
DSP_API int32_t dsph_rsmp_get_delay_pts (const dsp_rsmp_coef  *coef, double *points);
DSP_API int32_t dspfh_rsmp_get_delay_pts(const dspf_rsmp_coef *coef, double *points);

/**
 * Counts, exact at the state's offset: _in_pts the least input that gives at least out_points outputs, _out_pts the
 * outputs that in_points of input give.
 *   params   ratio: as for dsph_rsmp; a negative count counts as none
 *   fails    ratio negative, 0 or NaN; more points than 2^31 - 1: the result is untouched
 */
DSP_API int32_t dsph_rsmp_get_in_pts (const dsp_rsmp_state  *state, double ratio, int32_t out_points, int32_t *in_points);
DSP_API int32_t dspfh_rsmp_get_in_pts(const dspf_rsmp_state *state, double ratio, int32_t out_points, int32_t *in_points);
DSP_API int32_t dsph_rsmp_get_out_pts (const dsp_rsmp_state  *state, double ratio, int32_t in_points, int32_t *out_points);
DSP_API int32_t dspfh_rsmp_get_out_pts(const dspf_rsmp_state *state, double ratio, int32_t in_points, int32_t *out_points);

/**
 * How many outputs from the next one on contain points from before the next block: the transient of a stream's start, or
 * of a jump in the input.
 *   fails    coefficients not set up, a ratio out of its range; more than 2^31 - 1: the result is untouched
 */
DSP_API int32_t dsph_rsmp_get_settle_pts (const dsp_rsmp_coef  *coef, const dsp_rsmp_state  *state, double ratio,
                                          int32_t *points);
DSP_API int32_t dspfh_rsmp_get_settle_pts(const dspf_rsmp_coef *coef, const dspf_rsmp_state *state, double ratio,
                                          int32_t *points);

/* ------------------------------------------------------------------------------------------------------------------
 * Interpolation and splines
 *
 * Common to the operations on tables (interp, cspline, cspline_2d):
 *   table    abscissae x, finite and strictly increasing, and the values y, real or complex, at them. Complex values are
 *            interpolated part by part. The values at abscissae of the table are returned exactly
 *   places   real, in any order; in rising order each takes constant time, else up to the logarithm of the table's length.
 *            NaN gives NaN
 *   sizes    the points of the places; form of the values
 *   delta    of the places
 *   alias    the result may be any of the inputs, or share storage with one
 *   twin     everything is computed in double and rounded once
 *   fails    x complex, not finite, not strictly increasing or not as long as y; complex places; a mode that is not defined;
 *            a place outside the table, or NaN, where the mode is strict; an empty table, unless there is no place either
 *            (all of these: result untouched); storage
 * ------------------------------------------------------------------------------------------------------------------ */

/** How dsp_interp interpolates, and a flag. */
enum {
  DSP_INTERP_NEAREST = 0,   /**< the value at the nearest abscissa, half-way at the upper one */
  DSP_INTERP_LINEAR = 1,    /**< the chord */
  DSP_INTERP_CUBIC = 2,     /**< a cubic between each two points that keeps the shape: monotone where the table is, without
                                 overshoot, its slope continuous (Fritsch and Carlson, SIAM J. Numer. Anal. 17, 238-246,
                                 1980; slopes of Fritsch and Butland, 1984, at the ends three-point ones). 2 points: the chord */
  DSP_INTERP_STRICT = 0x100 /**< refuse places outside the table; without it the first and the last value are held there */
};

/**
 * Interpolates a table. A value that is not finite spoils no more than the intervals near it: its own two, and with
 * DSP_INTERP_CUBIC the next on either side.
 *   params   x: abscissae; null: 0, delta, 2 delta ... of y, whose delta must be above 0 if it has two points
 *            xi, yi: places and result
 *            mode: one of DSP_INTERP_*, and possibly DSP_INTERP_STRICT
 */
DSP_API int32_t dsp_interp (const dsp_vector  *x, const dsp_vector  *y, const dsp_vector  *xi, dsp_vector  *yi,
                            uint32_t mode);
DSP_API int32_t dspf_interp(const dspf_vector *x, const dspf_vector *y, const dspf_vector *xi, dspf_vector *yi,
                            uint32_t mode);

/** The ends of cubic splines, and a flag. */
enum {
  DSP_SPLINE_NATURAL = 0,     /**< second derivative 0 at both ends */
  DSP_SPLINE_CLAMPED = 1,     /**< first derivative 0 at both ends */
  DSP_SPLINE_NOT_A_KNOT = 2,  /**< one cubic in the first two intervals, one in the last two: exact for cubics; 3 points make
                                   a parabola, 2 a straight line */
  DSP_SPLINE_STRICT = 0x100   /**< refuse places outside the table; without it the outermost cubics continue there */
};

/**
 * Cubic spline through a table: continuous up to the second derivative. 1 point makes a constant; 2 points a straight line,
 * or, clamped, the cubic that is level at both. A value that is not finite spoils the whole spline.
 *   params   x, xi, yi: as in dsp_interp
 *            end: one of DSP_SPLINE_*, and possibly DSP_SPLINE_STRICT
 */
DSP_API int32_t dsp_cspline (const dsp_vector  *x, const dsp_vector  *y, const dsp_vector  *xi, dsp_vector  *yi,
                             uint32_t end);
DSP_API int32_t dspf_cspline(const dspf_vector *x, const dspf_vector *y, const dspf_vector *xi, dspf_vector *yi,
                             uint32_t end);

/**
 * Bicubic spline through a rectangular grid, at the places (xi[k], yi[k]): the product of the splines along x and along y.
 *   params   xi, yi: equally many; both may lie in any order
 *            x, y: abscissae of the columns and of the rows; 1 of either makes the surface constant in that direction
 *            surface: row by row, the value at (x[i], y[j]) at index j * (points of x) + i
 *            end: as in dsp_cspline, for both directions
 *   delta    of xi
 *   fails    unequal points of xi and yi; surface does not have as many points as x times y
 */
DSP_API int32_t dspb_cspline_2d (const dsp_vector  *xi, const dsp_vector  *yi, dsp_vector  *result,
                                 const dsp_vector  *x, const dsp_vector  *y, const dsp_vector  *surface, uint32_t end);
DSP_API int32_t dspfb_cspline_2d(const dspf_vector *xi, const dspf_vector *yi, dspf_vector *result,
                                 const dspf_vector *x, const dspf_vector *y, const dspf_vector *surface, uint32_t end);

/* ------------------------------------------------------------------------------------------------------------------
 * Vector files
 * ------------------------------------------------------------------------------------------------------------------ */

/** What dspf_fwrite2 writes: one format, and up to two of the flags below it. */
enum {
  DSP_FILE_BINARY = 0,         /**< binary record, as dspf_fwrite */
  DSP_FILE_ASCII = 1,          /**< "#DSP" text, which dspf_fread reads back */
  DSP_FILE_SUMMARY = 2,        /**< one line: points, delta and the first 32 points */
  DSP_FILE_GNUPLOT = 3,        /**< gnuplot script with its data */
  DSP_FILE_TRACE = 4,          /**< keys and values separated by tabs, for an instrument's display */
  DSP_FILE_NO_HEADER = 0x100,  /**< only the data */
  DSP_FILE_NO_DATA = 0x200     /**< only the header */
};

/**
 * Opens a file as fopen does. The name "-" stands for standard input where the mode begins with r, for standard output
 * where it begins with w; a b as the mode's second or third character makes that stream binary.
 *   returns  the stream; null if it cannot be opened, for "-" with any other mode, and for a null name or mode
 */
DSP_API FILE *dspf_fopen (const char *name, const char *mode);
DSP_API FILE *dspff_fopen(const char *name, const char *mode);

/**
 * Closes a stream as fclose does; standard input and standard output stay open.
 *   fails    what fclose cannot write; a null stream
 */
DSP_API int32_t dspf_fclose (FILE *stream);
DSP_API int32_t dspff_fclose(FILE *stream);

/**
 * Reads one record, binary or text, which its first byte tells apart; white space before it is skipped. Records may
 * follow one another in a stream: nothing behind a record is read, but for one character that is put back. The line end
 * behind the last value of a text record is therefore still there: at the end of the input it reads as an empty record.
 *
 * Binary: what dspf_fwrite and its twin write, in either byte order and with values of either size (rounded to nearest
 * where this precision is the smaller), and the older forms without format word (magics 0xEB0110BE with 8-byte and
 * 0xEB0220BE with 4-byte values). The point count and the form flag enter the vector as they are stored.
 *
 * Text: values up to the end of the input or the declared count, separated by white space. Lines that begin with # are
 * comments, three of which say something wherever they stand ("#DSP points = 0" ends the record with its header: as soon
 * as the three have been seen, or before the first value):
 *     #DSP points = N     the point count; below 0 it counts as 0
 *     #DSP complex = F    a flag; if it is not 0, values are real and imaginary parts in turn, the last completed by 0.0
 *     #DSP delta = X      the spacing; 1.0 if there is none
 * White space in these may differ, what follows the number is not looked at, nor is any line behind its 254th character;
 * the last line of the input needs its line end. Numbers are what scanf accepts in the C locale, of any length and
 * rounded once to this precision, with one exception: a hexadecimal number is 0x and the digits of a 32-bit integer with
 * sign (0xFFFFFFFF is -1, -0x1A is -26, 0x1.8 is 1 and then 0.8, 0X1 no number). The host's locale changes nothing. An
 * exponent without digits counts as none ("1e" is 1); of "nan(1)" only nan is read, and the rest is no number.
 *   sizes    a binary record's points; text grows the storage by 1024 points whenever that many values have come
 *   delta    the record's
 *   returns  1 a vector was read; 0 at the end of the input: the vector then has 0 points; -1 failure
 *   fails    in a binary record: unknown magic, values of a size other than 4 and 8, an end before the last value (the
 *            vector keeps the fields and values that came, the other values being 0.0, unless more than 2^20 points are
 *            claimed: storage then grows with the data, and is given up); in text: what is not a number, another
 *            number of values than declared (the vector keeps what came before); an input error; storage. The stream is
 *            left where the failure was found.
 */
DSP_API int32_t dspf_fread (dsp_vector  *v, FILE *stream);
DSP_API int32_t dspff_fread(dspf_vector *v, FILE *stream);

/**
 * Writes one binary record in this machine's byte order: magic 0xEB0330BE, a format word (0x0408, twin 0x0404), point
 * count and form flag as they stand in the vector, 4 bytes each; then delta and the values, 8 bytes each (twin 4). A
 * negative count is written as it is, without values.
 *   fails    the stream takes less than the whole record
 */
DSP_API int32_t dspf_fwrite (const dsp_vector  *v, FILE *stream);
DSP_API int32_t dspff_fwrite(const dspf_vector *v, FILE *stream);

/**
 * Writes a vector in one of the five formats. Numbers have 16 significant digits (twin 7) and a decimal point, whatever
 * locale the host has set; zeros at their end are dropped, as by %g.
 *   params   flags: a DSP_FILE_ format, with DSP_FILE_NO_HEADER for the data alone and DSP_FILE_NO_DATA for the header
 *            alone; both leave nothing, of a summary its line end
 *   ascii    header lines with point count, form flag, value size and delta, then a value or "re im" a line
 *   summary  "[points/delta] " and up to 32 points, a value or "re,im" each, in one line; " ..." stands for more. Numbers
 *            from 9999 to 999999999 are whole, others have 4 digits.
 *   gnuplot  a script that plots the samples (of a complex vector the magnitude; other plots are there as comments)
 *            against k delta, calculated in double; complete only with header and data
 *   trace    key and value lines (with delta and a display range), then a value or both parts, separated by a tab, a
 *            line. The range is the largest magnitude, parabolically refined, brought up to 1, 2, 4 or 5 times a power of
 *            ten (20 epsilon beyond count as reached), at most huge; without a magnitude above 0 it is 1.
 *   fails    an unknown format (nothing is written); binary: the stream takes less than all; trace: storage for the
 *            search of the largest magnitude (the first line is then written). Other text formats do not fail, even on a
 *            stream that does.
 */
DSP_API int32_t dspf_fwrite2 (const dsp_vector  *v, FILE *stream, uint32_t flags);
DSP_API int32_t dspff_fwrite2(const dspf_vector *v, FILE *stream, uint32_t flags);

/** dspf_fwrite2 with DSP_FILE_ASCII. */
DSP_API int32_t dspf_fwrite_ascii (const dsp_vector  *v, FILE *stream);
DSP_API int32_t dspff_fwrite_ascii(const dspf_vector *v, FILE *stream);

#ifdef __cplusplus
}
#endif

#endif
