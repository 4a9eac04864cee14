// The folder of the real instruments, for all tests of them.
#pragma once

#include <filesystem>

namespace lumo::test {

/// The folder of real instruments; the tests are skipped when it does not exist.
inline const std::filesystem::path corpus = std::filesystem::path(LUMO_SHARED) / "corpus";

} // namespace lumo::test
