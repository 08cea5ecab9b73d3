// SIGVEX_EXPORT turns the template of an operation into its two C functions.
//
//   SIGVEX_EXPORT(i, log, 1)       defines dspi_log and dspfi_log from sigvex::dspi::log<T>
//   SIGVEX_EXPORT(, alloc, 1)      defines dsp_alloc and dspf_alloc from sigvex::dsp::alloc<T>
//
//   SIGVEX_EXPORT_SHARED(, version, 0)     the same, but dspf_version is a further name of dsp_version
//   SIGVEX_EXPORT_AS(i, erfc, dspi_erf)    dspi_erfc and dspfi_erfc are further names of dspi_erf, defined above it
//
// The last argument is the number of parameters; their types and the result's are read from sigvex.h, so the header is
// the only signature: a missing prototype or a wrong number is a compile error at the export line. A parameter that the
// template takes by reference is required (null is refused with -1), one that it takes as a pointer may be null.
#pragma once

#include <new>
#include <type_traits>

#include "core/vector.h"

namespace sigvex {

template <size_t I, class F> struct Parameter;
template <class R, class First, class... Rest> struct Parameter<0, R(First, Rest...)> { using type = First; };
template <size_t I, class R, class First, class... Rest>
struct Parameter<I, R(First, Rest...)> : Parameter<I - 1, R(Rest...)> {};

template <class F> struct Result;
template <class R, class... P> struct Result<R(P...)> { using type = R; };

template <class P, class A> constexpr bool missing(A argument) {
  if constexpr (std::is_lvalue_reference_v<P>) return argument == nullptr;
  else return (static_cast<void>(argument), false);
}

template <class P, class A> constexpr P adapted(A argument) {
  if constexpr (std::is_lvalue_reference_v<P>) return *argument;
  else return argument;
}

// A status is -1, a stream is null.
template <class R> constexpr R failed() {
  if constexpr (std::is_pointer_v<R>) return nullptr;
  else return kFailure;
}

// Exhausted private buffers are the only exception that the library's code can meet.
template <class R, class... P, class... A> R call(R (*operation)(P...), A... arguments) noexcept {
  if ((missing<P>(arguments) || ...)) return failed<R>();
  try {
    return operation(adapted<P>(arguments)...);
  } catch (const std::bad_alloc&) {
    return failed<R>();
  }
}

}  // namespace sigvex

#define SIGVEX_P(i, name) sigvex::Parameter<i, decltype(name)>::type p##i
#define SIGVEX_DECLARE_0(name)
#define SIGVEX_DECLARE_1(name) SIGVEX_P(0, name)
#define SIGVEX_DECLARE_2(name) SIGVEX_DECLARE_1(name), SIGVEX_P(1, name)
#define SIGVEX_DECLARE_3(name) SIGVEX_DECLARE_2(name), SIGVEX_P(2, name)
#define SIGVEX_DECLARE_4(name) SIGVEX_DECLARE_3(name), SIGVEX_P(3, name)
#define SIGVEX_DECLARE_5(name) SIGVEX_DECLARE_4(name), SIGVEX_P(4, name)
#define SIGVEX_DECLARE_6(name) SIGVEX_DECLARE_5(name), SIGVEX_P(5, name)
#define SIGVEX_DECLARE_7(name) SIGVEX_DECLARE_6(name), SIGVEX_P(6, name)
#define SIGVEX_DECLARE_8(name) SIGVEX_DECLARE_7(name), SIGVEX_P(7, name)
#define SIGVEX_PASS_0
#define SIGVEX_PASS_1 , p0
#define SIGVEX_PASS_2 SIGVEX_PASS_1, p1
#define SIGVEX_PASS_3 SIGVEX_PASS_2, p2
#define SIGVEX_PASS_4 SIGVEX_PASS_3, p3
#define SIGVEX_PASS_5 SIGVEX_PASS_4, p4
#define SIGVEX_PASS_6 SIGVEX_PASS_5, p5
#define SIGVEX_PASS_7 SIGVEX_PASS_6, p6
#define SIGVEX_PASS_8 SIGVEX_PASS_7, p7

// Explicit instances, because other files link to them; an instance that is only inlined into its C function vanishes.
#define SIGVEX_EXPORT_ONE(name, operation, arity)                                      \
  template decltype(operation) operation;                                              \
  extern "C" sigvex::Result<decltype(name)>::type name(SIGVEX_DECLARE_##arity(name)) { \
    return sigvex::call(operation SIGVEX_PASS_##arity);                                \
  }

#define SIGVEX_EXPORT(family, op, arity)                                        \
  SIGVEX_EXPORT_ONE(dsp##family##_##op, sigvex::dsp##family::op<double>, arity) \
  SIGVEX_EXPORT_ONE(dspf##family##_##op, sigvex::dsp##family::op<float>, arity)

#define SIGVEX_EXPORT_SHARED(family, op, arity)                                 \
  SIGVEX_EXPORT_ONE(dsp##family##_##op, sigvex::dsp##family::op<double>, arity) \
  SIGVEX_FURTHER_NAME(dspf##family##_##op, dsp##family##_##op)
#define SIGVEX_EXPORT_AS(family, op, function)      \
  SIGVEX_FURTHER_NAME(dsp##family##_##op, function) \
  SIGVEX_FURTHER_NAME(dspf##family##_##op, function)
#define SIGVEX_FURTHER_NAME(name, function) extern "C" decltype(name) name __attribute__((alias(#function)));
