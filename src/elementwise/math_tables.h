// The numbers of the elementary functions. Polynomials are minimax fits of the function over the stated range with
// coefficients that are doubles (Remez exchange, then rounding by lattice reduction); the errors are those of the
// rounded ones.
#pragma once

#include <array>

namespace sigvex::elementwise {

// exp(r) = 1 + r + r^2 p(r) for |r| <= ln 2 / 32; relative error 2^-56.2 (double), 2^-29.2 (single).
template <class T>
inline constexpr std::array kExp = {0x1.fffffffffffbcp-2, 0x1.555555548ebe4p-3, 0x1.55555558d3f41p-5,
                                    0x1.11123b46d2fc5p-7, 0x1.6c14e4e90821ep-10};
template <> inline constexpr std::array kExp<float> = {0x1.00021f3c8f5a7p-1, 0x1.55559afbf0e28p-3};

// log(1 + r) = r + r^2 p(r) for |r| <= 0.0336; relative error 2^-61.2 (double), 2^-31.1 (single).
template <class T>
inline constexpr std::array kLog1p = {-0x1p-1,
                                      0x1.555555555549bp-2,
                                      -0x1.ffffffffffdf9p-3,
                                      0x1.9999999ca811dp-3,
                                      -0x1.55555558e8d76p-3,
                                      0x1.24922938a6bcep-3,
                                      -0x1.ffffbd1d6f0ccp-4,
                                      0x1.c8232e121d573p-4,
                                      -0x1.9a988048e7ed4p-4};
template <>
inline constexpr std::array kLog1p<float> = {-0x1.fffffb8ec8a0ep-2, 0x1.55554fc7348dep-2, -0x1.003da345d4659p-2,
                                             0x1.9a1192e8c45ddp-3};

// sin r = r + r^3 p(r^2) for |r| <= pi/4; relative error 2^-57.9 (double), 2^-28.0 (single).
template <class T>
inline constexpr std::array kSin = {-0x1.5555555555548p-3, 0x1.111111110f75ep-7,   -0x1.a01a019bf2523p-13,
                                    0x1.71de355f3628cp-19, -0x1.ae5e549c421c4p-26, 0x1.5d8e4234a0139p-33};
template <>
inline constexpr std::array kSin<float> = {-0x1.555545240a148p-3, 0x1.110739fa9c914p-7, -0x1.99438783d9b13p-13};

// cos r = 1 - r^2/2 + r^4 p(r^2) for |r| <= pi/4; relative error 2^-63.9 (double), 2^-33.0 (single).
template <class T>
inline constexpr std::array kCos = {0x1.555555555554bp-5,   -0x1.6c16c16c15017p-10, 0x1.a01a019c8f66bp-16,
                                    -0x1.27e4f7f1c1054p-22, 0x1.1ee9dbec7010ap-29,  -0x1.8fa6917123386p-37};
template <>
inline constexpr std::array kCos<float> = {0x1.55554a0f983bep-5, -0x1.6c0c328f8ecb7p-10, 0x1.99eb4a8394997p-16};

// atan t = t + t^3 p(t^2) for |t| <= 0.0326; relative error 2^-61.7 (double), 2^-37.1 (single).
template <class T>
inline constexpr std::array kArctan = {-0x1.55555555554c4p-2, 0x1.99999997107bdp-3, -0x1.24922cfbcc291p-3,
                                       0x1.c625e98162daep-4};
template <> inline constexpr std::array kArctan<float> = {-0x1.555550acb3014p-2, 0x1.992ae08b24a8ap-3};

// asin x = x + x^3 p(x^2) for |x| <= 1/2; relative error 2^-55.9 (double), 2^-27.6 (single).
template <class T>
inline constexpr std::array kArcsin = {0x1.555555555539p-3,  0x1.333333336e80fp-4,  0x1.6db6db427a4f9p-5,
                                       0x1.f1c72c38fb295p-6, 0x1.6e89f4401af12p-6,  0x1.1c6be1a66c286p-6,
                                       0x1.c6fdc1ad0a76dp-7, 0x1.8ec2fc9502512p-7,  0x1.abcf5d71aea62p-8,
                                       0x1.3ff4a924fe515p-6, -0x1.09d327898dbf7p-6, 0x1.056d6c4746a5dp-5};
template <>
inline constexpr std::array kArcsin<float> = {0x1.5555c883412cep-3, 0x1.3301e468929f3p-4, 0x1.747e4a2ed1c65p-5,
                                              0x1.8c283c592d14p-6, 0x1.596d286aee666p-5};

// sinh x = x + x^3 p(x^2) for |x| <= 1; relative error 2^-62.6 (double), 2^-34.2 (single).
template <class T>
inline constexpr std::array kSinh = {0x1.5555555555555p-3,  0x1.111111111117cp-7,  0x1.a01a01a00db3ap-13,
                                     0x1.71de3a60a9f7dp-19, 0x1.ae644b32db998p-26, 0x1.612abe6b5d71ep-33,
                                     0x1.aab9951a7065bp-41, 0x1.409579384599ap-48};
template <>
inline constexpr std::array kSinh<float> = {0x1.5555551b3aa4fp-3, 0x1.111134fba4372p-7, 0x1.9ffe9268ad594p-13,
                                            0x1.7a15b4fd814fcp-19};

// tanh x = x + x^3 p(x^2) for |x| <= 9/16; relative error 2^-64.9 (double), 2^-34.5 (single).
template <class T>
inline constexpr std::array kTanh = {-0x1.5555555555555p-2,  0x1.111111111107ep-3,   -0x1.ba1ba1ba10af2p-5,
                                     0x1.664f487f7e548p-6,   -0x1.226e34ccc12c9p-7,  0x1.d6d3b07764df2p-9,
                                     -0x1.7da0faddda044p-10, 0x1.3538a240902d9p-11,  -0x1.f344902a93f14p-13,
                                     0x1.88c0da157b034p-14,  -0x1.10f9d3e6991edp-15, 0x1.e3c2856cde51bp-18};
template <>
inline constexpr std::array kTanh<float> = {-0x1.555554ce39755p-2, 0x1.1110cfa259abbp-3,  -0x1.ba0666a4696cbp-5,
                                            0x1.64b5ef74623e3p-6,  -0x1.128cb8d764063p-7, 0x1.347d9abb05e1ap-9};

// 2^(j/16), and by what fraction of itself the exact value exceeds the entry.
alignas(64) inline constexpr double kExp2[16] = {
    1,
    0x1.0b5586cf9890fp+0,
    0x1.172b83c7d517bp+0,
    0x1.2387a6e756238p+0,
    0x1.306fe0a31b715p+0,
    0x1.3dea64c123422p+0,
    0x1.4bfdad5362a27p+0,
    0x1.5ab07dd485429p+0,
    0x1.6a09e667f3bcdp+0,
    0x1.7a11473eb0187p+0,
    0x1.8ace5422aa0dbp+0,
    0x1.9c49182a3f090p+0,
    0x1.ae89f995ad3adp+0,
    0x1.c199bdd85529cp+0,
    0x1.d5818dcfba487p+0,
    0x1.ea4afa2a490dap+0,
};
alignas(64) inline constexpr double kExp2Error[16] = {
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

// The logarithm's table. The mantissa m runs from kLogStart = 1 - 9.5/32 to twice that in 16 cells, each half an eighth
// of its binade, with 1 inside cell 9; c[j] is near the inverse of the cell's middle, a multiple of 1/512 so that m c -
// 1 loses nothing, and |m c - 1| <= 0.0336. The logarithms of 1/c[j] in two parts: the high one is a multiple of 2^-42,
// so that a multiple of the high part of log 2 can be added without rounding.
inline constexpr double kLogStart = 0.703125;
alignas(64) inline constexpr double kInverse[16] = {
    0x1.6400000000000p+0, 0x1.5580000000000p+0, 0x1.4780000000000p+0, 0x1.3b00000000000p+0, 0x1.2f80000000000p+0,
    0x1.2480000000000p+0, 0x1.1a80000000000p+0, 0x1.1100000000000p+0, 0x1.0880000000000p+0, 1,
    0x1.e200000000000p-1, 0x1.c700000000000p-1, 0x1.af00000000000p-1, 0x1.9a00000000000p-1, 0x1.8600000000000p-1,
    0x1.7400000000000p-1,
};
alignas(64) inline constexpr double kLnHigh[16] = {
    -0x1.51aad872e0000p-2, -0x1.27161913f8000p-2, -0x1.f871b28956000p-3, -0x1.a8becfc882000p-3, -0x1.5c94007598000p-3,
    -0x1.10f8e42254000p-3, -0x1.9375e55594000p-4, -0x1.0759835990000p-4, -0x1.0b94f7c198000p-5, 0,
    0x1.eea31c0068000p-5,  0x1.e3707ee304000p-4,  0x1.60b3100b0a000p-3,  0x1.c6ffbc6f00000p-3,  0x1.16b5ccbad0000p-2,
    0x1.4718dc271c000p-2,
};
alignas(64) inline constexpr double kLnLow[16] = {
    0x1.f4bd8db0a7cc1p-44,  -0x1.4f4f1f61564b4p-44,
    0x1.f75fd6a526efep-44,  -0x1.e3185cf21b9cfp-44,
    0x1.a8d948cd23322p-44,  0x1.93b3843396307p-45,
    -0x1.eddc37380c364p-44, 0x1.b8ecfe4b59987p-44,
    0x1.e89896f022783p-45,  0,
    0x1.c3dd83606d891p-44,  0x1.0f684e6766abdp-45,
    -0x1.71456c988f814p-44, 0x1.ee138d3a69d43p-44,
    -0x1.23299042d74bfp-44, 0x1.06c18fb4c14c5p-44,
};
alignas(64) inline constexpr double kLog10High[16] = {
    -0x1.254b4d35e8000p-3, -0x1.004f0857ee000p-3, -0x1.b627942aec000p-4, -0x1.70eddb7d80000p-4, -0x1.2ec568056c000p-4,
    -0x1.da338aaa98000p-5, -0x1.5e70fd3ee8000p-5, -0x1.c97c3735e0000p-6, -0x1.d0d65e8900000p-7, 0,
    0x1.ada2e8e3e0000p-6,  0x1.a3e9002c70000p-5,  0x1.3259d2107c000p-4,  0x1.8b350364c8000p-4,  0x1.e42b4c16cc000p-4,
    0x1.1c1ce9955c000p-3,
};
alignas(64) inline constexpr double kLog10Low[16] = {
    0x1.61f143538008cp-46,  0x1.d218966360097p-46,
    -0x1.dba29d8601f93p-45, 0x1.5f89d049ffd9dp-44,
    -0x1.6e95635907534p-48, -0x1.4173b2a06eb58p-46,
    0x1.4cc1c6bf68db0p-45,  -0x1.f028fb72dfe8ap-44,
    -0x1.0169545b91b96p-45, 0,
    0x1.51bd19e6e701ap-44,  0x1.1d257c8d0d386p-45,
    0x1.b5474ae667c99p-44,  -0x1.da8c4bd8546e7p-44,
    -0x1.50d780639590cp-44, 0x1.8b891b6d05a73p-48,
};

// atan(j/16), and what the entry lacks.
alignas(64) inline constexpr double kArctan16[16] = {0,
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
alignas(64) inline constexpr double kArctan16Error[16] = {0,
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

}  // namespace sigvex::elementwise
