// The part of CoreFoundation that the project uses: the types of property lists, and file URLs.
// Names, values and layouts are those of macOS. Create and Copy functions return a reference that
// the caller releases with CFRelease; the result of a Get function is borrowed. Allocators are
// ignored. References must be of the type that a function names and, unless it says otherwise, not
// null. Immutable objects may be used by any number of threads. A failed allocation throws
// std::bad_alloc, a string of 2^32 units or a dictionary of 2^31 entries std::length_error; only
// the two functions of property lists, at the end, return null instead.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef signed long long SInt64;
typedef UInt32 OSType;
typedef SInt32 OSStatus;

typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFHashCode;
typedef UInt32 CFStringEncoding;
typedef double CFAbsoluteTime;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
// NOLINTBEGIN(bugprone-reserved-identifier): the tags are macOS's
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDate* CFDateRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNull* CFNullRef;
typedef const struct __CFSet* CFSetRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFError* CFErrorRef;
// NOLINTEND(bugprone-reserved-identifier)

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

static const CFIndex kCFNotFound = -1;

enum : CFStringEncoding {
    kCFStringEncodingMacRoman = 0,
    kCFStringEncodingWindowsLatin1 = 0x0500,
    kCFStringEncodingISOLatin1 = 0x0201,
    kCFStringEncodingASCII = 0x0600,
    kCFStringEncodingUTF16 = 0x0100,
    kCFStringEncodingUTF8 = 0x08000100,
    kCFStringEncodingUTF16BE = 0x10000100,
    kCFStringEncodingUTF16LE = 0x14000100
};

enum CFNumberType : CFIndex {
    kCFNumberSInt8Type = 1,
    kCFNumberSInt16Type = 2,
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberFloat32Type = 5,
    kCFNumberFloat64Type = 6,
    kCFNumberCharType = 7,
    kCFNumberShortType = 8,
    kCFNumberIntType = 9,
    kCFNumberLongType = 10,
    kCFNumberLongLongType = 11,
    kCFNumberFloatType = 12,
    kCFNumberDoubleType = 13,
    kCFNumberCFIndexType = 14,
    kCFNumberNSIntegerType = 15,
    kCFNumberCGFloatType = 16,
    kCFNumberMaxType = 16
};

enum : CFOptionFlags { kCFPropertyListImmutable = 0, kCFPropertyListMutableContainers = 1 };

enum CFPropertyListFormat : CFIndex {
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200
};

enum CFURLPathStyle : CFIndex { kCFURLPOSIXPathStyle = 0 };

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef, const void*);
    void (*release)(CFAllocatorRef, const void*);
    CFStringRef (*copyDescription)(const void*);
    Boolean (*equal)(const void*, const void*);
    CFHashCode (*hash)(const void*);
} CFDictionaryKeyCallBacks;

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef, const void*);
    void (*release)(CFAllocatorRef, const void*);
    CFStringRef (*copyDescription)(const void*);
    Boolean (*equal)(const void*, const void*);
} CFDictionaryValueCallBacks;

typedef CFDictionaryValueCallBacks CFArrayCallBacks;

/// Null; there is only one allocator that allocates.
extern const CFAllocatorRef kCFAllocatorDefault;
/// As a deallocator: the bytes belong to the caller.
extern const CFAllocatorRef kCFAllocatorNull;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
extern const CFNullRef kCFNull;

/// Callbacks of containers that hold objects, which are retained and compared with CFEqual. Any
/// other callbacks, and null, stop the process.
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

/// Adds a reference and returns the object. Null stops the process.
CFTypeRef CFRetain(CFTypeRef object);
/// Removes a reference; removing the last one frees the object. Null stops the process.
void CFRelease(CFTypeRef object);
/// The type of the object, one of those below.
CFTypeID CFGetTypeID(CFTypeRef object);
/// Whether two objects have the same type and value. Strings are compared unit by unit; an integer
/// equals the real of the same value, but 0 and 0.0 do not equal -0.0. A URL equals only itself.
Boolean CFEqual(CFTypeRef a, CFTypeRef b);
/// A hash, the same for equal objects as long as the process runs.
CFHashCode CFHash(CFTypeRef object);

/// The type ID of strings.
CFTypeID CFStringGetTypeID(void);
/// The type ID of data.
CFTypeID CFDataGetTypeID(void);
/// The type ID of dates.
CFTypeID CFDateGetTypeID(void);
/// The type ID of arrays.
CFTypeID CFArrayGetTypeID(void);
/// The type ID of dictionaries, mutable or not.
CFTypeID CFDictionaryGetTypeID(void);
/// The type ID of numbers, integers and reals. Booleans have a type of their own.
CFTypeID CFNumberGetTypeID(void);
/// The type ID of kCFBooleanTrue and kCFBooleanFalse.
CFTypeID CFBooleanGetTypeID(void);
/// The type ID of sets, which are only created from binary property lists.
CFTypeID CFSetGetTypeID(void);
/// The type ID of URLs.
CFTypeID CFURLGetTypeID(void);

/// A string from NUL-terminated text; null when the bytes are not valid in the encoding. One byte
/// order mark at the start of UTF-8 is removed.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
/// A string from `count` bytes in any of the encodings above; null as for
/// CFStringCreateWithCString. An external representation in kCFStringEncodingUTF16 has the order of
/// its byte order mark, and is big-endian without one.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean is_external);
/// The length in UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);
/// The maximum number of bytes, without a NUL, of `length` UTF-16 units; kCFNotFound when it
/// exceeds the range of CFIndex.
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Writes the string and a NUL into `size` bytes, in UTF-8, UTF-16 or ASCII. False when they do not
/// fit or a character cannot be encoded; the buffer then holds an empty string.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);
/// Writes as many of the units in `range` as fit in `size` bytes, in UTF-8, UTF-16 or ASCII. Stops
/// at a unit that cannot be encoded, unless `loss_byte` (0: none) replaces it in ASCII. If `buffer`
/// is null, only counts. Returns the number of units; `used` (may be null) gets the number of
/// bytes.
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 loss_byte, Boolean is_external, UInt8* buffer, CFIndex size,
                         CFIndex* used);

/// Data with a copy of the bytes.
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
/// Data that refers to the caller's bytes, which must outlive it. `deallocator` must be
/// kCFAllocatorNull; for any other the result is null.
CFDataRef CFDataCreateWithBytesNoCopy(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                      CFAllocatorRef deallocator);
/// The bytes, valid as long as the data; not null, even when there are none, unless they are the
/// caller's.
const UInt8* CFDataGetBytePtr(CFDataRef data);
/// The number of bytes.
CFIndex CFDataGetLength(CFDataRef data);

/// A date, in seconds since 2001-01-01 00:00:00 UTC.
CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time);
/// The date, in seconds since 2001-01-01 00:00:00 UTC; negative before.
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);

/// A number from the scalar of `type` at `value`. An unknown type stops the process.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
/// Writes the number as a scalar of `type` to `value`. False when the conversion is not exact: the
/// low bits of an integer, a real truncated towards zero (or the nearest limit of the range), the
/// nearest real. For the 8 and 16 bit types, values of the unsigned type of the same width are
/// exact too.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
/// Whether the number is a real, of single or double precision.
Boolean CFNumberIsFloatType(CFNumberRef number);
/// Whether the boolean is kCFBooleanTrue.
Boolean CFBooleanGetValue(CFBooleanRef boolean);

/// An array of `count` objects, which it retains.
CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                         const CFArrayCallBacks* callbacks);
/// The number of values.
CFIndex CFArrayGetCount(CFArrayRef array);
/// The value at an index, from 0, borrowed; an index out of range stops the process.
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

/// A dictionary of `count` entries; of entries with equal keys the first is kept. Entries are in
/// the order in which their keys were first added.
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* key_callbacks,
                                   const CFDictionaryValueCallBacks* value_callbacks);
/// An empty dictionary that grows as needed; `capacity` is only a hint.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* key_callbacks,
                                                 const CFDictionaryValueCallBacks* value_callbacks);
/// A mutable copy with the same entries; keys and values are shared.
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary);
/// The number of entries.
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/// The value of a key, borrowed; null when there is no such key.
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/// Copies the keys and the values, borrowed and in the same order, into arrays with room for all
/// entries; either may be null.
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values);
/// Adds an entry, or replaces the key and the value of the entry with an equal key. Stops the
/// process when the dictionary is immutable.
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

/// The number of values.
CFIndex CFSetGetCount(CFSetRef set);
/// Copies the values, borrowed, into an array with room for all of them.
void CFSetGetValues(CFSetRef set, const void** values);

/// The URL of a path of `length` bytes, which need not be UTF-8; null when `length` is 0. A
/// relative path is relative to the current folder at the time of the call.
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean is_directory);
/// The URL whose text is `string`; null when it is not valid in a URL, or `base` is not null.
CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string, CFURLRef base);
/// The URL's path in POSIX style, without a trailing "/" and not resolved; null when the URL has no
/// path or one that is not UTF-8, and for another style.
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
/// Writes the URL's path, resolved to an absolute path on request, and a NUL into `size` bytes.
/// False when they do not fit or the URL has no path; the buffer then holds an empty path.
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve_against_base, UInt8* buffer,
                                         CFIndex size);

/// The property list in `data` (null: fails), in XML or binary form, as immutable objects; `format`
/// (may be null) gets the form. Null when the data is not a property list, nests too deeply, or
/// there is not enough memory, and for `options` other than kCFPropertyListImmutable. No error is
/// created: `error` is ignored.
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error);
/// The binary form of a property list; the bytes depend on its values alone. `format` must be
/// kCFPropertyListBinaryFormat_v1_0; `options` and `error` are ignored. Null for another format,
/// when `list` contains itself or an object that a property list cannot contain, or when there is
/// not enough memory.
CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error);

#ifdef __cplusplus
}
#endif
