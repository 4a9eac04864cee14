// The functions of CoreFoundation that only the Mac build of liblumo-relink calls. The platform
// library lacks them. The declarations are those of the Mac's headers.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
CFStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef);
void CFStringNormalize(CFStringRef, long);
void CFStringFold(CFStringRef, unsigned long, const void*);
}
