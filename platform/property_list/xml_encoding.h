// Determines the encoding of an XML property list and converts it to UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The text of an XML property list in UTF-8: a part of `bytes` when they are UTF-8 (not
/// validated), else converted into `storage`, to which the result then refers. Nothing when the
/// declared encoding is unknown or does not define one of the bytes. Text in UTF-16 or UTF-32 ends
/// at its first invalid character.
std::optional<std::string_view> xml_text(std::string_view bytes, std::string& storage);

} // namespace lumo::platform
