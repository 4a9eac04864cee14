// The keys that are equal for names treated as the same, and which names and paths are those of
// samples.
#include "sample_names.h"

#include <gtest/gtest.h>

#include <ostream>

namespace lumo::exs::relink {
namespace {

std::string key_of(std::string_view name) {
    std::string key = "what was there before";
    make_key(name, key);
    return key;
}

struct SameKey {
    const char* what;
    std::string one;
    std::string other;
};

void PrintTo(const SameKey& names, std::ostream* out) {
    *out << names.what;
}

class NamesWithOneKey : public testing::TestWithParam<SameKey> {};

TEST_P(NamesWithOneKey, HaveIt) {
    EXPECT_EQ(key_of(GetParam().one), key_of(GetParam().other));
    EXPECT_EQ(key_of(key_of(GetParam().one)), key_of(GetParam().one));
}

INSTANTIATE_TEST_SUITE_P(
    of, NamesWithOneKey,
    testing::Values(SameKey{"ascii_letter_case", "Kick 01.WAV", "kick 01.wav"},
                    SameKey{"latin_letter_case", "\u00dcBER.wav", "\u00fcber.wav"},
                    SameKey{"latin_composed_and_decomposed", "\u00fcber.wav", "u\u0308ber.wav"},
                    SameKey{"latin_both", "U\u0308BER.WAV", "\u00fcber.wav"},
                    SameKey{"latin_extended", "\u0141\u00d3D\u0179.aif", "\u0142\u00f3d\u017a.aif"},
                    SameKey{"greek_letter_case", "\u03a7\u039f\u03a1\u0394\u0397.wav",
                            "\u03c7\u03bf\u03c1\u03b4\u03b7.wav"},
                    SameKey{"greek_final_sigma", "\u039f\u0394\u039f\u03a3.wav",
                            "\u03bf\u03b4\u03bf\u03c2.wav"},
                    SameKey{"greek_tonos", "\u0386.wav", "\u03b1\u0301.wav"},
                    SameKey{"greek_iota_below", "\u1fb4.wav", "\u03b1\u0345\u0301.wav"},
                    SameKey{"greek_iota_beside", "\u1fb3.wav", "\u03b1\u03b9.wav"},
                    SameKey{"cyrillic_letter_case",
                            "\u0411\u0410\u0420\u0410\u0411\u0410\u041d.wav",
                            "\u0431\u0430\u0440\u0430\u0431\u0430\u043d.wav"},
                    SameKey{"cyrillic_short_i", "\u0419.wav", "\u0438\u0306.wav"},
                    SameKey{"hangul_syllable_and_letters", "\ud55c\uae00.wav",
                            "\u1112\u1161\u11ab\u1100\u1173\u11af.wav"},
                    SameKey{"two_marks_in_either_order", "a\u0323\u0302.wav", "a\u0302\u0323.wav"},
                    SameKey{"two_marks_composed", "\u1ead.wav", "A\u0302\u0323.wav"},
                    SameKey{"sharp_s_and_two_s", "Stra\u00dfe.wav", "STRASSE.wav"},
                    SameKey{"capital_sharp_s", "STRA\u1e9eE.wav", "stra\u00dfe.wav"},
                    SameKey{"ligature_and_letters", "\ufb01ne.wav", "FINE.wav"},
                    SameKey{"capital_i_with_dot", "\u0130.wav", "i\u0307.wav"},
                    SameKey{"kelvin_sign", "\u212a.wav", "k.wav"},
                    SameKey{"angstrom_sign", "\u212b.wav", "\u00e5.wav"},
                    SameKey{"j_with_caron", "\u01f0.wav", "J\u030c.wav"},
                    SameKey{"letters_beyond_the_first_plane", "\U00010400.wav", "\U00010428.wav"}),
    [](const auto& test) { return test.param.what; });

TEST(NameKey, OfAsciiIsTheNameInLowerCase) {
    EXPECT_EQ(key_of("Snare #3 [Dry]_@.AIFF"), "snare #3 [dry]_@.aiff");
    EXPECT_EQ(key_of("@ABCDEFGHIJKLMNOPQRSTUVWXYZ["), "@abcdefghijklmnopqrstuvwxyz[");
}

TEST(NameKey, IsComposed) {
    EXPECT_EQ(key_of("U\u0308.wav"), "\u00fc.wav");
}

TEST(NameKey, OfNothingIsNothing) {
    EXPECT_EQ(key_of(""), "");
}

TEST(NameKey, OfAViewOfNoMemoryIsNothing) {
    EXPECT_EQ(key_of(std::string_view()), "");
}

TEST(NameKey, KeepsDotlessIApartFromI) {
    EXPECT_NE(key_of("\u0131.wav"), key_of("i.wav"));
    EXPECT_NE(key_of("\u0131.wav"), key_of("I.wav"));
}

TEST(NameKey, KeepsACapitalIWithDotApartFromI) {
    EXPECT_NE(key_of("\u0130.wav"), key_of("i.wav"));
}

TEST(NameKey, KeepsALetterWithAMarkApartFromTheLetter) {
    EXPECT_NE(key_of("\u00fc.wav"), key_of("u.wav"));
}

TEST(NameKey, KeepsCompatibleFormsApart) {
    EXPECT_NE(key_of("\u00b2.wav"), key_of("2.wav"));
    EXPECT_NE(key_of("\uff21.wav"), key_of("a.wav"));
}

TEST(NameKey, OfANameThatIsNotUtf8IsTheNameByteForByte) {
    for (const std::string name : {"K\xfc.WAV", "\xff.WAV", "\xa9.WAV", "A\xc3", "A\xc0\xaf",
                                   "A\xed\xa0\x80", "A\xf4\x90\x80\x80"}) {
        EXPECT_EQ(key_of(name), name);
    }
}

TEST(SampleName, HasOneOfTheExtensionsInAnyLetterCase) {
    for (const char* extension :
         {"wav", "wave", "bwf",  "rf64", "w64",  "aif", "aiff", "aifc", "caf", "sd2",
          "snd", "au",   "mp3",  "mp2",  "mpa",  "m4a", "m4b",  "m4r",  "mp4", "3gp",
          "3g2", "aac",  "adts", "ac3",  "ec3",  "amr", "flac", "ogg",  "oga", "opus",
          "sf2", "dls",  "WAV",  "Aiff", "FlAC", "W64", "AU",   "SF2",  "3GP", "OPUS"}) {
        EXPECT_TRUE(is_sample_name(std::string("Kick.") + extension)) << extension;
    }
}

TEST(SampleName, HasNoOtherExtension) {
    for (const char* name :
         {"Kick", "Kick.", "wav", "Kick.wa", "Kick.wavs", "Kick.wavex", "Kick.exs", "Kick.aupreset",
          "Kick.wav.asd", "Kick.w6\x14", "Kick.sf", "Kick.dlsx", "", "."}) {
        EXPECT_FALSE(is_sample_name(name)) << name;
    }
}

TEST(SampleName, DoesNotBeginWithADot) {
    EXPECT_FALSE(is_sample_name(".wav"));
    EXPECT_FALSE(is_sample_name("._Kick.wav"));
}

TEST(SamplePath, EndsInASampleName) {
    EXPECT_TRUE(is_sample_path("/Volumes/A/Kick.wav"));
    EXPECT_TRUE(is_sample_path("Kick.wav"));
    EXPECT_TRUE(is_sample_path("/A/.hidden/Kick.wav"));
    EXPECT_FALSE(is_sample_path("/A/Kit.wav/"));
    EXPECT_FALSE(is_sample_path("/A/Kit.wav/list.txt"));
    EXPECT_FALSE(is_sample_path("/A/._Kick.wav"));
    EXPECT_FALSE(is_sample_path(""));
}

TEST(SamplePath, LeadsThroughNoCompanionOfAFile) {
    EXPECT_FALSE(is_sample_path("/A/.AppleDouble/Kick.wav"));
    EXPECT_FALSE(is_sample_path(".AppleDouble/Kick.wav"));
    EXPECT_FALSE(is_sample_path("/A/Kick.wav/..namedfork/rsrc.wav"));
    EXPECT_TRUE(is_sample_path("/A/My.AppleDouble/Kick.wav"));
}

} // namespace
} // namespace lumo::exs::relink
