// Which characters an XML property list is written in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumo::platform {

/// The text of an XML property list in UTF-8: a part of `bytes` when they are UTF-8 (unchecked),
/// else converted into `storage`, which the result then points into. Nothing when the encoding that
/// the file declares is not known or does not define one of its bytes. Text in UTF-16 or UTF-32
/// ends at its first invalid character.
std::optional<std::string_view> xml_text(std::string_view bytes, std::string& storage);

} // namespace lumo::platform
