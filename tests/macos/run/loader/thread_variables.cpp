// Thread-local variables: each thread has a copy of an image's thread-local part, made at first
// use and freed when the thread ends.
#include "loader/parts.h"

#include <pthread.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <utility>

namespace lumo::macos {
namespace {

bool are_allowed = false;

/// One copy. A thread's copies are a linked list.
struct Block {
    const Image* image;
    char* bytes;
    Block* next;
};

/// The thread's copy of the image's thread-local part.
char* make_block(const Image& image) {
    const char *start = nullptr, *end = nullptr;
    for (const Section* section : image.sections) {
        const std::uint32_t kind = section->flags & section_kind;
        if (kind == section_thread_data || kind == section_thread_zero_fill) {
            start = start ? start : image.at(section->address);
            end = image.at(section->address) + section->size;
        }
    }
    const auto size = static_cast<std::size_t>(end - start);
    char* bytes = static_cast<char*>(::operator new (size, std::align_val_t{64}));
    std::memcpy(bytes, start, size);
    return bytes;
}

void free_blocks(void* first) {
    for (Block* block = static_cast<Block*>(first); block;) {
        ::operator delete (block->bytes, std::align_val_t{64});
        delete std::exchange(block, block->next);
    }
}

} // namespace

/// The calling thread's copy of the image's thread-local part, called by lumo_thread_variable.
extern "C" char* lumo_thread_block(const Image* image) {
    if (!are_allowed) {
        give_up("a thread-local variable was used before libSystem is initialised");
    }
    static const pthread_key_t key = [] {
        pthread_key_t made = 0;
        ::pthread_key_create(&made, free_blocks);
        return made;
    }();
    thread_local Block* blocks = nullptr;
    for (const Block* block = blocks; block; block = block->next) {
        if (block->image == image) {
            return block->bytes;
        }
    }
    blocks = new Block{image, make_block(*image), blocks};
    ::pthread_setspecific(key, blocks);
    return blocks->bytes;
}

void allow_thread_variables() {
    are_allowed = true;
}

void prepare_thread_variables(Image& image) {
    for (const Section* section : image.sections) {
        if ((section->flags & section_kind) == section_thread_variables) {
            auto* variables = reinterpret_cast<ThreadVariable*>(image.at(section->address));
            for (std::size_t i = 0; i < section->size / sizeof(ThreadVariable); ++i) {
                variables[i].get = lumo_thread_variable;
                variables[i].image = &image;
            }
        }
    }
}

} // namespace lumo::macos
