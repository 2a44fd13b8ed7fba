# Compiler flags shared by every target. They apply to the whole build, so that a kernel gives the
# same bits wherever it is compiled.
add_library(quillet_flags INTERFACE)
target_compile_options(
  quillet_flags
  INTERFACE -Wall
            -Wextra
            -Wshadow
            -Wconversion
            -Wno-sign-conversion
            # GCC 12 sees an overlap in every "literal" + std::string.
            $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
            # Kernels join tests without a branch, and Clang leaves a few of their loops scalar.
            $<$<CXX_COMPILER_ID:Clang>:-Wno-bitwise-instead-of-logical>
            $<$<CXX_COMPILER_ID:Clang>:-Wno-pass-failed>
            # Results must not depend on the machine: no fused multiply-add.
            -ffp-contract=off
            # Without these two, loops with a square root or a comparison stay scalar.
            -fno-math-errno
            -fno-trapping-math
            # "#pragma omp simd" stands before loops whose iterations are independent; no library.
            -fopenmp-simd)
if(WIN32)
  # Windows keeps the stack at 16 bytes only, and GCC may count on more for large vectors there.
  include(CheckCXXCompilerFlag)
  check_cxx_compiler_flag(-Wa,-muse-unaligned-vector-move QUILLET_ASSEMBLER_MOVES_UNALIGNED)
  if(QUILLET_ASSEMBLER_MOVES_UNALIGNED)
    target_compile_options(quillet_flags INTERFACE -Wa,-muse-unaligned-vector-move)
  endif()
endif()
if(QUILLET_WERROR)
  target_compile_options(quillet_flags INTERFACE -Werror)
endif()
if(QUILLET_NATIVE)
  target_compile_options(quillet_flags INTERFACE -march=native)
endif()
if(QUILLET_SANITIZE)
  target_compile_options(quillet_flags INTERFACE -fsanitize=address,undefined
                                                 -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quillet_flags INTERFACE -fsanitize=address,undefined)
endif()
