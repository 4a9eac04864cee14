// begin creates the session and end destroys it. Look-ups take one lock: they are rare compared
// with opening and reading samples, and the caller may destroy the index as soon as end has
// returned.
#include "session.h"

#include "apple_library.h"
#include "sample_names.h"
#include <lumo/relink.h>

#include <cstddef>
#include <memory>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lumo::exs::relink {
namespace session {
namespace {

/// The file to use for a recorded path; nothing for one that is unresolved or Apple's.
using Answers = std::unordered_map<std::string, std::optional<std::string>>;

struct Session {
    /// Records `path` as Apple's unless it was recorded before.
    void add_to_apple_library(const char* path) {
        if (answers.try_emplace(path).second) {
            result.apple_library.emplace_back(path);
        }
    }

    const SampleIndex& index;
    Answers answers;
    std::unordered_set<std::string> present; ///< recorded paths of existing samples
    std::unordered_map<std::string, std::string> real_folders; ///< by the folder's recorded path
    Result result;
};

constinit std::mutex mutex;
constinit std::unique_ptr<Session> current; // guarded by mutex
constinit thread_local bool is_inside = false;

/// The folder of `path` with links resolved. Cached, because an instrument has many samples in few
/// folders, and resolving a path takes a system call for each component.
const std::string& real_folder_of(std::string_view path, Session& session,
                                  std::string (*real_path)(const char*)) {
    const std::size_t slash = path.rfind('/');
    std::string folder(slash == std::string_view::npos ? "." : path.substr(0, slash + 1));
    const auto [known, is_new] = session.real_folders.try_emplace(std::move(folder));
    if (is_new) {
        known->second = real_path(known->first.c_str());
    }
    return known->second;
}

} // namespace

constinit std::atomic<bool> opened{false};

Inside::Inside() noexcept : is_first_(!is_inside) {
    is_inside = true;
}

Inside::~Inside() {
    if (is_first_) {
        is_inside = false;
    }
}

bool looks_for(const char* path) noexcept {
    if (path == nullptr || !is_sample_path(path)) {
        return false;
    }
    if (!is_in_apple_library(path)) {
        return true;
    }
    const std::lock_guard lock(mutex);
    if (current) {
        current->add_to_apple_library(path);
    }
    return false;
}

void note_present(const char* path, bool (*is_link)(const char*),
                  std::string (*real_path)(const char*)) noexcept {
    const std::lock_guard lock(mutex);
    if (!current || !current->present.emplace(path).second) {
        return;
    }
    const std::string real = is_link(path) ? real_path(path)
                                           : real_folder_of(path, *current, real_path) + '/' +
                                                 std::string(file_name(path));
    if (is_in_apple_library(real)) {
        current->add_to_apple_library(path);
    }
}

std::optional<std::string> replacement(const char* path,
                                       const std::function<bool(const char*)>& serves) noexcept {
    const std::lock_guard lock(mutex);
    if (!current) {
        return std::nullopt;
    }
    const auto [answer, is_new] = current->answers.try_emplace(path);
    if (is_new) {
        std::optional<std::string> found = current->index.find(path);
        if (found && serves(found->c_str())) {
            current->result.relinked.emplace_back(path, *found);
            answer->second = std::move(found);
        } else {
            current->result.unresolved.emplace_back(path);
        }
    }
    return answer->second;
}

} // namespace session

void begin(const SampleIndex& index) {
    const std::lock_guard lock(session::mutex);
    session::current.reset(new session::Session{index, {}, {}, {}, {}});
    session::opened.store(true, std::memory_order_relaxed);
}

Result end() {
    const std::lock_guard lock(session::mutex);
    session::opened.store(false, std::memory_order_relaxed);
    const std::unique_ptr<session::Session> ended = std::move(session::current);
    return ended ? std::move(ended->result) : Result{};
}

} // namespace lumo::exs::relink
