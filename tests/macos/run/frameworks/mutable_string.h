// The functions of CoreFoundation that only the Mac's library calls and the platform library does
// without, declared as the Mac's headers declare them.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
CFStringRef CFStringCreateMutableCopy(CFAllocatorRef, CFIndex, CFStringRef);
void CFStringNormalize(CFStringRef, long);
void CFStringFold(CFStringRef, unsigned long, const void*);
}
