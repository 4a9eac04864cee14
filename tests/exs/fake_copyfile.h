// A copyfile controlled by a test, which copies unless it is set to fail; linked in place of the
// real one.
#pragma once

#include <copyfile.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace lumo::test {

/// The behaviour of copyfile, and a record of the calls. Every test begins with a new one.
struct FakeCopyfile {
    /// Called before a copy is made, with its number, from 1; the copy fails with the returned
    /// errno unless that is 0.
    std::function<int(int copy, const std::string& to)> before = [](int, const std::string&) {
        return 0;
    };
    /// Called after a copy has been made.
    std::function<void(const std::string& to)> after = [](const std::string&) {};
    std::vector<std::pair<std::string, std::string>> copies; ///< from, to
    copyfile_flags_t flags = 0;                              ///< of the last copy
};

/// The instance that copyfile uses.
FakeCopyfile& copier();

} // namespace lumo::test
