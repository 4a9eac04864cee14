// Percent-encodings in URLs.
#include "core_foundation/percent.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using lumo::platform::is_url_text;
using lumo::platform::percent_decoded;

TEST(PercentEncoding, HasHexadecimalDigitsOfEitherCase) {
    EXPECT_EQ(percent_decoded("%20%39%4a%6A%5f%6F"), " 9Jj_o");
    EXPECT_EQ(percent_decoded("%aa%AF%fa%FF"), "\xaa\xaf\xfa\xff");
}

TEST(PercentEncoding, HasNoOtherDigits) {
    for (const char* text : {"%4", "%", "a%", "%/0", "%0:", "%`0", "%0g", "%@0", "%0G", "% 0"}) {
        EXPECT_EQ(percent_decoded(text), std::nullopt) << text;
        EXPECT_FALSE(is_url_text(text)) << text;
    }
}

} // namespace
