// The relink session of the process: chooses the file for a path and records the choice. It calls
// no file function of the C library; the shims call it through redirect.h.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>

namespace lumo::exs::relink::session {

/// Whether a session is open. The shims may run before any initialiser and in every thread, so they
/// use nothing else of the library until this is true.
extern constinit std::atomic<bool> opened;

/// Whether a session is open. A relaxed load: only a hint, the functions below check again under
/// the mutex.
inline bool is_open() noexcept {
    return opened.load(std::memory_order_relaxed);
}

/// Marks the calling thread as being inside a look-up while this object exists.
class Inside {
public:
    Inside() noexcept;
    ~Inside();
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

    /// Whether the thread was not inside a look-up before. Calls made during a look-up are not
    /// redirected.
    bool is_first() const noexcept { return is_first_; }

private:
    bool is_first_;
};

/// Whether the session looks for a file for `path` (may be null) if it is absent: it has a sample's
/// name and is not in Apple's library. Records a path in Apple's library, whether or not it exists.
bool looks_for(const char* path) noexcept;

/// Records the existing `path` as Apple's if links lead into Apple's library. For each new path
/// calls `is_link`, and `real_path` for a link or for a folder that is new. looks_for must have
/// returned true.
void note_present(const char* path, bool (*is_link)(const char*),
                  std::string (*real_path)(const char*)) noexcept;

/// The indexed file to use for the absent `path`; nothing when the index has none that `serves`
/// accepts. The first answer for a path is recorded and does not change.
std::optional<std::string> replacement(const char* path,
                                       const std::function<bool(const char*)>& serves) noexcept;

} // namespace lumo::exs::relink::session
