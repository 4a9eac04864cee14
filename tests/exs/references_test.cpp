// Reading and replacing the file references of a state.
#include "list_values.h"
#include "references.h"

#include <gtest/gtest.h>

namespace {

using namespace lumo::test;
using lumo::exs::References;
using lumo::exs::references;
using lumo::exs::with_references;

Value rewritten(const Value& state, const References& paths) {
    return with_references(state.get(), paths);
}

Value state_with(const Value& file_references) {
    return dictionary({{"file-references", file_references}, {"name", text("Test")}});
}

TEST(References, OfAStateWithoutAnyAreEmpty) {
    EXPECT_EQ(references(dictionary({{"name", text("Test")}}).get()), References());
}

TEST(References, ThatAreNoDictionaryAreEmpty) {
    EXPECT_EQ(references(state_with(array({text("/a.wav")})).get()), References());
    EXPECT_EQ(references(state_with(text("/a.wav")).get()), References());
}

TEST(References, AreOrderedByTheBytesOfTheirKeys) {
    const Value state = state_with(dictionary({{"Sample:2", text("/b.wav")},
                                               {"Sample:10", text("/c.wav")},
                                               {"\xc3\xa9", text("/d.wav")}}));
    EXPECT_EQ(
        references(state.get()),
        (References{{"Sample:10", "/c.wav"}, {"Sample:2", "/b.wav"}, {"\xc3\xa9", "/d.wav"}}));
}

TEST(References, WhoseValueIsNoTextAreSkipped) {
    const Value state = state_with(dictionary({{"Sample:1", whole(5)},
                                               {"Sample:2", data("/a.wav")},
                                               {"Sample:3", dictionary({})},
                                               {"Sample:4", text("/a.wav")}}));
    EXPECT_EQ(references(state.get()), (References{{"Sample:4", "/a.wav"}}));
}

TEST(WithReferences, GivesAStateWithoutAnyAnEmptyDictionary) {
    const Value state = dictionary({{"name", text("Test")}, {"gain", real(1.5)}});
    const Value copy = rewritten(state, {});
    const Value expected = dictionary(
        {{"name", text("Test")}, {"gain", real(1.5)}, {"file-references", dictionary({})}});
    EXPECT_TRUE(CFEqual(copy.get(), expected.get()));
}

TEST(WithReferences, ReplacesAnEntryOfAnotherType) {
    const Value copy = rewritten(state_with(text("/a.wav")), {{"Sample:1", "samples/Kit/a.wav"}});
    const Value expected = state_with(dictionary({{"Sample:1", text("samples/Kit/a.wav")}}));
    EXPECT_TRUE(CFEqual(copy.get(), expected.get()));
}

TEST(WithReferences, HasExactlyTheGivenOnes) {
    const Value state = state_with(
        dictionary({{"Sample:1", text("/a.wav")}, {"Sample:2", text("/b.wav")}, {"x", whole(1)}}));
    const Value copy = rewritten(state, {{"Sample:2", "new/b.wav"}, {"Sample:3", "new/c.wav"}});
    EXPECT_EQ(references(copy.get()),
              (References{{"Sample:2", "new/b.wav"}, {"Sample:3", "new/c.wav"}}));
    EXPECT_EQ(CFDictionaryGetCount(as_dictionary(entry(copy, "file-references"))), 2);
}

TEST(WithReferences, GivenAStatesOwnKeepsThoseThatAreTexts) {
    const Value state = state_with(dictionary(
        {{"Sample:1", text("/a.wav")}, {"Sample:2", text("/Caf\xc3\xa9.wav")}, {"x", whole(1)}}));
    const Value copy = rewritten(state, references(state.get()));
    EXPECT_EQ(references(copy.get()), references(state.get()));
    EXPECT_FALSE(entry(entry(copy, "file-references"), "x"));
}

TEST(WithReferences, GivenAStatesOwnLeavesOutWhatIsNoText) {
    const Value state = state_with(values_of_every_kind("/a.wav"));
    EXPECT_EQ(references(state.get()), (References{{"text", "/a.wav"}}));
    const Value copy = rewritten(state, references(state.get()));
    EXPECT_TRUE(CFEqual(entry(copy, "file-references").get(),
                        dictionary({{"text", text("/a.wav")}}).get()));
}

TEST(WithReferences, LeavesTheStateAsItIs) {
    const Value state = state_with(dictionary({{"Sample:1", text("/a.wav")}}));
    const Value before = state_with(dictionary({{"Sample:1", text("/a.wav")}}));
    static_cast<void>(rewritten(state, {{"Sample:1", "samples/a.wav"}}));
    EXPECT_TRUE(CFEqual(state.get(), before.get()));
}

TEST(WithReferences, LeavesOutWhatIsNotUtf8) {
    const Value copy =
        rewritten(state_with(dictionary({})),
                  {{"a", "Caf\xe9.wav"}, {"b", "b.wav"}, {"c", "\xa9.wav"}, {"d\xa9", "d.wav"}});
    EXPECT_EQ(references(copy.get()), (References{{"b", "b.wav"}}));
}

} // namespace
