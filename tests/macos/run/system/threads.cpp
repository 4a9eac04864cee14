// Threads, thread-specific values, and the functions called when a thread or the process ends.
#include "system/system.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdint>

// NOLINTBEGIN(bugprone-reserved-identifier): the names are glibc's
extern "C" int __cxa_thread_atexit_impl(void (*)(void*), void*, void*);
extern "C" int __cxa_atexit(void (*)(void*), void*, void*);
extern "C" char __dso_handle; // glibc crashes without one
// NOLINTEND(bugprone-reserved-identifier)

namespace lumo::macos {
namespace {

int mac_create(pthread_t* thread, const void* attributes, void* (*run)(void*), void* argument) {
    if (attributes) {
        unknown("thread attributes", 0);
    }
    return error_result(::pthread_create(thread, nullptr, run, argument));
}

int mac_join(pthread_t thread, void** result) {
    return error_result(::pthread_join(thread, result));
}

int mac_detach(pthread_t thread) {
    return error_result(::pthread_detach(thread));
}

pthread_t mac_self() {
    return ::pthread_self();
}

unsigned mac_number(pthread_t) {
    return static_cast<unsigned>(::gettid());
}

int mac_key_create(unsigned long* key, void (*destroy)(void*)) {
    pthread_key_t here = 0;
    const int result = ::pthread_key_create(&here, destroy);
    *key = here;
    return error_result(result);
}

int mac_key_delete(unsigned long key) {
    return error_result(::pthread_key_delete(static_cast<pthread_key_t>(key)));
}

void* mac_getspecific(unsigned long key) {
    return ::pthread_getspecific(static_cast<pthread_key_t>(key));
}

int mac_setspecific(unsigned long key, const void* value) {
    return error_result(::pthread_setspecific(static_cast<pthread_key_t>(key), value));
}

int mac_at_exit(void (*function)(void*), void* argument, void*) {
    return ::__cxa_atexit(function, argument, &__dso_handle);
}

void mac_at_thread_exit(void (*function)(void*), void* object) {
    ::__cxa_thread_atexit_impl(function, object, &__dso_handle);
}

const Name names[] = {
    row("_pthread_create", mac_create),           row("_pthread_join", mac_join),
    row("_pthread_detach", mac_detach),           row("_pthread_self", mac_self),
    row("_pthread_mach_thread_np", mac_number),   row("_pthread_key_create", mac_key_create),
    row("_pthread_key_delete", mac_key_delete),   row("_pthread_getspecific", mac_getspecific),
    row("_pthread_setspecific", mac_setspecific), row("___cxa_atexit", mac_at_exit),
    row("__tlv_atexit", mac_at_thread_exit),
};

} // namespace

std::span<const Name> thread_names() {
    return names;
}

} // namespace lumo::macos
