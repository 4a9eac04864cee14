// A C++ program for a Mac: exceptions within and across images, streams, the file system, threads,
// thread-local variables. Prints "all passed"; the exit status is the number of failures.
#include <unistd.h>

#include <cassert>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <iostream>
#include <map>
#include <mutex>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace fs = std::filesystem;

#define CHECK(what)                                                                                \
    do {                                                                                           \
        if (!(what)) {                                                                             \
            std::printf("FAILED line %d: %s\n", __LINE__, #what);                                  \
            ++failures;                                                                            \
        }                                                                                          \
    } while (false)

int failures = 0;

struct Tracks {
    static inline thread_local int alive = 0;
    static inline int destroyed = 0;
    Tracks() { ++alive; }
    ~Tracks() {
        --alive;
        ++destroyed;
    }
};

[[gnu::noinline]] int thrower(int depth) {
    Tracks here;
    volatile char room[100000]; // a large frame: its size is in the code
    room[static_cast<unsigned>(depth) % sizeof room] = 1;
    if (depth == 0) {
        throw std::runtime_error("from below");
    }
    return thrower(depth - 1) + room[0];
}

template <class... Values>
[[gnu::noinline]] long many(Values... values) { // uses every register that a function preserves
    Tracks here;
    std::vector<long> all{values...};
    long sum = 0;
    for (long v : all) {
        sum += v * (values + ...);
    }
    if (sum % 7 == 2) {
        throw sum;
    }
    return sum;
}

thread_local std::string text = "initial";
thread_local int number = 42;

int main() {
    // Thrown and caught in this program.
    try {
        thrower(5);
        CHECK(false);
    } catch (const std::exception& e) {
        CHECK(e.what() == std::string("from below"));
    }
    CHECK(Tracks::alive == 0 && Tracks::destroyed == 6);
    int caught = 0;
    for (long i = 0; i < 100; ++i) {
        long a = i, b = i * 3 + 1, c = i * 5 + 2, d = i * 7 + 3, e = i * 11 + 4;
        try {
            many(a, b, c, d, e, i, i + 1, i + 2);
        } catch (long value) {
            caught += value % 7 == 2;
        }
        CHECK(a == i && b == i * 3 + 1 && c == i * 5 + 2 && d == i * 7 + 3 && e == i * 11 + 4);
    }
    CHECK(caught > 5);
    // Thrown by libc++ and caught here; thrown through libc++'s frames.
    try {
        std::string("abc").at(7);
        CHECK(false);
    } catch (const std::out_of_range&) {
    }
    try {
        std::stoi("x");
        CHECK(false);
    } catch (const std::invalid_argument&) {
    }
    try {
        std::call_once(*std::make_unique<std::once_flag>(), [] { throw 5; });
        CHECK(false);
    } catch (int five) {
        CHECK(five == 5);
    }
    try {
        fs::file_size("/nowhere/at/all");
        CHECK(false);
    } catch (const fs::filesystem_error& e) {
        CHECK(e.code() == std::errc::no_such_file_or_directory);
        CHECK(std::string(e.what()).find("No such file or directory") != std::string::npos);
    }
    std::exception_ptr kept;
    try {
        throw std::logic_error("kept");
    } catch (...) {
        kept = std::current_exception();
    }
    try {
        std::rethrow_exception(kept);
    } catch (const std::logic_error& e) {
        CHECK(std::string(e.what()) == "kept");
    }
    // Streams.
    std::ostringstream out;
    out << 42 << ' ' << 3.5 << ' ' << std::hex << 255 << ' ' << true;
    CHECK(out.str() == "42 3.5 ff 1");
    std::istringstream in("17 word 2.5");
    int i;
    std::string word;
    double d;
    in >> i >> word >> d;
    CHECK(i == 17 && word == "word" && d == 2.5);
    // Files.
    const fs::path folder = fs::temp_directory_path() / ("macos-run-" + std::to_string(getpid()));
    fs::create_directories(folder / "a/b");
    std::ofstream(folder / "a/file.txt") << "line one\nline two\n";
    std::ifstream file(folder / "a/file.txt");
    std::string line;
    std::getline(file, line);
    CHECK(line == "line one" && file.tellg() == std::streampos(9));
    CHECK(fs::file_size(folder / "a/file.txt") == 18);
    CHECK(fs::is_directory(folder / "a/b") && !fs::exists(folder / "c"));
    fs::copy_file(folder / "a/file.txt", folder / "a/b/copy.txt");
    int entries = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        entries += entry.path().has_filename();
    }
    CHECK(entries == 4);
    CHECK(fs::last_write_time(folder / "a/file.txt") + std::chrono::hours(1) >
          fs::file_time_type::clock::now());
    CHECK(fs::canonical(folder / "a/../a/b").filename() == "b");
    CHECK(fs::remove_all(folder) == 5);
    // Threads.
    text = "main";
    std::mutex mutex;
    std::condition_variable condition;
    int ready = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            CHECK(text == "initial" && number == 42);
            text = "a longer text that needs memory of its own " + std::to_string(number++);
            const std::lock_guard lock(mutex);
            ++ready;
            condition.notify_all();
        });
    }
    {
        std::unique_lock lock(mutex);
        condition.wait(lock, [&] { return ready == 4; });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    CHECK(text == "main" && number == 42);
    auto future =
        std::async(std::launch::async, []() -> int { throw std::runtime_error("async"); });
    try {
        future.get();
        CHECK(false);
    } catch (const std::runtime_error& e) {
        CHECK(std::string(e.what()) == "async");
    }
    CHECK(std::regex_match("abc123", std::regex("[a-z]+[0-9]+")));
    std::cout << (failures ? "failed" : "all passed") << std::endl;
    return failures;
}
