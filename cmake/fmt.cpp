// The one unit that holds fmt's code. The library's own header-only way would compile it in every unit that formats.
#include <fmt/format-inl.h>

namespace fmt::detail {

template thousands_sep_result<char> thousands_sep_impl<char>(locale_ref);
template char decimal_point_impl<char>(locale_ref);
template void vformat_to(buffer<char>&, string_view, basic_format_args<buffer_context<char>>, locale_ref);

}  // namespace fmt::detail
