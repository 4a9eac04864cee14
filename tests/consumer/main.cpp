// consumer FOLDER RECORDED: prints the file under FOLDER to use for the path RECORDED.
#include <lumo/relink.h>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        return 2;
    }
    lumo::exs::SampleIndex index;
    index.add_root(argv[1]);
    lumo::exs::relink::begin(index);
    const lumo::exs::relink::Result nothing_loaded = lumo::exs::relink::end();
    const auto found = index.find(argv[2]);
    if (!found || !nothing_loaded.relinked.empty()) {
        return 1;
    }
    std::puts(found->c_str());
    return 0;
}
