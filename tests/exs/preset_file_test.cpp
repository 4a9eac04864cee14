// Reading the bytes of a preset from files of any kind.
#include "fake_transfers.h"
#include "preset_file.h"
#include "support/descriptors.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace lumo::test;

std::string read(const std::filesystem::path& path) {
    const std::vector<unsigned char> bytes = lumo::exs::read_preset(path.string());
    return {bytes.begin(), bytes.end()};
}

TEST(PresetFile, IsReadWhole) {
    const TempFolder folder;
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1000000U}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>(i * 31 >> 3);
        }
        write_file(folder / "preset", bytes);
        EXPECT_EQ(read(folder / "preset"), bytes) << size;
    }
}

TEST(PresetFile, IsReadWholeInShortPieces) {
    const TempFolder folder;
    std::string bytes(70'000, 'x');
    bytes.back() = 'y';
    write_file(folder / "preset", bytes);
    for (const std::size_t limit : {std::size_t{1'000}, bytes.size() - 1, bytes.size()}) {
        const FakeTransfers reads(Transfer::read, [&](int) { return limit; });
        EXPECT_EQ(read(folder / "preset"), bytes) << limit;
        EXPECT_EQ(reads.calls, static_cast<int>((bytes.size() + limit - 1) / limit));
    }
}

TEST(PresetFile, ThatIsNotThereIsEmpty) {
    const TempFolder folder;
    EXPECT_EQ(read(folder / "preset"), "");
}

TEST(PresetFile, ThatIsAFolderIsEmpty) {
    const TempFolder folder;
    EXPECT_EQ(read(folder.path()), "");
}

TEST(PresetFile, OfMoreThanAGigabyteIsEmpty) {
    const TempFolder folder;
    write_file(folder / "preset", "bplist00");
    std::filesystem::resize_file(folder / "preset", (std::uintmax_t{1} << 30) + 1);
    EXPECT_EQ(read(folder / "preset"), "");
}

TEST(PresetFile, OfAGigabyteIsReadWhole) {
    const TempFolder folder;
    write_file(folder / "preset", "bplist00");
    std::filesystem::resize_file(folder / "preset", std::uintmax_t{1} << 30);
    EXPECT_EQ(lumo::exs::read_preset(folder / "preset").size(), std::size_t{1} << 30);
}

TEST(PresetFile, MayBeAPipe) {
    const TempFolder folder;
    const std::filesystem::path pipe = folder / "preset";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string bytes(300000, 'x');
    std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << bytes; });
    EXPECT_EQ(read(pipe), bytes);
    writer.join();
}

TEST(PresetFile, MayBeAPipeOfAGigabyteAndNoMore) {
    constexpr std::size_t gigabyte = std::size_t{1} << 30;
    const TempFolder folder;
    const std::filesystem::path pipe = folder / "preset";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto size_of_read = [&](std::size_t written) {
        std::thread writer([&] {
            std::ofstream file(pipe, std::ios::binary);
            const std::string piece(1 << 20, 'x');
            for (std::size_t left = written; left != 0; left -= std::min(left, piece.size())) {
                file.write(piece.data(),
                           static_cast<std::streamsize>(std::min(left, piece.size())));
            }
        });
        const std::size_t size = lumo::exs::read_preset(pipe).size();
        writer.join();
        return size;
    };
    EXPECT_EQ(size_of_read(gigabyte), gigabyte);
    EXPECT_EQ(size_of_read(gigabyte + 1), 0U);
}

TEST(PresetFile, IsNotLeftOpen) {
    const TempFolder folder;
    write_file(folder / "preset", "bplist00");
    write_file(folder / "large", "bplist00");
    std::filesystem::resize_file(folder / "large", (std::uintmax_t{1} << 30) + 1);
    const int before = next_descriptor();
    read(folder / "preset");
    read(folder / "large");
    read(folder / "absent");
    read(folder.path());
    EXPECT_EQ(next_descriptor(), before);
}

TEST(PresetFile, IsReadWhereStandardInputIsClosed) {
    const TempFolder folder;
    write_file(folder / "preset", "bplist00");
    const auto read_there = [&] {
        close(0);
        return read(folder / "preset") == "bplist00" && next_descriptor() == 0;
    };
    EXPECT_EXIT(_exit(read_there() ? 0 : 1), testing::ExitedWithCode(0), "");
}

} // namespace
