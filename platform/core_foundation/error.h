// Errors: domain, code and description of a failure.
#pragma once

#include "core_foundation/object.h"

#include <string_view>
#include <utility>

namespace lumo::platform {

/// An error; domain and description are Strings.
struct Error : Object {
    Error(CFIndex error_code, Owned error_domain, Owned error_description)
        : Object{Kind::error}, code{error_code}, domain{std::move(error_domain)},
          description{std::move(error_description)} {}

    CFIndex code;
    Owned domain;
    Owned description;
};

/// An error of kCFErrorDomainCocoa; `description` is ASCII text.
Owned make_cocoa_error(CFIndex code, std::string_view description);

} // namespace lumo::platform
