// The compiled part of fmt. Debian has it as a shared library only, whose loading, with that of the
// C++ library behind it, takes a third of the program's start; fmt's header-only form would make
// every file that formats take three times as long to compile.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

// What fmt's headers declare and leave to its library.
template FMT_API auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref) -> char;
template FMT_API void buffer<char>::append(const char*, const char*);
template FMT_API void vformat_to(buffer<char>&, string_view,
                                 basic_format_args<FMT_BUFFER_CONTEXT(char)>, locale_ref);
template FMT_API auto dragonbox::to_decimal(float) noexcept -> dragonbox::decimal_fp<float>;
template FMT_API auto dragonbox::to_decimal(double) noexcept -> dragonbox::decimal_fp<double>;

}  // namespace detail
FMT_END_NAMESPACE
