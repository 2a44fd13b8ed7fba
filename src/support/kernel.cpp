#include "support/kernel.h"

#include <array>
#include <cstddef>

namespace quillet {
namespace {

constexpr std::array all_forms{KernelForm::portable, KernelForm::avx2, KernelForm::avx512};

// The compilers' test looks at the processor and at what the system saves of it.
std::size_t count_forms() {
#if defined(__x86_64__)
  __builtin_cpu_init();
  if (!__builtin_cpu_supports("avx2")) return 1;
  const bool has_avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                          __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
  return has_avx512 ? 3 : 2;
#else
  return 1;
#endif
}

KernelForm chosen = KERNEL_FORMS().back();

}  // namespace

std::span<const KernelForm> KERNEL_FORMS() {
  static const std::size_t count = count_forms();
  return std::span(all_forms).first(count);
}

KernelForm CHOSEN_KERNEL_FORM() {
  return chosen;
}

void CHOOSE_KERNEL_FORM(KernelForm form) {
  chosen = form;
}

}  // namespace quillet
