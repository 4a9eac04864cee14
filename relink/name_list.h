// The file names of one folder, held in one piece of storage.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumo::exs::relink {

/// Names one behind the other, each with a NUL at its end; a name is known by where it begins.
class NameList {
public:
    /// Adds a name, which has no NUL in it.
    void add(std::string_view name) {
        bytes_.append(name).push_back('\0');
        ++count_;
    }

    /// Leaves no name, and the storage for others.
    void clear() {
        bytes_.clear();
        count_ = 0;
    }

    std::size_t count() const { return count_; }

    /// The name that begins at `place`. Reads no memory of its own.
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
