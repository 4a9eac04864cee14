// Uses the system's programs to make, mount and unmount the volume.
#include "support/loop_volume.h"

#include "support/run_process.h"
#include "support/temp_folder.h"

#include <unistd.h>

namespace lumo::test {

LoopVolume::LoopVolume(const std::filesystem::path& folder, const std::string& kind,
                       std::uintmax_t bytes)
    : mount_{folder / "volume"} {
    const std::filesystem::path image = folder / "image";
    write_file(image, "");
    std::filesystem::resize_file(image, bytes);
    std::filesystem::create_directory(mount_);
    is_mounted_ = geteuid() == 0 && run_process({"mkfs." + kind, image.string()}).status == 0 &&
                  run_process({"mount", "-o", "loop", image.string(), mount_.string()}).status == 0;
}

LoopVolume::~LoopVolume() {
    if (is_mounted_) {
        run_process({"umount", mount_.string()});
    }
}

} // namespace lumo::test
