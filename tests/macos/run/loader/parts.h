// The functions that the files of the loader call in each other.
#pragma once

#include "loader/image.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::macos {

/// The size of a page of a Mac for this processor.

#if defined(__aarch64__)
constexpr std::size_t page = 16384;
#else
constexpr std::size_t page = 4096;
#endif

/// The value of a trivially copyable type at an address in a file or an image.
template <class Type>
const Type& as(const void* bytes) {
    return *static_cast<const Type*>(bytes);
}

/// All images in the order in which they were mapped, the program first.
const std::vector<Image*>& loaded_images();

/// Maps the program and then each library that has a file. `root` is that of load_program.
Image& map_program(const std::string& path, const std::string& root);

/// Maps an image's segments into memory, writable, at their distances from each other, and reads
/// its load commands. `file` is the part for this processor and is not needed afterwards.
void map_segments(Image& image, std::span<const char> file);

/// The part of the file, plain or universal, that is for this processor.
std::span<const char> part_for_this_processor(std::span<const char> file, const std::string& path);

/// Sets the access rights of the image's segments.
void protect(const Image& image);

/// Reads the names that an image exports.
void read_exports(Image& image);

/// The address of an import that names a library by `ordinal`; null if it does not exist.
void* find_import(const Image& image, int ordinal, std::string_view name);

/// A new function that ends the process with the message `name` when it is called. `name` must
/// outlive it.
void* missing_function(const char* name);

/// Writes the addresses for an image's chained fixups; called once for each image.
void bind(Image& image);

/// Reads the interpose sections of all libraries and stores the replacements. Binds the libraries
/// that have such a section.
void read_all_tuples();

/// Prepares the descriptors of an image's thread-local variables.
void prepare_thread_variables(Image& image);

} // namespace lumo::macos
