// A state in a show refers to the show's samples by paths relative to the package. Before the state
// is loaded, these are joined with the path of the package, and each file must exist.
#include "references.h"
#include <lumo/exs.h>

#include <filesystem>
#include <system_error>

namespace lumo::exs {
namespace fs = std::filesystem;
namespace {

/// Joins the path of a reference with `package`, which ends in a slash or is empty. False, with
/// `error` set to the reason, when the reference is rejected.
bool resolve(std::string& path, const std::string& package, std::string& error) {
    if (path.empty() || path.front() == '/') {
        error = "not a path in the show: " + path;
        return false;
    }
    path.insert(0, package);
    std::error_code ignored;
    if (!fs::exists(fs::status(path, ignored))) {
        error = "missing from the show: " + path;
        return false;
    }
    return true;
}

} // namespace

const void* resolve_package_state(const void* state, const std::string& package,
                                  std::string& error) {
    References paths = references(state);
    const std::string folder = (fs::path(package) / "").string();
    for (auto& [key, path] : paths) {
        if (!resolve(path, folder, error)) {
            return nullptr;
        }
    }
    return with_references(state, paths).release();
}

} // namespace lumo::exs
