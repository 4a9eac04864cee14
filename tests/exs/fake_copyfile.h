// A copyfile that copies, or does as a test says, linked in place of the real one.
#pragma once

#include <copyfile.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace lumo::test {

/// What copying does, and what was copied. Every test begins with a fresh one.
struct FakeCopyfile {
    /// Called before a copy is made, with its number, from 1; an error number makes it fail.
    std::function<int(int copy, const std::string& to)> before = [](int, const std::string&) {
        return 0;
    };
    /// Called when a copy has been made.
    std::function<void(const std::string& to)> after = [](const std::string&) {};
    std::vector<std::pair<std::string, std::string>> copies; ///< from, to
    copyfile_flags_t flags = 0;                              ///< of the last copy
};

/// The one that copyfile uses.
FakeCopyfile& copier();

} // namespace lumo::test
