// Mutexes, conditions and waiting for a word of memory. The objects in a Mac program's memory have
// other sizes and initial values than those of this system, so each contains a pointer to an object
// of this system, made at first use.
#include "loader/image.h"
#include "system/system.h"

#include <linux/futex.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

namespace lumo::macos {
namespace {

/// The initial value of a condition or mutex. The mutex detects a thread that locks it twice, which
/// waits forever on a Mac.
template <class Here>
const Here initial{};
template <>
const pthread_mutex_t initial<pthread_mutex_t> = PTHREAD_ERRORCHECK_MUTEX_INITIALIZER_NP;

/// A mutex or condition of a Mac program: a signature, and room for a pointer.
template <class Here>
struct Made {
    long signature;
    std::atomic<Here*> here;

    Here* get() {
        Here* existing = here.load(std::memory_order_acquire);
        if (existing) {
            return existing;
        }
        Here* made = new Here(initial<Here>);
        if (here.compare_exchange_strong(existing, made)) {
            return made;
        }
        delete made;
        return existing;
    }
};

constexpr long once_done = 0x4f4e4345;
constexpr long mutex_made = 0x32aaaba7;
constexpr long mutex_destroyed = 0;

struct MacAttributes {
    long signature;
    int kind;
};

using Mutex = Made<pthread_mutex_t>;
using Condition = Made<pthread_cond_t>;

int mac_mutex_init(Mutex* mutex, const MacAttributes* attributes) {
    mutex->signature = mutex_made;
    mutex->here = nullptr;
    if (attributes && attributes->kind != 0 && attributes->kind != 2) {
        unknown("kind of mutex", attributes->kind);
    }
    if (attributes && attributes->kind == 2) { // PTHREAD_MUTEX_RECURSIVE
        pthread_mutexattr_t here;
        ::pthread_mutexattr_init(&here);
        ::pthread_mutexattr_settype(&here, PTHREAD_MUTEX_RECURSIVE);
        ::pthread_mutex_init(mutex->get(), &here);
    }
    return 0;
}

int mac_mutex_destroy(Mutex* mutex) {
    delete mutex->here.exchange(nullptr);
    mutex->signature = mutex_destroyed;
    return 0;
}

int mac_mutex_lock(Mutex* mutex) {
    if (mutex->signature == mutex_destroyed) {
        return EINVAL;
    }
    const int error = ::pthread_mutex_lock(mutex->get());
    if (error == EDEADLK) {
        give_up("a thread waits for a mutex that it holds itself");
    }
    return error_result(error);
}

int mac_mutex_trylock(Mutex* mutex) {
    return error_result(::pthread_mutex_trylock(mutex->get()));
}

int mac_mutex_unlock(Mutex* mutex) {
    const int error = ::pthread_mutex_unlock(mutex->get());
    if (error == EPERM) {
        give_up("a thread unlocks a mutex that it does not hold");
    }
    return error_result(error);
}

int mac_attributes_init(MacAttributes* attributes) {
    attributes->kind = 0;
    return 0;
}

int mac_attributes_destroy(MacAttributes*) {
    return 0;
}

int mac_attributes_settype(MacAttributes* attributes, int kind) {
    attributes->kind = kind;
    return 0;
}

int mac_cond_wait(Condition* condition, Mutex* mutex) {
    return error_result(::pthread_cond_wait(condition->get(), mutex->get()));
}

int mac_cond_timedwait(Condition* condition, Mutex* mutex, const timespec* until) {
    return error_result(::pthread_cond_timedwait(condition->get(), mutex->get(), until));
}

int mac_cond_signal(Condition* condition) {
    return error_result(::pthread_cond_signal(condition->get()));
}

int mac_cond_broadcast(Condition* condition) {
    return error_result(::pthread_cond_broadcast(condition->get()));
}

int mac_cond_destroy(Condition* condition) {
    delete condition->here.exchange(nullptr);
    return 0;
}

int mac_once(long* once, void (*function)()) {
    static pthread_mutex_t mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
    ::pthread_mutex_lock(&mutex);
    if (*once != once_done) {
        function();
        *once = once_done;
    }
    ::pthread_mutex_unlock(&mutex);
    return 0;
}

int mac_ulock_wait(std::uint32_t, void* place, std::uint64_t value, std::uint32_t microseconds) {
    timespec time{microseconds / 1000000, microseconds % 1000000 * 1000L};
    return done(static_cast<int>(::syscall(SYS_futex, place, FUTEX_WAIT_PRIVATE, value,
                                           microseconds ? &time : nullptr, nullptr, 0)));
}

int mac_ulock_wake(std::uint32_t operation, void* place, std::uint64_t) {
    const int count = operation & 0x100 ? 0x7fffffff : 1; // ULF_WAKE_ALL
    return done(static_cast<int>(
        ::syscall(SYS_futex, place, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0)));
}

const Name names[] = {
    row("_pthread_mutex_init", mac_mutex_init),
    row("_pthread_mutex_destroy", mac_mutex_destroy),
    row("_pthread_mutex_lock", mac_mutex_lock),
    row("_pthread_mutex_trylock", mac_mutex_trylock),
    row("_pthread_mutex_unlock", mac_mutex_unlock),
    row("_pthread_mutexattr_init", mac_attributes_init),
    row("_pthread_mutexattr_destroy", mac_attributes_destroy),
    row("_pthread_mutexattr_settype", mac_attributes_settype),
    row("_pthread_cond_wait", mac_cond_wait),
    row("_pthread_cond_timedwait", mac_cond_timedwait),
    row("_pthread_cond_signal", mac_cond_signal),
    row("_pthread_cond_broadcast", mac_cond_broadcast),
    row("_pthread_cond_destroy", mac_cond_destroy),
    row("_pthread_once", mac_once),
    row("___ulock_wait", mac_ulock_wait),
    row("___ulock_wake", mac_ulock_wake),
};

} // namespace

std::span<const Name> mutex_names() {
    return names;
}

} // namespace lumo::macos
