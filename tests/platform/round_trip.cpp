#include "platform/round_trip.h"

#include "support/plist_io.h"

#include <gtest/gtest.h>

namespace lumo::test {
namespace {

Ref<CFPropertyListRef> written_and_read(CFPropertyListRef list) {
    const auto data = binary_form(list);
    return data ? list_of(data.get()) : Ref<CFPropertyListRef>();
}

} // namespace

void expect_round_trip(const platform::SamplerState& state) {
    const auto info = platform::class_info(state);
    const auto read = written_and_read(info.get());
    ASSERT_TRUE(read);
    EXPECT_TRUE(CFEqual(read.get(), info.get()));
    platform::SamplerState next;
    ASSERT_EQ(platform::read_class_info(read.get(), next), 0);
    EXPECT_TRUE(CFEqual(platform::class_info(next).get(), info.get()));
    EXPECT_EQ(next.loaded.samples, state.loaded.samples);
}

} // namespace lumo::test
