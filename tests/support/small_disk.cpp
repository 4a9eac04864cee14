// A tmpfs, mounted and unmounted by the system's programs.
#include "support/small_disk.h"

#include "support/run_process.h"

#include <unistd.h>

namespace lumo::test {

SmallDisk::SmallDisk(const std::filesystem::path& folder) : folder_(folder) {
    std::filesystem::create_directories(folder);
    is_mounted_ = geteuid() == 0 && run_process({"mount", "-t", "tmpfs", "-o", "size=64k",
                                                 "lumo-test", folder.string()})
                                            .status == 0;
}

SmallDisk::~SmallDisk() {
    if (is_mounted_) {
        run_process({"umount", folder_.string()});
    }
}

} // namespace lumo::test
