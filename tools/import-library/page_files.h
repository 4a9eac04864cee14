// The files of the folder page/, which the build puts into the program.
#pragma once

#include <string_view>

namespace lumo::library {

/// The page with marks in braces where the other two and the data go.
extern const std::string_view page_html;
extern const std::string_view page_css;
extern const std::string_view page_js;

} // namespace lumo::library
