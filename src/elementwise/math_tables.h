// The numbers of the elementary functions. Polynomials are minimax fits of the function over the stated range with
// coefficients of the precision itself (Remez exchange, then rounding by lattice reduction); the errors are those of
// the rounded ones.
#pragma once

#include <array>
#include <numbers>

namespace sigvex::elementwise {

// exp(r) = 1 + r + r^2 p(r) for |r| <= ln 2 / 32; relative error 2^-56.2 (double), 2^-29.2 (single).
template <class T>
inline constexpr std::array kExp = {0x1.fffffffffffbcp-2, 0x1.555555548ebe4p-3, 0x1.55555558d3f41p-5,
                                    0x1.11123b46d2fc5p-7, 0x1.6c14e4e90821ep-10};
template <> inline constexpr std::array kExp<float> = {0x1.00022p-1F, 0x1.5555a2p-3F};

// log(1 + r) = r + r^2 p(r) for |r| <= 0.0336; relative error 2^-55.4 (double), 2^-30.9 (single).
template <class T>
inline constexpr std::array kLog1p = {-0x1.fffffffffff9ap-2, 0x1.5555555555487p-2,  -0x1.0000000127ddp-2,
                                      0x1.9999999cd018cp-3,  -0x1.55553879b9809p-3, 0x1.249228720e1b3p-3,
                                      -0x1.008540cd45bf6p-3, 0x1.c8259e7d9faa3p-4};
template <>
inline constexpr std::array kLog1p<float> = {-0x1.fffffcp-2F, 0x1.55555p-2F, -0x1.003bcep-2F, 0x1.9a0fa6p-3F};

// The same for the decimal logarithm.
template <class T>
inline constexpr auto kLog10Of1p = [] {
  auto c = kLog1p<T>;
  for (T& at : c) at *= std::numbers::log10e_v<T>;
  return c;
}();

// sin r = r + r^3 p(r^2) for |r| <= pi/4; relative error 2^-57.9 (double), 2^-27.9 (single).
template <class T>
inline constexpr std::array kSin = {-0x1.5555555555548p-3, 0x1.111111110f75ep-7,   -0x1.a01a019bf2523p-13,
                                    0x1.71de355f3628cp-19, -0x1.ae5e549c421c4p-26, 0x1.5d8e4234a0139p-33};
template <> inline constexpr std::array kSin<float> = {-0x1.555546p-3F, 0x1.110778p-7F, -0x1.9953e2p-13F};

// cos r = 1 - r^2/2 + r^4 p(r^2) for |r| <= pi/4; relative error 2^-63.9 (double), 2^-33.0 (single).
template <class T>
inline constexpr std::array kCos = {0x1.555555555554bp-5,   -0x1.6c16c16c15017p-10, 0x1.a01a019c8f66bp-16,
                                    -0x1.27e4f7f1c1054p-22, 0x1.1ee9dbec7010ap-29,  -0x1.8fa6917123386p-37};
template <> inline constexpr std::array kCos<float> = {0x1.55554ap-5F, -0x1.6c0c2ap-10F, 0x1.99e904p-16F};

// tan r = (r + r^3 p(r^2)) / (1 - r^2/2 + r^4 q(r^2)) for |r| <= pi/4; relative error 2^-63.2 (double), 2^-33.0
// (single) before the coefficients are rounded. p first.
template <class T>
inline constexpr std::array kTanAbove = {-0x1.5555555555556p-3, 0x1.f84b249bb6d31p-8, -0x1.d2c833d6f711bp-14,
                                         0x1.0bd78731549e1p-22};
template <> inline constexpr std::array kTanAbove<float> = {-0x1.555554p-3F, 0x1.a21ebp-8F};
template <class T>
inline constexpr std::array kTanBelow = {0x1.501a75a487e75p-5, -0x1.1d76b26ceccaep-10, 0x1.f363432f8547bp-18};
template <> inline constexpr std::array kTanBelow<float> = {0x1.455512p-5F, -0x1.1afb5ep-11F};

// atan t = t + t^3 p(t^2) for |t| <= 0.0326; relative error 2^-61.7 (double), 2^-36.8 (single).
template <class T>
inline constexpr std::array kArctan = {-0x1.55555555554c4p-2, 0x1.99999997107bdp-3, -0x1.24922cfbcc291p-3,
                                       0x1.c625e98162daep-4};
template <> inline constexpr std::array kArctan<float> = {-0x1.55555p-2F, 0x1.992538p-3F};

// asin x = x + x^3 p(x^2) for |x| <= 1/2; relative error 2^-55.9 (double), 2^-27.6 (single).
template <class T>
inline constexpr std::array kArcsin = {0x1.555555555539p-3,  0x1.333333336e80fp-4,  0x1.6db6db427a4f9p-5,
                                       0x1.f1c72c38fb295p-6, 0x1.6e89f4401af12p-6,  0x1.1c6be1a66c286p-6,
                                       0x1.c6fdc1ad0a76dp-7, 0x1.8ec2fc9502512p-7,  0x1.abcf5d71aea62p-8,
                                       0x1.3ff4a924fe515p-6, -0x1.09d327898dbf7p-6, 0x1.056d6c4746a5dp-5};
template <>
inline constexpr std::array kArcsin<float> = {0x1.5555c8p-3F, 0x1.330206p-4F, 0x1.747b72p-5F, 0x1.8c415ap-6F,
                                              0x1.5959aap-5F};

// sinh x = x + x^3 p(x^2) for |x| <= 1; relative error 2^-62.6 (double), 2^-31.4 (single).
template <class T>
inline constexpr std::array kSinh = {0x1.5555555555555p-3,  0x1.111111111117cp-7,  0x1.a01a01a00db3ap-13,
                                     0x1.71de3a60a9f7dp-19, 0x1.ae644b32db998p-26, 0x1.612abe6b5d71ep-33,
                                     0x1.aab9951a7065bp-41, 0x1.409579384599ap-48};
template <>
inline constexpr std::array kSinh<float> = {0x1.555556p-3F, 0x1.1110eap-7F, 0x1.a01c22p-13F, 0x1.76771ep-19F};

// tanh x = x + x^3 p(x^2) for |x| <= 9/16; relative error 2^-64.9 (double), 2^-29.4 (single).
template <class T>
inline constexpr std::array kTanh = {-0x1.5555555555555p-2,  0x1.111111111107ep-3,   -0x1.ba1ba1ba10af2p-5,
                                     0x1.664f487f7e548p-6,   -0x1.226e34ccc12c9p-7,  0x1.d6d3b07764df2p-9,
                                     -0x1.7da0faddda044p-10, 0x1.3538a240902d9p-11,  -0x1.f344902a93f14p-13,
                                     0x1.88c0da157b034p-14,  -0x1.10f9d3e6991edp-15, 0x1.e3c2856cde51bp-18};
template <>
inline constexpr std::array kTanh<float> = {-0x1.555548p-2F, 0x1.110c64p-3F, -0x1.b9075ap-5F, 0x1.58226p-6F,
                                            -0x1.94bf44p-8F};

// ln 2 / 16 in two parts, the first with so few bits that its product with an exponent is exact.
template <class T> inline constexpr T kLn2Over16[2] = {0x1.62e42fefap-5, 0x1.cf79abc9e3b3ap-44};
template <> inline constexpr float kLn2Over16<float>[2] = {0x1.62ep-5F, 0x1.0bfbe8p-19F};

// 2^(j/16), and by what fraction of itself the exact value exceeds it. The entry has j subtracted from its bits at 1/16
// of the exponent's unit: adding n = 16 e + j there gives 2^(n/16).
template <class T>
alignas(64) inline constexpr T kExp2[16] = {0x1p+0,
                                            0x1.fb5586cf9890fp-1,
                                            0x1.f72b83c7d517bp-1,
                                            0x1.f387a6e756238p-1,
                                            0x1.f06fe0a31b715p-1,
                                            0x1.edea64c123422p-1,
                                            0x1.ebfdad5362a27p-1,
                                            0x1.eab07dd485429p-1,
                                            0x1.ea09e667f3bcdp-1,
                                            0x1.ea11473eb0187p-1,
                                            0x1.eace5422aa0dbp-1,
                                            0x1.ec49182a3f09p-1,
                                            0x1.ee89f995ad3adp-1,
                                            0x1.f199bdd85529cp-1,
                                            0x1.f5818dcfba487p-1,
                                            0x1.fa4afa2a490dap-1};
template <>
alignas(64) inline constexpr float kExp2<float>[16] = {0x1p+0F,        0x1.fb5586p-1F, 0x1.f72b84p-1F, 0x1.f387a6p-1F,
                                                       0x1.f06fep-1F,  0x1.edea64p-1F, 0x1.ebfdaep-1F, 0x1.eab07ep-1F,
                                                       0x1.ea09e6p-1F, 0x1.ea1148p-1F, 0x1.eace54p-1F, 0x1.ec4918p-1F,
                                                       0x1.ee89fap-1F, 0x1.f199bep-1F, 0x1.f5818ep-1F, 0x1.fa4afap-1F};
template <class T>
alignas(64) inline constexpr T kExp2Error[16] = {
    0,
    0x1.79aa65d837b6dp-54,
    -0x1.01b15eaa59348p-55,
    0x1.68efde3a8a894p-54,
    0x1.34d754db0abb6p-55,
    0x1.59f48a72a4c6dp-55,
    0x1.690cebb7aafb0p-56,
    0x1.063e1e21c5409p-54,
    -0x1.3b3efbf5e2228p-54,
    -0x1.b32dcb94da51dp-56,
    0x1.db72fc1f0eab4p-55,
    0x1.1affc2b91ce27p-56,
    0x1.c1a7792cb3387p-55,
    0x1.36eae30af0cb3p-56,
    0x1.4a385a63d07a7p-56,
    -0x1.ff7128fd391f0p-55,
};
template <>
alignas(64) inline constexpr float kExp2Error<float>[16] = {0,
                                                            0x1.8d96d4p-25F,
                                                            -0x1.9c0c22p-27F,
                                                            0x1.964904p-25F,
                                                            0x1.125002p-25F,
                                                            0x1.370be4p-25F,
                                                            -0x1.0a355p-25F,
                                                            -0x1.00d8acp-27F,
                                                            0x1.26055cp-26F,
                                                            -0x1.05cb44p-25F,
                                                            0x1.67a1cap-28F,
                                                            0x1.a3b5e4p-28F,
                                                            -0x1.f9c304p-27F,
                                                            -0x1.6961b4p-28F,
                                                            -0x1.a5217cp-28F,
                                                            0x1.61428ep-28F};

// The logarithm's table. The mantissa m runs from kLogStart = 1 - 9.5/32 to twice that in 16 cells, each half an eighth
// of its binade, with 1 inside cell 9; c[j] is near the inverse of the cell's middle, a multiple of 1/512 so that m c -
// 1 loses nothing, and |m c - 1| <= 0.0336. The logarithms of 1/c[j] in two parts: the high one is a multiple of 2^-42,
// so that a multiple of the high part of log 2 can be added without rounding.
template <class T> inline constexpr T kLogStart = T(0.703125);
template <class T> struct Log2Parts { T high, low; };
template <class T> inline constexpr Log2Parts<T> kLn2 = {0x1.62e42fefa38p-1, 0x1.ef35793c7673p-45};
template <> inline constexpr Log2Parts<float> kLn2<float> = {0x1.62e4p-1F, 0x1.7f7d1cp-20F};
template <class T> inline constexpr Log2Parts<T> kLog10Of2 = {0x1.34413509f8p-2, -0x1.80433b83b532ap-44};
template <> inline constexpr Log2Parts<float> kLog10Of2<float> = {0x1.344p-2F, 0x1.3509f8p-18F};

template <class T>
alignas(64) inline constexpr T kInverse[16] = {
    0x1.6400000000000p+0, 0x1.5580000000000p+0, 0x1.4780000000000p+0, 0x1.3b00000000000p+0, 0x1.2f80000000000p+0,
    0x1.2480000000000p+0, 0x1.1a80000000000p+0, 0x1.1100000000000p+0, 0x1.0880000000000p+0, 1,
    0x1.e200000000000p-1, 0x1.c700000000000p-1, 0x1.af00000000000p-1, 0x1.9a00000000000p-1, 0x1.8600000000000p-1,
    0x1.7400000000000p-1,
};
template <>
alignas(64) inline constexpr float kInverse<float>[16] = {
    0x1.6400000000000p+0F, 0x1.5580000000000p+0F, 0x1.4780000000000p+0F, 0x1.3b00000000000p+0F, 0x1.2f80000000000p+0F,
    0x1.2480000000000p+0F, 0x1.1a80000000000p+0F, 0x1.1100000000000p+0F, 0x1.0880000000000p+0F, 1,
    0x1.e200000000000p-1F, 0x1.c700000000000p-1F, 0x1.af00000000000p-1F, 0x1.9a00000000000p-1F, 0x1.8600000000000p-1F,
    0x1.7400000000000p-1F};
template <class T>
alignas(64) inline constexpr T kLnHigh[16] = {
    -0x1.51aad872e0000p-2, -0x1.27161913f8000p-2, -0x1.f871b28956000p-3, -0x1.a8becfc882000p-3, -0x1.5c94007598000p-3,
    -0x1.10f8e42254000p-3, -0x1.9375e55594000p-4, -0x1.0759835990000p-4, -0x1.0b94f7c198000p-5, 0,
    0x1.eea31c0068000p-5,  0x1.e3707ee304000p-4,  0x1.60b3100b0a000p-3,  0x1.c6ffbc6f00000p-3,  0x1.16b5ccbad0000p-2,
    0x1.4718dc271c000p-2,
};
template <>
alignas(64) inline constexpr float kLnHigh<float>[16] = {
    -0x1.51acp-2F, -0x1.2718p-2F, -0x1.f87p-3F, -0x1.a8cp-3F, -0x1.5c98p-3F,
    -0x1.10f8p-3F, -0x1.937p-4F,  -0x1.076p-4F, -0x1.0bap-5F, 0,
    0x1.eeap-5F,   0x1.e37p-4F,   0x1.60bp-3F,  0x1.c7p-3F,   0x1.16b4p-2F,
    0x1.4718p-2F};
template <class T>
alignas(64) inline constexpr T kLnLow[16] = {
    0x1.f4bd8db0a7cc1p-44,  -0x1.4f4f1f61564b4p-44,
    0x1.f75fd6a526efep-44,  -0x1.e3185cf21b9cfp-44,
    0x1.a8d948cd23322p-44,  0x1.93b3843396307p-45,
    -0x1.eddc37380c364p-44, 0x1.b8ecfe4b59987p-44,
    0x1.e89896f022783p-45,  0,
    0x1.c3dd83606d891p-44,  0x1.0f684e6766abdp-45,
    -0x1.71456c988f814p-44, 0x1.ee138d3a69d43p-44,
    -0x1.23299042d74bfp-44, 0x1.06c18fb4c14c5p-44,
};
template <>
alignas(64) inline constexpr float kLnLow<float>[16] = {
    0x1.278d2p-18F,   0x1.e6ec08p-18F,  -0x1.b28956p-19F, 0x1.30377ep-19F,  0x1.ffc534p-18F,
    -0x1.c844a8p-20F, -0x1.795566p-18F, 0x1.9f299cp-18F,  0x1.6107cep-18F,  0,
    0x1.8e0036p-20F,  0x1.fb8c12p-22F,  0x1.880584p-18F,  -0x1.0e43fcp-21F, 0x1.ccbadp-18F,
    0x1.b84e38p-19F};
template <class T>
alignas(64) inline constexpr T kLog10High[16] = {
    -0x1.254b4d35e8000p-3, -0x1.004f0857ee000p-3, -0x1.b627942aec000p-4, -0x1.70eddb7d80000p-4, -0x1.2ec568056c000p-4,
    -0x1.da338aaa98000p-5, -0x1.5e70fd3ee8000p-5, -0x1.c97c3735e0000p-6, -0x1.d0d65e8900000p-7, 0,
    0x1.ada2e8e3e0000p-6,  0x1.a3e9002c70000p-5,  0x1.3259d2107c000p-4,  0x1.8b350364c8000p-4,  0x1.e42b4c16cc000p-4,
    0x1.1c1ce9955c000p-3,
};
template <>
alignas(64) inline constexpr float kLog10High<float>[16] = {
    -0x1.2548p-3F, -0x1.005p-3F, -0x1.b62p-4F, -0x1.70fp-4F, -0x1.2ecp-4F,
    -0x1.da4p-5F,  -0x1.5e8p-5F, -0x1.c98p-6F, -0x1.d1p-7F,  0,
    0x1.adcp-6F,   0x1.a3ep-5F,  0x1.326p-4F,  0x1.8b3p-4F,  0x1.e43p-4F,
    0x1.1c2p-3F};
template <class T>
alignas(64) inline constexpr T kLog10Low[16] = {
    0x1.61f143538008cp-46,  0x1.d218966360097p-46,
    -0x1.dba29d8601f93p-45, 0x1.5f89d049ffd9dp-44,
    -0x1.6e95635907534p-48, -0x1.4173b2a06eb58p-46,
    0x1.4cc1c6bf68db0p-45,  -0x1.f028fb72dfe8ap-44,
    -0x1.0169545b91b96p-45, 0,
    0x1.51bd19e6e701ap-44,  0x1.1d257c8d0d386p-45,
    0x1.b5474ae667c99p-44,  -0x1.da8c4bd8546e7p-44,
    -0x1.50d780639590cp-44, 0x1.8b891b6d05a73p-48,
};
template <>
alignas(64) inline constexpr float kLog10Low<float>[16] = {
    -0x1.a69af4p-18F, 0x1.ef5024p-20F, -0x1.e50abcp-18F, 0x1.12414p-19F,  -0x1.5a015cp-18F,
    0x1.8eaaacp-18F,  0x1.e05824p-18F, 0x1.e4650cp-21F,  0x1.4d0bb8p-18F, 0,
    -0x1.d171c2p-18F, 0x1.20058ep-18F, -0x1.8b7bep-18F,  0x1.40d932p-18F, -0x1.2cfa4ep-18F,
    -0x1.8b3552p-18F};

// atan(j/16), and what the entry lacks.
template <class T>
alignas(64) inline constexpr T kArctan16[16] = {0,
                                                0x1.ff55bb72cfdeap-5,
                                                0x1.fd5ba9aac2f6ep-4,
                                                0x1.7b97b4bce5b02p-3,
                                                0x1.f5b75f92c80ddp-3,
                                                0x1.362773707ebccp-2,
                                                0x1.6f61941e4def1p-2,
                                                0x1.a64eec3cc23fdp-2,
                                                0x1.dac670561bb4fp-2,
                                                0x1.0657e94db30d0p-1,
                                                0x1.1e00babdefeb4p-1,
                                                0x1.345f01cce37bbp-1,
                                                0x1.4978fa3269ee1p-1,
                                                0x1.5d58987169b18p-1,
                                                0x1.700a7c5784634p-1,
                                                0x1.819d0b7158a4dp-1};
template <>
alignas(64) inline constexpr float kArctan16<float>[16] = {0,
                                                           0x1.ff55bcp-5F,
                                                           0x1.fd5baap-4F,
                                                           0x1.7b97b4p-3F,
                                                           0x1.f5b76p-3F,
                                                           0x1.362774p-2F,
                                                           0x1.6f6194p-2F,
                                                           0x1.a64eecp-2F,
                                                           0x1.dac67p-2F,
                                                           0x1.0657eap-1F,
                                                           0x1.1e00bap-1F,
                                                           0x1.345f02p-1F,
                                                           0x1.4978fap-1F,
                                                           0x1.5d5898p-1F,
                                                           0x1.700a7cp-1F,
                                                           0x1.819d0cp-1F};
template <class T>
alignas(64) inline constexpr T kArctan16Error[16] = {0,
                                                     -0x1.c934d86d23f1dp-60,
                                                     -0x1.cd37686760c17p-59,
                                                     0x1.347b0b4f881cap-58,
                                                     0x1.8ab6e3cf7afbdp-57,
                                                     -0x1.963a544b672d8p-57,
                                                     -0x1.c63aae6f6e918p-56,
                                                     -0x1.24dec1b50b7ffp-56,
                                                     0x1.a2b7f222f65e2p-56,
                                                     -0x1.d5b495f6349e6p-56,
                                                     -0x1.928df287a668fp-58,
                                                     0x1.1021137c71102p-55,
                                                     0x1.2419a87f2a458p-56,
                                                     0x1.0028e4bc5e7cap-57,
                                                     -0x1.8c34d25aadef6p-56,
                                                     -0x1.bf76229d3b917p-56};
template <>
alignas(64) inline constexpr float kArctan16Error<float>[16] = {0,
                                                                -0x1.1a6042p-30F,
                                                                -0x1.54f424p-30F,
                                                                0x1.79cb6p-28F,
                                                                -0x1.b4dfc8p-29F,
                                                                -0x1.1f0286p-27F,
                                                                0x1.e4defp-30F,
                                                                0x1.e611fep-29F,
                                                                0x1.586ed4p-28F,
                                                                -0x1.6499e6p-26F,
                                                                0x1.7bdfd6p-26F,
                                                                -0x1.98e422p-28F,
                                                                0x1.934f7p-28F,
                                                                0x1.c5a6c6p-27F,
                                                                0x1.5e118cp-27F,
                                                                -0x1.1d4eb6p-26F};

// pi/2 in three parts, each the number nearest to what the ones before it lack. A fused product of n with the first one
// leaves no rest where it is taken from its near multiple: that has no finer bits. Without fused products the first two
// have so few bits that their products are exact.
template <class T>
inline constexpr T kRightAngle[3] = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, -0x1.f1976b7ed8fbcp-110};
template <> inline constexpr float kRightAngle<float>[3] = {0x1.921fb6p+0F, -0x1.777a5cp-25F, -0x1.ee59dap-50F};
template <class T>
inline constexpr T kRightAngleUnfused[3] = {0x1.921fb544p+0, 0x1.0b4611a8p-34, -0x1.d9cceba3f91f2p-66};
template <> inline constexpr float kRightAngleUnfused<float>[3] = {0x1.922p+0F, -0x1.28p-18F, -0x1.777a5cp-25F};

// 1 / (k!)^2, the power series of I0 in (x/2)^2.
inline constexpr auto kI0Series = [] {
  std::array<double, 34> c{1};
  long double factorial = 1;
  for (size_t k = 1; k < c.size(); ++k) {
    factorial *= static_cast<long double>(k);
    c[k] = static_cast<double>(1 / (factorial * factorial));
  }
  return c;
}();

// ((2k-1)!!)^2 / k!, the asymptotic series of I0(x) sqrt(2 pi x) / exp(x) in 1/(8 x).
inline constexpr auto kI0Asymptotic = [] {
  std::array<double, 22> c{1};
  long double term = 1;
  for (size_t k = 1; k < c.size(); ++k) {
    const auto odd = static_cast<long double>(2 * k - 1);
    term *= odd * odd / static_cast<long double>(k);
    c[k] = static_cast<double>(term);
  }
  return c;
}();

}  // namespace sigvex::elementwise
