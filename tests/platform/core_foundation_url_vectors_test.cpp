// URLs, compared with recorded results of CoreFoundation.
#include "platform/core_foundation_vectors.h"

#include <array>
#include <cstddef>
#include <filesystem>

namespace lumo::test {
namespace {

const std::array<const char*, 8> not_offered = {
    "string",        "base",      "absolute",     "hasDirectoryPath",
    "lastComponent", "extension", "deletingLast", "appending x y.wav"};

std::string text_of(CFStringRef string) {
    std::string text(static_cast<std::size_t>(CFStringGetMaximumSizeForEncoding(
                         CFStringGetLength(string), kCFStringEncodingUTF8)) +
                         1,
                     '\0');
    CFIndex used = 0;
    CFStringGetBytes(string, CFRangeMake(0, CFStringGetLength(string)), kCFStringEncodingUTF8, 0,
                     false, reinterpret_cast<UInt8*>(text.data()),
                     static_cast<CFIndex>(text.size()), &used);
    text.resize(static_cast<std::size_t>(used));
    return text;
}

Json path_of(CFURLRef url, bool resolve) {
    std::string buffer(4096, '\0');
    const bool ok =
        CFURLGetFileSystemRepresentation(url, resolve, reinterpret_cast<UInt8*>(buffer.data()),
                                         static_cast<CFIndex>(buffer.size())) != 0;
    return ok ? Json(to_hex(buffer.c_str())) : Json{};
}

/// A path resolved against a folder.
std::string resolved(const std::filesystem::path& folder, const std::string& path) {
    std::string text = (folder / path).lexically_normal().string();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    return text;
}

/// The resolved path of a record, moved from /tmp, where the records were made, to the current
/// folder of this test.
Json resolved_here(const Json& row, const std::string& path) {
    if (!row["fsrResolved"].is_string() || path.empty() || path.front() == '/') {
        return row["fsrResolved"];
    }
    EXPECT_EQ(Json(to_hex(resolved("/tmp", path))), row["fsrResolved"]) << row.dump();
    return to_hex(resolved(std::filesystem::current_path(), path));
}

void compare_url(ConformanceTable& table, CFURLRef url, const Json& row, const Json& resolved) {
    const std::string about = row.dump();
    table.compare("CFURLGetFileSystemRepresentation", path_of(url, false) == row["fsr"], about);
    table.compare("CFURLGetFileSystemRepresentation", path_of(url, true) == resolved,
                  about + ", got " + path_of(url, true).dump());
    const auto path = adopt(CFURLCopyFileSystemPath(url, kCFURLPOSIXPathStyle));
    const Json text = path ? Json(text_of(path.get())) : Json{};
    table.compare("CFURLCopyFileSystemPath", text == row["posixPath"], about);
    for (const char* column : not_offered) {
        table.not_offered("other functions", column);
    }
}

TEST(UrlVectors, FilePathsAgreeWithCoreFoundation) {
    const Json vectors = read_vectors("url.json");
    ConformanceTable table;
    for (const Json& row : vectors["fromFSR"]) {
        const std::string path = from_hex(row["path"]);
        const auto url = adopt(CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
            row["isDirectory"].get<bool>()));
        table.compare("CFURLCreateFromFileSystemRepresentation",
                      static_cast<bool>(url) == row["created"], row.dump());
        if (url && row["created"]) {
            compare_url(table, url.get(), row, resolved_here(row, path));
        }
    }
    table.print("url, from paths");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

TEST(UrlVectors, TextAgreesWithCoreFoundation) {
    const Json vectors = read_vectors("url.json");
    ConformanceTable table;
    for (const Json& row : vectors["fromString"]) {
        const std::string input = row["input"];
        const auto string =
            adopt(CFStringCreateWithCString(nullptr, input.c_str(), kCFStringEncodingUTF8));
        const auto url = adopt(CFURLCreateWithString(nullptr, string.get(), nullptr));
        table.compare("CFURLCreateWithString", static_cast<bool>(url) == row["created"],
                      row.dump());
        if (url && row["created"]) {
            compare_url(table, url.get(), row, row["fsrResolved"]);
        }
    }
    table.print("url, from text");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

TEST(UrlVectors, SmallBuffersAgreeWithCoreFoundation) {
    const Json vectors = read_vectors("url.json");
    ConformanceTable table;
    const std::string path = "/tmp/abc";
    const auto url = adopt(CFURLCreateFromFileSystemRepresentation(
        nullptr, reinterpret_cast<const UInt8*>(path.data()), static_cast<CFIndex>(path.size()),
        false));
    const std::string name = "CFURLGetFileSystemRepresentation";
    for (const Json& row : vectors["getFSR small buffers for /tmp/abc"]) {
        std::string buffer(from_hex(row["buffer"]).size(), '\xAA');
        const std::size_t size = row["bufsize"];
        const bool ok = CFURLGetFileSystemRepresentation(url.get(), true,
                                                         reinterpret_cast<UInt8*>(buffer.data()),
                                                         static_cast<CFIndex>(size)) != 0;
        if (is_own_core_foundation && size == path.size()) {
            EXPECT_FALSE(ok);
            table.differs_on_purpose(name, "a path without its zero byte is no success");
            continue;
        }
        table.compare(name, ok == row["ok"] && Json(to_hex(buffer)) == row["buffer"],
                      row.dump() + ", got " + to_hex(buffer));
    }
    table.print("url, small buffers");
    EXPECT_GT(table.equal(), 0U);
    EXPECT_EQ(table.differing(), 0U);
}

} // namespace
} // namespace lumo::test
