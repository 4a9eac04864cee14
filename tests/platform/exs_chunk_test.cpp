// The fields of one chunk, in both byte orders, up to its last byte.
#include "sampler/exs_chunk.h"

#include <gtest/gtest.h>

#include <string>

namespace lumo::platform {
namespace {

/// A chunk with this content; its type has `flags` and its size field is `size`.
std::string chunk_bytes(const std::string& magic, const std::string& content, unsigned flags,
                        unsigned size) {
    std::string bytes(ExsChunk::header_size, '\0');
    const bool is_big_endian = magic.starts_with("SO");
    bytes[3] = static_cast<char>(flags | 1);
    for (unsigned i = 0; i < 4; ++i) {
        bytes[4 + i] = static_cast<char>(size >> (is_big_endian ? 24 - 8 * i : 8 * i));
    }
    return bytes.replace(16, 4, magic) + content;
}

std::string chunk_bytes(const std::string& magic, const std::string& content) {
    return chunk_bytes(magic, content, 0, static_cast<unsigned>(content.size()));
}

std::optional<ExsChunk> first_of(const std::string& bytes) {
    return ExsChunk::first_of({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

constexpr std::size_t content_at = ExsChunk::header_size;

TEST(ExsChunk, NeedsAWholeHeaderAndAllOfItsContent) {
    const std::string empty = chunk_bytes("TBOS", "");
    ASSERT_TRUE(first_of(empty));
    EXPECT_EQ(first_of(empty)->size(), 84u);
    EXPECT_EQ(first_of(empty)->type(), ExsChunk::zone);
    EXPECT_FALSE(first_of(empty.substr(0, 83)));
    EXPECT_FALSE(first_of(chunk_bytes("TBOS", "abc", 0, 4)));
    EXPECT_EQ(first_of(chunk_bytes("TBOS", "abc", 0, 3))->size(), 87u);
    EXPECT_EQ(first_of(chunk_bytes("TBOS", "abc", 0, 2))->size(), 86u);
}

TEST(ExsChunk, HasOneOfFourMagics) {
    for (const char* magic : {"TBOS", "JBOS", "SOBT", "SOBJ"}) {
        EXPECT_TRUE(first_of(chunk_bytes(magic, "ab"))) << magic;
    }
    for (const char* magic : {"BOST", "tbos", "TBOJ", "    "}) {
        EXPECT_FALSE(first_of(chunk_bytes(magic, ""))) << magic;
    }
}

TEST(ExsChunk, HasASizeOf15BitsWhereAFlagSaysSo) {
    constexpr unsigned short_size = 0x80;
    EXPECT_EQ(first_of(chunk_bytes("TBOS", "abc", short_size, 0x12348003))->size(), 87u);
    EXPECT_EQ(first_of(chunk_bytes("SOBT", "abc", short_size, 0x12348003))->size(), 87u);
    EXPECT_FALSE(first_of(chunk_bytes("TBOS", "abc", 0, 0x12348003)));
    EXPECT_FALSE(first_of(chunk_bytes("TBOS", "abc", 0x40, 0x12348003)));
    const std::string largest(0x7FFF, 'x');
    EXPECT_EQ(first_of(chunk_bytes("TBOS", largest, short_size, 0x7FFF))->size(), 84u + 0x7FFF);
    EXPECT_FALSE(first_of(chunk_bytes("TBOS", largest.substr(1), short_size, 0x7FFF)));
}

TEST(ExsChunk, HasNumbersInItsByteOrder) {
    const std::string content = "\x81\x02\x03\x04";
    const std::string little_bytes = chunk_bytes("TBOS", content);
    const std::string big_bytes = chunk_bytes("SOBT", content);
    const auto little = first_of(little_bytes);
    const auto big = first_of(big_bytes);
    EXPECT_EQ(little->u8(content_at), 0x81);
    EXPECT_EQ(little->s8(content_at), -127);
    EXPECT_EQ(little->u16(content_at), 0x0281);
    EXPECT_EQ(big->u16(content_at), 0x8102);
    EXPECT_EQ(little->u32(content_at), 0x04030281u);
    EXPECT_EQ(big->u32(content_at), 0x81020304u);
    EXPECT_EQ(little->s32(content_at), 0x04030281);
    EXPECT_EQ(big->s32(content_at), static_cast<std::int32_t>(0x81020304));
}

TEST(ExsChunk, HasDefaultsForFieldsThatExceedIt) {
    const std::string bytes = chunk_bytes("TBOS", "\x01\x01\x01\x01");
    const auto chunk = first_of(bytes);
    const std::size_t end = chunk->size();
    EXPECT_EQ(chunk->u8(end - 1, 7), 1);
    EXPECT_EQ(chunk->u8(end, 7), 7);
    EXPECT_EQ(chunk->u8(end), 0);
    EXPECT_EQ(chunk->s8(end), 0);
    EXPECT_EQ(chunk->u16(end - 2), 0x0101);
    EXPECT_EQ(chunk->u16(end - 1), 0);
    EXPECT_EQ(chunk->u16(end + 1), 0);
    EXPECT_EQ(chunk->u32(end - 4), 0x01010101u);
    EXPECT_EQ(chunk->u32(end - 3), 0u);
    EXPECT_EQ(chunk->s32(end - 4, -1), 0x01010101);
    EXPECT_EQ(chunk->s32(end - 3, -1), -1);
    EXPECT_EQ(chunk->s32(end - 3), 0);
    EXPECT_TRUE(chunk->holds(end, 0));
    EXPECT_FALSE(chunk->holds(end + 1, 0));
}

TEST(ExsChunk, HasTextUpToANulOrTheEndOfItsFieldOrItsOwn) {
    const std::string bytes = chunk_bytes("TBOS", std::string("ab\0cdef", 7));
    const auto chunk = first_of(bytes);
    EXPECT_EQ(chunk->text(content_at, 7), "ab");
    EXPECT_EQ(chunk->text(content_at, 1), "a");
    EXPECT_EQ(chunk->text(content_at + 3, 3), "cde");
    EXPECT_EQ(chunk->text(content_at + 3, 4), "cdef");
    EXPECT_EQ(chunk->text(content_at + 3, 100), "cdef");
    EXPECT_EQ(chunk->text(content_at + 7, 4), "");
    EXPECT_EQ(chunk->text(content_at + 8, 4), "");
}

} // namespace
} // namespace lumo::platform
