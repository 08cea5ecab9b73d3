// The numbers of the Bessel functions J0, J1, Y0, Y1. Fits of the functions in extended precision by weighted least
// squares over the Chebyshev nodes of the stated range, the coefficients rounded one after the other and the rest
// fitted again; the errors are those of the rounded ones.
#pragma once

#include <array>

namespace sigvex::elementwise {

// For |x| < 2, t = x^2: J0 = 1 - t/4 + t^2 p(t), relative error 2^-69.3; J1 = x/2 + x t p(t), relative error 2^-64.9.
inline constexpr std::array kJ0Near = {0x1p-6,
                                       -0x1.c71c71c71c71ap-12,
                                       0x1.c71c71c71c4a5p-18,
                                       -0x1.234567899b7dap-24,
                                       0x1.02e85c014af81p-31,
                                       -0x1.522a400dbadbbp-39,
                                       0x1.5228f9e988b9dp-47,
                                       -0x1.0aef45441a6d4p-55,
                                       0x1.47549aa243ec1p-64};
inline constexpr std::array kJ1Near = {-0x1p-4,
                                       0x1.5555555555553p-9,
                                       -0x1.c71c71c71c427p-15,
                                       0x1.6c16c16bff3bfp-21,
                                       -0x1.845c8a00a23cfp-28,
                                       0x1.27e4f7bc91f93p-35,
                                       -0x1.5228e44717b07p-43,
                                       0x1.2c4a09ccdf408p-51,
                                       -0x1.98c9455947246p-60};

// For 0 < x < 2, z being the zero the logarithm is counted from:
//   Y0 = 2/pi ln(x/z) J0 + (t - z^2) p(t), to 2^-59.3 of the larger of J0 and Y0;
//   Y1 = 2/pi (ln(x/z) J1 - 1/x) + x p(t), relative error 2^-64.9.
inline constexpr std::array kY0Near = {0x1.750811790a13cp-3,   -0x1.12583f4a4abbcp-6,  0x1.268a9aaaea68p-11,
                                       -0x1.4c030d995b0c2p-17, 0x1.cf0413b3b1b66p-24,  -0x1.b796f80d1120fp-31,
                                       0x1.2eb1ec6522322p-38,  -0x1.3be698fcc496ep-46, 0x1.ecadeaf8b1707p-55};
inline constexpr std::array kY1Near = {0x1.be7ca90a177f5p-5,   0x1.794d600864ec5p-6,   -0x1.b09e2763b6a9ap-10,
                                       0x1.74ead02fd019ep-15,  -0x1.5e7c55b9b47f7p-21, 0x1.a32db0233925p-28,
                                       -0x1.5c86da068f0a6p-35, 0x1.ab23051a346aap-43,  -0x1.91b3efd1a58f8p-51,
                                       0x1.1cf3da54928a9p-59};

// The square of the first zero of Y0, in two parts.
inline constexpr double kSquaredZeroOfY0[2] = {0x1.98d257f93404ap-1, 0x1.b7acb8a94e405p-55};

// The logarithms of the first zeros of Y0 and Y1 in two parts, the high one a multiple of 2^-42 as in the logarithm's
// own table.
inline constexpr double kLnOfZeroOfY[2][2] = {{-0x1.cce4b73e7p-4, 0x1.fb55eb41e5829p-45},
                                              {0x1.930641fe988p-1, 0x1.a3cf2401df322p-47}};

// For x >= 2, u = 1/x^2: sqrt(J^2 + Y^2) = sqrt(2 / (pi x)) (1 + u p/q of u), the amplitude, to 2^-57.8 of itself, and
// atan2(Y, J) = x - pi/4 (order 0) or 3/4 pi (order 1) + c/x + u/x p/q of u, the phase, to 2^-60 / x.
struct Wave {
  double c;
  std::array<double, 10> amplitude[2];
  std::array<double, 11> phase[2];
};
inline constexpr Wave kWave[2] = {
    {-0.125,
     {{-0x1.ffffffffff058p-5, -0x1.6f7a13fb61f54p+3, -0x1.741c03c0f1449p+9, -0x1.5680fac69288bp+14,
       -0x1.341eacbc9861ap+18, -0x1.0f4a950d8ee8fp+21, -0x1.bb1ea7041d25dp+22, -0x1.26ea2bea2a68ap+23,
       -0x1.d9755cec9791bp+21, -0x1.14e1e9a5d657ap+17},
      {0x1p+0, 0x1.72ca13fb57586p+7, 0x1.7d6f0285f5935p+13, 0x1.68c3ce6a19f43p+18, 0x1.53f2d33062588p+22,
       0x1.43d942f6957bep+25, 0x1.2ec335a77de95p+27, 0x1.0064ee828a7b7p+28, 0x1.4c814045608e3p+27,
       0x1.b80c8cac10a88p+24}},
     {{0x1.0aaaaaaaaa7e2p-4, 0x1.0b2ec7014d442p+4, 0x1.86158b4fe6564p+10, 0x1.0d0802b8c0e9ep+16, 0x1.7ca1bb3080d79p+20,
       0x1.190696b4e7979p+24, 0x1.a67effb5a7124p+26, 0x1.2d969ada9ee48p+28, 0x1.6249ecc51de17p+28,
       0x1.ecfee7336ed22p+26, 0x1.3202564c8053cp+21},
      {0x1p+0, 0x1.03b6e3e8a9fd7p+8, 0x1.832685c03f256p+14, 0x1.143c3425e5ba1p+20, 0x1.9cc5b500d7f25p+24,
       0x1.4c6c739c9c1b5p+28, 0x1.1ebe118f98c6fp+31, 0x1.fe01a36277e23p+32, 0x1.af7e7b8de2d9ap+33,
       0x1.28561cd0d0ea1p+33, 0x1.c6216f176ce37p+30}}},
    {0.375,
     {{0x1.7fffffffffa45p-3, 0x1.0b27d9534608ap+5, 0x1.0592bf1234939p+11, 0x1.d09653c6c48e8p+15, 0x1.92a6bc97a6d39p+19,
       0x1.55706a664c6e8p+22, 0x1.0cf7ea1571a15p+24, 0x1.5b0f29dda38c8p+24, 0x1.1262e6d91e55bp+23,
       0x1.75812dc07c3c9p+18},
      {0x1p+0, 0x1.664521c458567p+7, 0x1.62672a9930d0cp+13, 0x1.406f5a7424eb5p+18, 0x1.1e85bf652ef03p+22,
       0x1.008e852cf8f7dp+25, 0x1.bd365e07b2aep+26, 0x1.57d95e9301da7p+27, 0x1.8c9145ba05857p+26,
       0x1.c18807be02d3fp+23}},
     {{-0x1.4fffffffffe08p-3, -0x1.47ad459df3e76p+5, -0x1.d0d98fd255022p+11, -0x1.371b554e29167p+17,
       -0x1.aadfa8ba8b3cfp+21, -0x1.31c36938daa78p+25, -0x1.bead9abe8d986p+27, -0x1.36c0f634921eap+29,
       -0x1.6559c8441fff9p+29, -0x1.e8b2c26fba55ep+27, -0x1.07ca1ca1cc676p+22},
      {0x1p+0, 0x1.f7d6a9793667cp+7, 0x1.6ad8288882929p+14, 0x1.f2041f879fbe6p+19, 0x1.63f59b5e73be1p+24,
       0x1.108066d6e436ap+28, 0x1.bb88d1b89fccp+30, 0x1.70f634ed6846bp+32, 0x1.216a4bf2252c8p+33, 0x1.6e6f1397574eap+32,
       0x1.05b382a302d3fp+30}}}};

// 2/pi - the number nearest to it
inline constexpr double k2OverPiRest = -0x1.6b01ec541706p-55;

}  // namespace sigvex::elementwise
