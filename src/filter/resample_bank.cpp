// dsph_rsmp_coef_setup
#include <cmath>
#include <numbers>
#include <utility>

#include "core/exports.h"
#include "filter/resample_objects.h"
#include "filter/resample_sets.h"

namespace sigvex {
namespace {

using std::numbers::pi;

constexpr int32_t kMaxSteps = 65536;
constexpr size_t kMaxSpan = size_t{1} << 24;

// J. F. Kaiser's formulas, 1974: the shape of the window that stops by so many dB, and the points it takes.
double kaiser_shape(double attenuation) {
  if (attenuation > 50) return 0.1102 * (attenuation - 8.7);
  if (attenuation < 21) return 0;
  return 0.5842 * std::pow(attenuation - 21, 0.4) + 0.07886 * (attenuation - 21);
}
double kaiser_points(double attenuation, double transition) {
  return std::max(1.0, (attenuation - 7.95) / (14.36 * transition) + 1);
}

// I0(sqrt(4 y)), by its series: it goes on smoothly below 0, where a row of the table reaches past the kernel's end.
double bessel_i0_of_square(double y) {
  double sum = 1, term = 1;
  for (double k = 1; std::abs(term) > 1e-17 * std::abs(sum); ++k) sum += term *= y / (k * k);
  return sum;
}

// A cubic through four points a step apart is off by at most 3/128 step^4 times the fourth derivative, which for the
// highest frequency, half the rate, is pi^4; half of what the attenuation allows.
double cubic_steps(double attenuation) {
  return std::ceil(pi * std::pow(3.0 / 128 * 2 * std::pow(10, attenuation / 20), 0.25));
}

// The kernel at a distance in samples from its middle.
class Kaiser {
 public:
  Kaiser(double attenuation, double transition, double length)
      : rate_(1 - transition), shape_(kaiser_shape(attenuation)), half_(length / 2) {}
  double operator()(double distance) const {
    const double x = pi * rate_ * distance, u = distance / half_;
    return bessel_i0_of_square(shape_ * shape_ / 4 * (1 - u * u)) * (x == 0 ? 1 : std::sin(x) / x);
  }

 private:
  double rate_, shape_, half_;
};

double built_in(const ResampleSet& set, double distance) {
  const auto& c = set.coefficients;
  const double angle = 2 * pi * distance / c[0], u = std::cos(angle);
  double sum = 0;
  for (size_t k = c.size() - 1; k > 0; --k) {
    sum = set.series == Series::cosine ? sum + c[k] * std::cos(static_cast<double>(k - 1) * angle) : sum * u + c[k];
  }
  return sum;
}

// Fills the rows with the kernel; a positive gain scales them to that sum, in the mean of the rows.
template <class T, class Kernel> void tabulate(const Coef<T>& coef, const Kernel& kernel, double gain) {
  const ResampleBank<T> bank = bank_of<T>(coef);
  const double middle = static_cast<double>(bank.length) / 2 - 1, steps = static_cast<double>(bank.steps);
  double scale = 1;
  for (const bool measuring : {true, false}) {
    if (measuring && !(gain > 0)) continue;
    double sum = 0;
    for (size_t row = measuring ? 1 : 0; row < bank.steps + (measuring ? 1 : 3); ++row) {
      const double place = (static_cast<double>(row) - 1) / steps;
      for (size_t k = 0; k < bank.length; ++k) {
        const double weight = scale * kernel(static_cast<double>(k) - middle - place);
        sum += weight;
        if (!measuring) const_cast<T*>(bank.rows)[row * bank.stride + k] = static_cast<T>(weight);
      }
    }
    scale = gain * steps / sum;
  }
}

}  // namespace

namespace dsph {

template <class T>
Status rsmp_coef_setup(Coef<T>& coef, uint32_t kernel, double attenuation, double transition, double max_ratio,
                       int32_t steps) {
  const bool set = kernel < kResampleSets;
  if (!set && (kernel != DSP_RSMP_KAISER || !(attenuation >= 20 && attenuation <= 200) ||
               !(transition > 0 && transition < 0.5))) {
    return kFailure;
  }
  if (std::isnan(max_ratio) || steps < 0 || steps > kMaxSteps) return kFailure;
  const double ratio = std::max(max_ratio, 1.0),
               length = set ? resample_set(kernel).coefficients[0]
                            : std::ceil(kaiser_points(attenuation, transition) / 16) * 16;
  if (!(length * ratio <= static_cast<double>(kMaxSpan))) return kFailure;

  Coef<T> fresh{};
  fresh.max_ratio = ratio;
  fresh.length = static_cast<int32_t>(length);
  fresh.span = static_cast<int32_t>(whole(static_cast<size_t>(length) * to_fixed(ratio) + to_fixed(size_t{1}) - 1));
  fresh.steps = steps > 0 ? steps : set ? 256 : static_cast<int32_t>(cubic_steps(attenuation));
  const size_t rows = count(fresh.steps) + 3;
  Scratch<T> bank;
  SIGVEX_TRY(shape<T>(bank, rows * row_stride<T>(count(fresh.length)) + kResampleSlack + kRowBytes / sizeof(T), 0));
  std::fill_n(bank.data, size<T>(bank), T(0));
  fresh.bank = bank;
  if (set)
    tabulate<T>(
        fresh, [&](double x) { return built_in(resample_set(kernel), x); }, 0);
  else tabulate<T>(fresh, Kaiser(attenuation, transition, length), 1);
  fresh.own = coef.own;
  static_cast<Vector<T>&>(bank) = std::exchange(coef, fresh).bank;
  return kSuccess;
}

}  // namespace dsph
}  // namespace sigvex

SIGVEX_EXPORT(h, rsmp_coef_setup, 6)
