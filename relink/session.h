// The one relink session of the process: which file to use for a path, and the record of it. It
// knows no function of the C library; the shims that do ask it through redirect.h.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>

namespace lumo::exs::relink::session {

/// Set while a session is open. The shims are called before any initialiser has run and in every
/// thread, so until this says true they touch nothing else of the library.
extern constinit std::atomic<bool> opened;

/// Whether a session is open, as far as this thread has heard: it decides nothing but whether the
/// session is asked.
inline bool is_open() noexcept {
    return opened.load(std::memory_order_relaxed);
}

/// Marks the calling thread as being inside a look-up for as long as it lives.
class Inside {
public:
    Inside() noexcept;
    ~Inside();
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    /// Whether the thread was not inside before: a look-up made from within one is left alone.
    bool is_first() const noexcept { return is_first_; }

private:
    bool is_first_;
};

/// Whether `path` (which may be null) is one that the session looks for when it is absent. One in
/// Apple's library is not: it is recorded here, whether or not it exists.
bool looks_for(const char* path) noexcept;

/// Records `path`, which the session looks for and where something is, as Apple's when it is in
/// Apple's library once links are resolved. The first time that a path is noted, `is_link` is asked
/// of it, and `real_path` of a link and of a folder that is new.
void note_present(const char* path, bool (*is_link)(const char*),
                  std::string (*real_path)(const char*)) noexcept;

/// The indexed file to use for `path`, which is absent, or nothing when the index has none that
/// `serves` confirms. Recorded when `path` is asked for the first time; the answer stays.
std::optional<std::string> replacement(const char* path,
                                       const std::function<bool(const char*)>& serves) noexcept;

} // namespace lumo::exs::relink::session
