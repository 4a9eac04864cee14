// copyfile: copies a file with its metadata. The subset of macOS's <copyfile.h> that the project
// uses; names and values are the same.
#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct CopyfileState* copyfile_state_t;
typedef uint32_t copyfile_flags_t;

#define COPYFILE_ACL (1 << 0)
#define COPYFILE_STAT (1 << 1)
#define COPYFILE_XATTR (1 << 2)
#define COPYFILE_DATA (1 << 3)
#define COPYFILE_SECURITY (COPYFILE_STAT | COPYFILE_ACL)
#define COPYFILE_METADATA (COPYFILE_SECURITY | COPYFILE_XATTR)
#define COPYFILE_ALL (COPYFILE_METADATA | COPYFILE_DATA)
#define COPYFILE_EXCL (1 << 17)
#define COPYFILE_NOFOLLOW_SRC (1 << 18)
#define COPYFILE_CLONE (1 << 24)

/// Copies the regular file `from` to `to` as selected by `flags`, which must contain COPYFILE_DATA
/// or COPYFILE_CLONE. COPYFILE_CLONE implies EXCL, STAT, XATTR, DATA and NOFOLLOW_SRC (so a
/// symbolic link is copied as a link), and shares blocks if the volume supports it. `state` must be
/// null. Returns 0, or -1 with errno set. The destination appears complete or not at all; an
/// existing file is never replaced, whatever the flags (EEXIST). Metadata that the volume of `to`
/// does not support, an owner that may not be set and the set-id bits are skipped.
int copyfile(const char* from, const char* to, copyfile_state_t state, copyfile_flags_t flags);

#ifdef __cplusplus
}
#endif
