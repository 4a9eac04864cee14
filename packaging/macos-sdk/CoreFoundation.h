// <CoreFoundation/CoreFoundation.h> of the cross build: the system's basic types, so that the
// compiler rejects conflicting ones of the project, then the project's declarations (their only
// source), then the functions that only the code for a Mac calls.
#pragma once

#include <CoreFoundation/Subset.h>
#include <MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const struct __CFLocale* CFLocaleRef;
typedef struct __CFString* CFMutableStringRef;
typedef CFOptionFlags CFStringCompareFlags;

enum : CFStringCompareFlags { kCFCompareCaseInsensitive = 1 };

enum CFStringNormalizationForm : CFIndex {
    kCFStringNormalizationFormD = 0,
    kCFStringNormalizationFormKD = 1,
    kCFStringNormalizationFormC = 2,
    kCFStringNormalizationFormKC = 3
};

CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex max_length,
                                             CFStringRef string);
void CFStringNormalize(CFMutableStringRef string, CFStringNormalizationForm form);
void CFStringFold(CFMutableStringRef string, CFStringCompareFlags flags, CFLocaleRef locale);

#ifdef __cplusplus
}
#endif
