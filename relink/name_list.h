// The file names of one folder in one allocation.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumo::exs::relink {

/// Names in sequence, each NUL-terminated; a name is identified by the offset of its first byte.
class NameList {
public:
    /// Adds a name without NUL.
    void add(std::string_view name) {
        bytes_.append(name).push_back('\0');
        ++count_;
    }

    /// Removes all names and keeps the storage.
    void clear() {
        bytes_.clear();
        count_ = 0;
    }

    std::size_t count() const { return count_; }

    /// The name that begins at offset `place`. Computes the address only; does not read the name.
    const char* at(std::size_t place) const { return bytes_.c_str() + place; }

    /// Calls `take(name, place)` for each name.
    template <class Take>
    void for_each(Take take) const {
        for (std::size_t place = 0; place < bytes_.size();) {
            const std::string_view name = at(place);
            take(name, place);
            place += name.size() + 1;
        }
    }

private:
    std::string bytes_;
    std::size_t count_ = 0;
};

} // namespace lumo::exs::relink
