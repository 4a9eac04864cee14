// Class info: accepted and refused values, and the values read back.
#include "sampler_host.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lumo::test {
namespace {

constexpr OSStatus refused = kAudioUnitErr_InvalidPropertyValue;

class ClassInfo : public testing::Test {
protected:
    Sampler sampler;

    /// The state after loading these entries. The test fails when they are refused.
    Ref<CFDictionaryRef> state_with(std::string_view entries) const {
        EXPECT_EQ(sampler.set(class_info_with(entries)), 0);
        return sampler.state();
    }
    OSStatus set(std::string_view xml) const { return sampler.set(parse(xml)); }
};

// --- accepted -----------------------------------------------------------------------------------

TEST_F(ClassInfo, IsADictionary) {
    EXPECT_EQ(sampler.set(nullptr), refused);
    EXPECT_EQ(set("<array/>"), refused);
    EXPECT_EQ(set("<string>state</string>"), refused);
    EXPECT_EQ(set("<dict/>"), refused);
}

TEST_F(ClassInfo, NeedsNoMoreThanItsNumbers) {
    EXPECT_EQ(sampler.set(class_info_with("")), 0);
}

TEST_F(ClassInfo, OfAPartIsRefused) {
    EXPECT_EQ(sampler.set(class_info_with("<key>part</key><integer>0</integer>")), refused);
    EXPECT_EQ(sampler.set(class_info_with("<key>part</key><string/>")), refused);
}

/// An array that has `value` `count` times.
Ref<CFArrayRef> repeated(CFTypeRef value, std::size_t count) {
    std::vector<const void*> values(count, value);
    return adopt(CFArrayCreate(kCFAllocatorDefault, values.data(), static_cast<CFIndex>(count),
                               &kCFTypeArrayCallBacks));
}

Ref<CFMutableDictionaryRef> dictionary_of(const char* key, CFTypeRef value) {
    auto dictionary = make_mutable_dictionary();
    CFDictionarySetValue(dictionary.get(), make_string(key).get(), value);
    return dictionary;
}

TEST_F(ClassInfo, HasAtMostFourMillionLayersAndZones) {
    constexpr std::size_t max_zones = 1 << 22;
    const auto zone = make_mutable_dictionary();
    const auto set_layers = [&](const std::vector<std::size_t>& zone_counts) {
        std::vector<Ref<CFMutableDictionaryRef>> owners;
        std::vector<const void*> layers;
        for (const std::size_t count : zone_counts) {
            owners.push_back(dictionary_of("Zones", repeated(zone.get(), count).get()));
            layers.push_back(owners.back().get());
        }
        const auto array =
            adopt(CFArrayCreate(kCFAllocatorDefault, layers.data(),
                                static_cast<CFIndex>(layers.size()), &kCFTypeArrayCallBacks));
        const auto list = class_info_with("");
        const auto info = adopt(CFDictionaryCreateMutableCopy(
            kCFAllocatorDefault, 0, static_cast<CFDictionaryRef>(list.get())));
        CFDictionarySetValue(info.get(), make_string("Instrument").get(),
                             dictionary_of("Layers", array.get()).get());
        return sampler.set(info.get());
    };
    constexpr OSStatus memory_full = -108;
    EXPECT_EQ(set_layers({max_zones - 1}), 0);
    EXPECT_EQ(set_layers({max_zones}), memory_full);
    EXPECT_EQ(set_layers({max_zones - 2, 0}), 0);
    EXPECT_EQ(set_layers({max_zones - 2, 1}), memory_full);
}

std::string numbers(std::string_view version, std::string_view subtype,
                    std::string_view manufacturer) {
    return "<dict>" + std::string(version) + std::string(subtype) + std::string(manufacturer) +
           "</dict>";
}

constexpr std::string_view version = "<key>version</key><integer>0</integer>";
constexpr std::string_view subtype = "<key>subtype</key><integer>1935764848</integer>";
constexpr std::string_view maker = "<key>manufacturer</key><integer>1634758764</integer>";

TEST_F(ClassInfo, NeedsVersionZero) {
    EXPECT_EQ(set(numbers(version, subtype, maker)), 0);
    EXPECT_EQ(set(numbers("", subtype, maker)), refused);
    EXPECT_EQ(set(numbers("<key>version</key><integer>1</integer>", subtype, maker)), refused);
    EXPECT_EQ(set(numbers("<key>version</key><string>0</string>", subtype, maker)), refused);
    EXPECT_EQ(set(numbers("<key>version</key><false/>", subtype, maker)), refused);
}

TEST_F(ClassInfo, NeedsTheSamplersSubtype) {
    EXPECT_EQ(set(numbers(version, "", maker)), refused);
    EXPECT_EQ(set(numbers(version, "<key>subtype</key><integer>1</integer>", maker)), refused);
    EXPECT_EQ(set(numbers(version, "<key>subtype</key><string>samp</string>", maker)), refused);
}

TEST_F(ClassInfo, NeedsTheSamplersManufacturer) {
    EXPECT_EQ(set(numbers(version, subtype, "")), refused);
    EXPECT_EQ(set(numbers(version, subtype, "<key>manufacturer</key><integer>0</integer>")),
              refused);
    EXPECT_EQ(set(numbers(version, subtype, "<key>manufacturer</key><data>AA==</data>")), refused);
}

TEST_F(ClassInfo, MayHaveItsNumbersAsReals) {
    EXPECT_EQ(set(numbers("<key>version</key><real>0.0</real>",
                          "<key>subtype</key><real>1935764848</real>",
                          "<key>manufacturer</key><real>1634758764.0</real>")),
              0);
}

TEST_F(ClassInfo, MayHaveAnyType) {
    EXPECT_EQ(set("<dict><key>type</key><integer>1</integer>" + std::string(version) +
                  std::string(subtype) + std::string(maker) + "</dict>"),
              0);
    EXPECT_EQ(number_at(sampler.state().get(), "type"), 1635085685);
}

TEST_F(ClassInfo, ThatIsRefusedChangesNothing) {
    state_with("<key>name</key><string>Before</string><key>Instrument</key>"
               "<dict><key>name</key><string>Piano</string></dict>");
    const Ref<CFDictionaryRef> before = sampler.state();
    EXPECT_EQ(set("<dict><key>name</key><string>After</string></dict>"), refused);
    EXPECT_EQ(sampler.set(class_info_with("<key>name</key><string>After</string>"
                                          "<key>data</key><data>AAAACQAAAAAAAAAA</data>")),
              kAudioUnitErr_InvalidScope);
    EXPECT_TRUE(CFEqual(before.get(), sampler.state().get()));
}

// --- read back ----------------------------------------------------------------------------------

TEST_F(ClassInfo, OfAFreshUnitHasTheDefaults) {
    const Ref<CFDictionaryRef> state = sampler.state();
    EXPECT_EQ(keys_of(state.get()),
              "AU version, coarse tune, data, file-references, fine tune, gain, manufacturer, "
              "name, output, pan, subtype, type, version, voice count");
    const Ref<CFPropertyListRef> expected = parse(
        "<dict><key>AU version</key><real>1</real><key>coarse tune</key><integer>0</integer>"
        "<key>data</key><data>AAAAAAAAAAAAAAAEAAADhAAAAAAAAAOFAAAAAAAAA4YAAAAAAAADhwAAAAA=</data>"
        "<key>file-references</key><dict/><key>fine tune</key><real>0.0</real>"
        "<key>gain</key><real>0.0</real><key>manufacturer</key><integer>1634758764</integer>"
        "<key>name</key><string>Untitled</string><key>output</key><integer>0</integer>"
        "<key>pan</key><real>0.0</real><key>subtype</key><integer>1935764848</integer>"
        "<key>type</key><integer>1635085685</integer><key>version</key><integer>0</integer>"
        "<key>voice count</key><integer>64</integer></dict>");
    EXPECT_TRUE(CFEqual(state.get(), expected.get()));
}

TEST_F(ClassInfo, HasRealsWhereTheSamplerHasReals) {
    const Ref<CFDictionaryRef> state = sampler.state();
    for (const char* key : {"AU version", "gain", "fine tune", "pan"}) {
        EXPECT_TRUE(CFNumberIsFloatType(value_of<CFNumberRef>(state.get(), key))) << key;
    }
    for (const char* key : {"coarse tune", "output", "version", "voice count", "type"}) {
        EXPECT_FALSE(CFNumberIsFloatType(value_of<CFNumberRef>(state.get(), key))) << key;
    }
}

TEST_F(ClassInfo, KeepsNoKeyThatTheSamplerDoesNotWrite) {
    const Ref<CFDictionaryRef> state =
        state_with("<key>file-secure-references</key><dict/><key>mine</key><string/>"
                   "<key>element-name</key><dict/><key>preset-number</key><integer>3</integer>");
    EXPECT_EQ(keys_of(state.get()),
              "AU version, coarse tune, data, file-references, fine tune, gain, manufacturer, "
              "name, output, pan, subtype, type, version, voice count");
}

TEST_F(ClassInfo, KeepsTheInstrumentWhole) {
    const Ref<CFPropertyListRef> instrument =
        parse("<dict><key>Layers</key><array><dict><key>Zones</key><array/><key>odd</key>"
              "<date>2020-01-01T00:00:00Z</date></dict></array><key>unknown</key><true/></dict>");
    const Ref<CFDictionaryRef> state = state_with(
        "<key>Instrument</key><dict><key>Layers</key><array><dict><key>Zones</key><array/>"
        "<key>odd</key><date>2020-01-01T00:00:00Z</date></dict></array><key>unknown</key><true/>"
        "</dict>");
    EXPECT_TRUE(CFEqual(value_of(state.get(), "Instrument"), instrument.get()));
}

TEST_F(ClassInfo, HasNoInstrumentWhenNoneCame) {
    EXPECT_FALSE(value_of(state_with("").get(), "Instrument"));
    EXPECT_FALSE(value_of(state_with("<key>Instrument</key><array/>").get(), "Instrument"));
    EXPECT_FALSE(value_of(state_with("<key>Instrument</key><string/>").get(), "Instrument"));
}

TEST_F(ClassInfo, LosesTheInstrumentBeforeWhenNoneCame) {
    state_with("<key>Instrument</key><dict/>");
    EXPECT_FALSE(value_of(state_with("").get(), "Instrument"));
}

TEST_F(ClassInfo, KeepsTheName) {
    EXPECT_EQ(text_at(state_with("<key>name</key><string>Gr\u00fcn \u00d8</string>").get(), "name"),
              "Gr\u00fcn \u00d8");
    EXPECT_EQ(text_at(state_with("<key>name</key><string/>").get(), "name"), "");
}

TEST_F(ClassInfo, IsUntitledWithoutATextForItsName) {
    state_with("<key>name</key><string>Before</string>");
    EXPECT_EQ(text_at(state_with("").get(), "name"), "Untitled");
    EXPECT_EQ(text_at(state_with("<key>name</key><integer>1</integer>").get(), "name"), "Untitled");
}

TEST_F(ClassInfo, ReadBackLoadsAgainAndReadsBackTheSame) {
    const Ref<CFDictionaryRef> first =
        state_with("<key>name</key><string>Name</string><key>Instrument</key><dict><key>a</"
                   "key><real>0.5</real>"
                   "</dict><key>data</key>"
                   "<data>AAAAAAAAAAAAAAAEAAADhMDAAAAAAAOFQAAAAAAAA4ZBuAAAAAADh76AAAA=</data>"
                   "<key>gain</key><real>-8</real><key>voice count</key><integer>9</integer>");
    const Sampler other;
    ASSERT_EQ(other.set(first.get()), 0);
    EXPECT_TRUE(CFEqual(first.get(), other.state().get()));
}

TEST_F(ClassInfo, OutlivesTheListItCameFromAndTheUnit) {
    Ref<CFDictionaryRef> state;
    {
        const Sampler short_lived;
        ASSERT_EQ(short_lived.set(class_info_with("<key>name</key><string>Name</string>")), 0);
        state = short_lived.state();
    }
    EXPECT_EQ(text_at(state.get(), "name"), "Name");
}

// --- parameters ---------------------------------------------------------------------------------

/// Gain -6, coarse tune 2, fine tune 23, pan -0.25.
constexpr std::string_view other_data =
    "<key>data</key><data>AAAAAAAAAAAAAAAEAAADhMDAAAAAAAOFQAAAAAAAA4ZBuAAAAAADh76AAAA=</data>";

TEST_F(ClassInfo, KeepsTheParametersInItsData) {
    const Ref<CFDictionaryRef> state = state_with(other_data);
    EXPECT_TRUE(
        CFEqual(value_of(state.get(), "data"),
                value_of(static_cast<CFDictionaryRef>(class_info_with(other_data).get()), "data")));
}

/// Whether the state's data is that of a unit whose parameters were never changed.
bool has_default_data(const Ref<CFDictionaryRef>& state) {
    const Sampler fresh;
    return CFEqual(value_of(state.get(), "data"), value_of(fresh.state().get(), "data"));
}

TEST_F(ClassInfo, PassesOverDataThatIsNone) {
    EXPECT_TRUE(has_default_data(state_with("<key>data</key><string>x</string>")));
    EXPECT_TRUE(has_default_data(state_with("<key>data</key><data>AA==</data>")));
}

TEST_F(ClassInfo, WithDataOfAnUnknownScopeIsRefused) {
    EXPECT_EQ(sampler.set(class_info_with("<key>data</key><data>AAAACQAAAAAAAAAA</data>")),
              kAudioUnitErr_InvalidScope);
}

// --- the unit's own values ----------------------------------------------------------------------

constexpr std::string_view other_values =
    "<key>gain</key><real>-8</real><key>coarse tune</key><integer>-3</integer>"
    "<key>fine tune</key><real>12.5</real><key>pan</key><real>-1</real>"
    "<key>output</key><integer>2</integer><key>voice count</key><integer>32</integer>";

void expect_other_values(CFDictionaryRef state) {
    EXPECT_EQ(number_at(state, "gain"), -8.0);
    EXPECT_EQ(number_at(state, "coarse tune"), -3.0);
    EXPECT_EQ(number_at(state, "fine tune"), 12.5);
    EXPECT_EQ(number_at(state, "pan"), -1.0);
    EXPECT_EQ(number_at(state, "output"), 2.0);
    EXPECT_EQ(number_at(state, "voice count"), 32.0);
}

void expect_default_values(CFDictionaryRef state) {
    for (const char* key : {"gain", "coarse tune", "fine tune", "pan", "output"}) {
        EXPECT_EQ(number_at(state, key), 0.0) << key;
    }
    EXPECT_EQ(number_at(state, "voice count"), 64.0);
}

TEST_F(ClassInfo, KeepsTheUnitsOwnValuesApartFromItsData) {
    const Ref<CFDictionaryRef> state = state_with(other_values);
    expect_other_values(state.get());
    EXPECT_TRUE(has_default_data(state));
    const Ref<CFDictionaryRef> both =
        state_with(std::string(other_values) + std::string(other_data));
    expect_other_values(both.get());
    EXPECT_FALSE(has_default_data(both));
    expect_default_values(state_with(other_data).get());
}

TEST_F(ClassInfo, HasTheUnitsOwnValuesAtTheirDefaultsWithoutThem) {
    state_with(other_values);
    expect_default_values(state_with("").get());
}

TEST_F(ClassInfo, HasTheUnitsOwnValuesAtTheirDefaultsWhereTheyAreNoNumbers) {
    expect_default_values(
        state_with("<key>gain</key><string>-8</string><key>coarse tune</key><true/>"
                   "<key>fine tune</key><data>AA==</data><key>pan</key><array/>"
                   "<key>output</key><dict/><key>voice count</key><string/>")
            .get());
}

TEST_F(ClassInfo, HasTheUnitsOwnValuesInTheSamplersTypes) {
    const Ref<CFDictionaryRef> state =
        state_with("<key>gain</key><integer>-8</integer><key>coarse tune</key><real>-3.75</real>"
                   "<key>fine tune</key><real>0.1</real><key>voice count</key><real>32</real>");
    EXPECT_TRUE(CFNumberIsFloatType(value_of<CFNumberRef>(state.get(), "gain")));
    EXPECT_EQ(number_at(state.get(), "gain"), -8.0);
    EXPECT_FALSE(CFNumberIsFloatType(value_of<CFNumberRef>(state.get(), "coarse tune")));
    EXPECT_EQ(number_at(state.get(), "coarse tune"), -3.0);
    EXPECT_EQ(number_at(state.get(), "fine tune"), 0.1F);
    EXPECT_FALSE(CFNumberIsFloatType(value_of<CFNumberRef>(state.get(), "voice count")));
}

TEST_F(ClassInfo, ThatIsRefusedLeavesTheUnitsOwnValues) {
    state_with(other_values);
    EXPECT_EQ(set("<dict><key>gain</key><real>3</real></dict>"), refused);
    expect_other_values(sampler.state().get());
}

// --- file references ----------------------------------------------------------------------------

TEST_F(ClassInfo, IgnoresReferencesThatAreNoDictionary) {
    const Ref<CFDictionaryRef> state =
        state_with("<key>file-references</key><array><string>/nowhere</string></array>");
    EXPECT_EQ(keys_of(value_of<CFDictionaryRef>(state.get(), "file-references")), "");
}

TEST_F(ClassInfo, IgnoresReferencesThatAreNoText) {
    const Ref<CFDictionaryRef> state =
        state_with("<key>file-references</key><dict><key>Sample:1</key><integer>1</integer>"
                   "<key>Sample:2</key><data>AA==</data></dict>");
    EXPECT_EQ(keys_of(value_of<CFDictionaryRef>(state.get(), "file-references")), "");
}

} // namespace
} // namespace lumo::test
