// A session is made by begin and gone after end; nothing of it is made before or kept after.
// Look-ups take one lock: they are rare beside the opening and reading of samples, and the index
// may be gone as soon as end has returned.
#include "session.h"

#include "apple_library.h"
#include "sample_names.h"
#include <lumo/relink.h>

#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace lumo::exs::relink {
namespace session {
namespace {

/// The file to use for a recorded path; nothing for one that is unresolved or Apple's.
using Answers = std::unordered_map<std::string, std::optional<std::string>>;

struct Session {
    const SampleIndex& index;
    Answers answers;
    Result result;
};

constinit std::mutex mutex;
constinit std::unique_ptr<Session> current; // guarded by mutex
constinit thread_local bool is_inside = false;

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
    if (current && current->answers.try_emplace(path).second) {
        current->result.apple_library.emplace_back(path);
    }
    return false;
}

std::optional<std::string> replacement(const char* path,
                                       bool (*is_readable)(const char*)) noexcept {
    const std::lock_guard lock(mutex);
    if (!current) {
        return std::nullopt;
    }
    const auto [answer, is_new] = current->answers.try_emplace(path);
    if (is_new) {
        std::optional<std::string> found = current->index.find(path);
        if (found && is_readable(found->c_str())) {
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
    session::current.reset(new session::Session{index, {}, {}});
    session::opened.store(true, std::memory_order_relaxed);
}

Result end() {
    const std::lock_guard lock(session::mutex);
    session::opened.store(false, std::memory_order_relaxed);
    const std::unique_ptr<session::Session> ended = std::move(session::current);
    return ended ? std::move(ended->result) : Result{};
}

} // namespace lumo::exs::relink
