// Loops over nodes or cells, built for several kinds of processors. The form that runs is chosen
// once, when the program starts. All forms give the same bits: contraction is off for the whole
// build, and no form has operations that round differently. Only which NaN comes of two NaNs may
// differ, which compilers do not promise.
//
//     KERNEL_LOOP void add_arrays(std::int64_t count, const float* a, const float* b, float* sum) {
//     #pragma omp simd
//       for (std::int64_t i = 0; i < count; ++i) sum[i] = a[i] + b[i];
//     }
//
//     Kernel<add_arrays>::run(count, a, b, sum);
//
// The pragma promises that no iteration depends on another: an array that is written is another
// one than those that are read, or the same element by element. Inline functions that the loop
// calls become part of every form; out-of-line ones are built once, for any processor.
#pragma once

#include <bit>
#include <cstdint>
#include <span>

// What stands before the loop of a kernel: it becomes part of every form. A macro, because an
// attribute cannot be anything else.
#define KERNEL_LOOP [[gnu::always_inline]] inline

namespace quillet {

enum class KernelForm {
  portable,  // any processor
  avx2,      // x86-64, vectors of 256 bits
  avx512,    // x86-64, vectors of 512 bits: AVX-512 F, BW, DQ and VL
};

// What this processor and its system can run, the best form last.
std::span<const KernelForm> KERNEL_FORMS();

// The form that runs: the best one, unless tests or measurements choose another.
KernelForm CHOSEN_KERNEL_FORM();
void CHOOSE_KERNEL_FORM(KernelForm form);

template <auto loop>
class Kernel;

template <typename Result, typename... Arguments, Result (*loop)(Arguments...)>
class Kernel<loop> {
 public:
#if defined(__x86_64__)
  static Result run(Arguments... arguments) {
    switch (CHOSEN_KERNEL_FORM()) {
      case KernelForm::avx512:
        return avx512(arguments...);
      case KernelForm::avx2:
        return avx2(arguments...);
      default:
        return portable(arguments...);
    }
  }

 private:
  [[gnu::target("avx512f,avx512bw,avx512dq,avx512vl")]] static Result avx512(
      Arguments... arguments) {
    return loop(arguments...);
  }
  [[gnu::target("avx2")]] static Result avx2(Arguments... arguments) {
    return loop(arguments...);
  }
#else
  static Result run(Arguments... arguments) {
    return portable(arguments...);
  }

 private:
#endif
  static Result portable(Arguments... arguments) {
    return loop(arguments...);
  }
};

// a when the condition holds, else b: for what is stored either way. It is done in bits, because
// compilers make a conditional store of a choice between values that are stored, and with those
// some processors take ten times as long.
template <typename Value>
KERNEL_LOOP Value SELECT(bool condition, Value a, Value b) {
  static_assert(sizeof(Value) == sizeof(std::uint32_t));
  const std::uint32_t mask = -static_cast<std::uint32_t>(condition);
  return std::bit_cast<Value>((std::bit_cast<std::uint32_t>(a) & mask) |
                              (std::bit_cast<std::uint32_t>(b) & ~mask));
}

}  // namespace quillet
