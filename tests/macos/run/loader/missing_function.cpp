// A function for an import that does not exist: a few instructions that load its name and jump to
// lumo_missing_function. Only a call of it is an error.
#include "loader/parts.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstring>
#include <utility>

namespace lumo::macos {

extern "C" [[noreturn]] void lumo_missing_function(const char* name) {
    give_up(std::string("a function that is not simulated was called: ") + name);
}

void* missing_function(const char* name) {
    static char* at = nullptr;
    static std::size_t left = 0;
    constexpr std::size_t size = 32;
    if (left < size) {
        left = 16 * page;
        at = static_cast<char*>(::mmap(nullptr, left, PROT_READ | PROT_WRITE | PROT_EXEC,
                                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (at == MAP_FAILED) {
            give_up("no memory for functions");
        }
    }
    const auto function = reinterpret_cast<std::uint64_t>(&lumo_missing_function);
#if defined(__aarch64__)
    constexpr std::uint32_t code[] = {0x58000080,  // ldr x0, name
                                      0x580000b0,  // ldr x16, function
                                      0xd61f0200}; // br x16
    std::memcpy(at, code, sizeof code);
    std::memcpy(at + 16, &name, 8);
    std::memcpy(at + 24, &function, 8);
    __builtin___clear_cache(at, at + size);
#else
    constexpr unsigned char code[] = {0x48, 0xbf, 0, 0, 0, 0, 0, 0, 0, 0, // mov rdi, name
                                      0x48, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, // mov rax, function
                                      0xff, 0xe0};                        // jmp rax
    std::memcpy(at, code, sizeof code);
    std::memcpy(at + 2, &name, 8);
    std::memcpy(at + 12, &function, 8);
#endif
    left -= size;
    return std::exchange(at, at + size);
}

} // namespace lumo::macos
