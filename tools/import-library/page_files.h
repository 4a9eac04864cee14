// The files of the folder page/, which the build embeds in the program.
#pragma once

#include <string_view>

namespace lumo::library {

/// The page with marks in braces for the other two files and the data.
extern const std::string_view page_html;
extern const std::string_view page_css;
extern const std::string_view page_js;

} // namespace lumo::library
