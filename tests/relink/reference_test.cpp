// Compares the library with a simple reference implementation of the same rules: walks and searches
// of random trees.
#include "index_paths.h"
#include "support/temp_folder.h"
#include <lumo/relink.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <system_error>
#include <tuple>

namespace lumo::exs {
namespace {

namespace fs = std::filesystem;
using test::TempFolder;
using Paths = std::vector<std::string>;
using Random = std::mt19937;

/// Spellings of names; the library treats those in one row as the same name.
using Spellings = std::vector<std::vector<std::string>>;

const Spellings& folder_names() {
    static const Spellings names{{"Kits", "KITS", "kits"},
                                 {"808"},
                                 {"\u00dcber", "U\u0308ber", "\u00fcBER"},
                                 {"Stra\u00dfe", "STRASSE", "strasse"},
                                 {"Kit\xff"},
                                 {"kit\xff"},
                                 {"Kit"}};
    return names;
}

const Spellings& file_names() {
    static const Spellings names{{"kick.wav", "Kick.WAV", "KICK.wav"},
                                 {"\u00e9t\u00e9.aif", "e\u0301te\u0301.aif", "\u00c9T\u00c9.AIF"},
                                 {"notes.txt"}};
    return names;
}

const std::string& pick(Random& random, const Spellings& names) {
    const auto& row = names[random() % names.size()];
    return row[random() % row.size()];
}

/// The first spelling in the row that contains `name`; `name` itself when no row does.
std::string meaning(const std::string& name) {
    for (const Spellings* names : {&folder_names(), &file_names()}) {
        for (const auto& row : *names) {
            if (std::find(row.begin(), row.end(), name) != row.end()) {
                return row.front();
            }
        }
    }
    return name;
}

Paths components(const std::string& path) {
    Paths result;
    for (const fs::path& component : fs::path(path).relative_path()) {
        result.push_back(component.string());
    }
    return result;
}

/// A file, or a link to a folder, to be made in a tree. The order of items does not matter.
struct Item {
    std::string path;
    std::string link; // a link's target, relative to the top of the tree
};

std::vector<Item> draw_tree(Random& random) {
    std::set<std::string> folders{""};
    std::map<std::string, std::string> items;
    for (int i = 0; i < 12; ++i) {
        auto parent = folders.begin();
        std::advance(parent, random() % folders.size());
        folders.insert(*parent + pick(random, folder_names()) + "/");
    }
    const auto any_folder = [&] {
        auto folder = folders.begin();
        std::advance(folder, random() % folders.size());
        return *folder;
    };
    for (int i = 0; i < 30; ++i) {
        items[any_folder() + pick(random, file_names())] = "";
    }
    for (int i = 0; i < 5; ++i) {
        items[any_folder() + "link " + std::to_string(random() % 9)] = any_folder();
    }
    std::vector<Item> tree(items.size());
    std::transform(items.begin(), items.end(), tree.begin(), [](const auto& item) {
        return Item{item.first, item.second};
    });
    return tree;
}

void make_tree(const fs::path& top, std::vector<Item> tree, Random& random) {
    std::shuffle(tree.begin(), tree.end(), random);
    for (const Item& item : tree) {
        const fs::path path = top / item.path;
        std::error_code refused; // some file systems refuse names that are not UTF-8
        fs::create_directories(path.parent_path(), refused);
        if (refused) {
            continue;
        }
        if (path.filename().string().starts_with("link")) {
            fs::create_directories(top / item.link, refused);
            fs::create_symlink(top / item.link, path, refused);
        } else {
            test::write_file(path, "");
        }
    }
}

/// The samples under a root by the rules of the walk: its own folders first, then its links, always
/// the bytewise smallest that is left.
class PlainWalk {
public:
    explicit PlainWalk(const std::string& root) {
        read(root);
        while (!links_.empty()) {
            const std::string link = *links_.begin();
            links_.erase(links_.begin());
            read(link);
        }
        std::sort(samples.begin(), samples.end());
    }

    Paths samples;

private:
    void read(const std::string& folder) {
        struct stat status {};
        if (stat(folder.c_str(), &status) != 0 ||
            !read_.emplace(status.st_dev, status.st_ino).second) {
            return;
        }
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            const std::string path = entry.path().string();
            if (entry.is_symlink() && entry.is_directory()) {
                links_.insert(path);
            } else if (entry.is_directory()) {
                read(path);
            } else if (entry.is_regular_file() && entry.path().extension() != ".txt") {
                samples.push_back(path);
            }
        }
    }

    std::set<std::pair<dev_t, ino_t>> read_;
    std::set<std::string> links_;
};

/// The one of `samples` that replaces `recorded`, with every rule applied by its definition.
std::optional<std::string> plain_find(const Paths& samples, const std::string& recorded) {
    using Rank = std::tuple<std::ptrdiff_t, std::size_t, std::string>; // the smallest wins
    std::optional<Rank> best;
    const auto meanings = [](const std::string& path) {
        Paths names = components(path);
        std::transform(names.begin(), names.end(), names.begin(), meaning);
        std::reverse(names.begin(), names.end());
        return names;
    };
    const Paths wanted = meanings(recorded);
    for (const std::string& sample : samples) {
        const Paths names = meanings(sample);
        const auto end =
            std::mismatch(names.begin(), names.end(), wanted.begin(), wanted.end()).first;
        const Rank rank{names.begin() - end, names.size(), sample};
        if (end != names.begin() && (!best || rank < *best)) {
            best = rank;
        }
    }
    return best ? std::optional(std::get<std::string>(*best)) : std::nullopt;
}

std::string draw_recorded(Random& random) {
    std::string path = random() % 4 == 0 ? "" : "/Volumes/Old/";
    for (auto depth = random() % 4; depth > 0; --depth) {
        path += pick(random, folder_names()) + (random() % 8 == 0 ? "//" : "/");
    }
    return path + pick(random, file_names());
}

class RandomTree : public testing::TestWithParam<unsigned> {};

TEST_P(RandomTree, IsWalkedAndSearchedAsAPlainProgramDoesIt) {
    Random random(GetParam());
    const TempFolder one;
    const TempFolder two;
    make_tree(one.path(), draw_tree(random), random);
    make_tree(two.path(), draw_tree(random), random);
    const std::string roots[] = {one.path().string(), two.path().string()};

    SampleIndex index;
    SampleIndex other_order;
    Paths samples;
    for (const std::string& root : roots) {
        index.add_root(root);
        const Paths found = PlainWalk(root).samples;
        samples.insert(samples.end(), found.begin(), found.end());
    }
    other_order.add_root(roots[1]);
    other_order.add_root(roots[0]);
    std::sort(samples.begin(), samples.end());
    ASSERT_EQ(paths_of(index), samples);
    EXPECT_EQ(paths_of(other_order), samples);
    for (int i = 0; i < 100; ++i) {
        const std::string recorded = draw_recorded(random);
        EXPECT_EQ(index.find(recorded), plain_find(samples, recorded)) << recorded;
        EXPECT_EQ(other_order.find(recorded), index.find(recorded)) << recorded;
    }
}

TEST_P(RandomTree, GivesTheSameAnswersInWhateverOrderItWasMade) {
    Random random(GetParam());
    const std::vector<Item> tree = draw_tree(random);
    std::array<TempFolder, 2> tops;
    test::write_file(tops[0] / "lower", "");
    if (fs::exists(tops[0] / "LOWER")) {
        GTEST_SKIP() << "of names that differ in letter case this disk keeps the first";
    }
    std::array<SampleIndex, 2> indexes;
    for (std::size_t i = 0; i < 2; ++i) {
        make_tree(tops[i].path(), tree, random);
        indexes[i].add_root(tops[i].path().string());
    }
    const auto answer = [&](std::size_t i, const std::string& recorded) {
        const auto found = indexes[i].find(recorded);
        return found ? found->substr(tops[i].path().string().size()) : "nothing";
    };
    EXPECT_EQ(indexes[0].entries, indexes[1].entries);
    for (int i = 0; i < 100; ++i) {
        const std::string recorded = draw_recorded(random);
        EXPECT_EQ(answer(0, recorded), answer(1, recorded)) << recorded;
    }
}

INSTANTIATE_TEST_SUITE_P(Seed, RandomTree, testing::Range(0u, 20u));

} // namespace
} // namespace lumo::exs
