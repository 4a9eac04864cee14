// The part of CoreFoundation that the project uses: the types of property lists, and file URLs.
// Same names, values and layouts as on macOS. Create and Copy functions hand one reference to the
// caller, who releases it with CFRelease; what a Get function returns is borrowed. Allocators are
// never looked at. References must be of the type that a function names and, but where it says
// otherwise, not null. Objects that are not mutable may be used from any number of threads. A
// function that gets no memory throws std::bad_alloc, one asked for a string of 2^32 units or a
// dictionary of 2^31 entries std::length_error; only the two of property lists, at the end, give an
// error instead.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned short UInt16;
typedef signed short SInt16;
typedef unsigned int UInt32;
typedef signed int SInt32;
typedef unsigned long long UInt64;
typedef signed long long SInt64;
typedef float Float32;
typedef double Float64;
typedef UInt16 UniChar;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
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
typedef struct __CFString* CFMutableStringRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDate* CFDateRef;
typedef const struct __CFArray* CFArrayRef;
typedef struct __CFArray* CFMutableArrayRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNull* CFNullRef;
typedef const struct __CFSet* CFSetRef;
typedef const struct __CFURL* CFURLRef;
typedef struct __CFError* CFErrorRef;
// NOLINTEND(bugprone-reserved-identifier)
typedef CFStringRef CFErrorDomain;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

static const CFIndex kCFNotFound = -1;

enum CFComparisonResult : CFIndex {
    kCFCompareLessThan = -1,
    kCFCompareEqualTo = 0,
    kCFCompareGreaterThan = 1
};

typedef CFOptionFlags CFStringCompareFlags;

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

typedef CFOptionFlags CFPropertyListMutabilityOptions;

enum : CFPropertyListMutabilityOptions {
    kCFPropertyListImmutable = 0,
    kCFPropertyListMutableContainers = 1,
    kCFPropertyListMutableContainersAndLeaves = 2
};

enum CFPropertyListFormat : CFIndex {
    kCFPropertyListOpenStepFormat = 1,
    kCFPropertyListXMLFormat_v1_0 = 100,
    kCFPropertyListBinaryFormat_v1_0 = 200
};

enum {
    kCFPropertyListReadCorruptError = 3840,
    kCFPropertyListReadUnknownVersionError = 3841,
    kCFPropertyListReadStreamError = 3842,
    kCFPropertyListWriteStreamError = 3851
};

enum CFURLPathStyle : CFIndex {
    kCFURLPOSIXPathStyle = 0,
    kCFURLHFSPathStyle = 1,
    kCFURLWindowsPathStyle = 2
};

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

/// Null: memory comes from the one allocator there is.
extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
extern const CFNullRef kCFNull;
/// The domain of errors that property lists end with.
extern const CFStringRef kCFErrorDomainCocoa;

/// Callbacks of containers that hold objects: these are retained, and compared with CFEqual. The
/// other choice is null: pointers that the container does not own. No others are accepted.
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

/// Takes one more reference and returns the object. Null stops the process.
CFTypeRef CFRetain(CFTypeRef object);
/// Gives up one reference; the last one frees the object. Null stops the process.
void CFRelease(CFTypeRef object);
/// Which of the types below the object is of.
CFTypeID CFGetTypeID(CFTypeRef object);
/// Whether two objects are of one type and have the same value. Strings compare unit by unit; a
/// whole number equals the real of the same value, but 0 and 0.0 do not equal -0.0.
Boolean CFEqual(CFTypeRef a, CFTypeRef b);
/// A number that is the same for equal objects while the process runs.
CFHashCode CFHash(CFTypeRef object);

/// What CFGetTypeID gives for strings.
CFTypeID CFStringGetTypeID(void);
/// What CFGetTypeID gives for data.
CFTypeID CFDataGetTypeID(void);
/// What CFGetTypeID gives for dates.
CFTypeID CFDateGetTypeID(void);
/// What CFGetTypeID gives for arrays, mutable or not.
CFTypeID CFArrayGetTypeID(void);
/// What CFGetTypeID gives for dictionaries, mutable or not.
CFTypeID CFDictionaryGetTypeID(void);
/// What CFGetTypeID gives for numbers, whole and real. Booleans are of a type of their own.
CFTypeID CFNumberGetTypeID(void);
/// What CFGetTypeID gives for kCFBooleanTrue and kCFBooleanFalse.
CFTypeID CFBooleanGetTypeID(void);
/// What CFGetTypeID gives for kCFNull.
CFTypeID CFNullGetTypeID(void);
/// What CFGetTypeID gives for sets, which only come from binary property lists.
CFTypeID CFSetGetTypeID(void);
/// What CFGetTypeID gives for URLs.
CFTypeID CFURLGetTypeID(void);
/// What CFGetTypeID gives for errors.
CFTypeID CFErrorGetTypeID(void);

/// A string of NUL-terminated text; null when the bytes are not valid in the encoding. One byte
/// order mark at the start of UTF-8 is left out.
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                      CFStringEncoding encoding);
/// A string of `count` bytes in any of the encodings above; null as for CFStringCreateWithCString.
/// An external representation in kCFStringEncodingUTF16 is big-endian unless a byte order mark says
/// otherwise.
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean is_external);
/// The length in UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);
/// The most bytes, without a NUL, that `length` UTF-16 units take; kCFNotFound when that is beyond
/// the range of CFIndex.
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
/// Writes the string and a NUL into `size` bytes, in UTF-8, UTF-16 or ASCII. False when they do not
/// suffice or a character cannot be encoded; then the text in the buffer is empty.
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);
/// Writes as many of the units in `range` as fit `size` bytes, in UTF-8, UTF-16 or ASCII, and stops
/// at one that cannot be encoded, unless `loss_byte` (0 for none) may stand for it in ASCII. Null
/// for `buffer` only counts. Returns the number of units; `used` (may be null) gets the bytes.
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding,
                         UInt8 loss_byte, Boolean is_external, UInt8* buffer, CFIndex size,
                         CFIndex* used);
/// Compares strings by their UTF-16 units. `options` must be 0.
CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options);

/// Data with a copy of the bytes.
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
/// The bytes, which live as long as the data; not null, even when there are none.
const UInt8* CFDataGetBytePtr(CFDataRef data);
/// The number of bytes.
CFIndex CFDataGetLength(CFDataRef data);

/// A date, in seconds since 2001-01-01 00:00:00 UTC.
CFDateRef CFDateCreate(CFAllocatorRef allocator, CFAbsoluteTime time);
/// The date, in seconds since 2001-01-01 00:00:00 UTC; negative before.
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef date);

/// A number from the scalar of `type` at `value`. An unknown type stops the process.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
/// Writes the number as a scalar of `type` to `value`. False when that is not its exact value: the
/// low bits of a whole number, a real cut towards zero (at most to the ends of the range), the
/// nearest real. The 8 and 16 bit types take values of their unsigned counterparts as exact.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);
/// The type without aliases in which the number is kept; reals of single precision are kept so.
CFNumberType CFNumberGetType(CFNumberRef number);
/// The size in bytes of a scalar of that type.
CFIndex CFNumberGetByteSize(CFNumberRef number);
/// Whether the number is a real, of single or double precision.
Boolean CFNumberIsFloatType(CFNumberRef number);
/// Whether the boolean is kCFBooleanTrue.
Boolean CFBooleanGetValue(CFBooleanRef boolean);

/// An array of `count` values, which it retains if the callbacks are those of objects.
CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void** values, CFIndex count,
                         const CFArrayCallBacks* callbacks);
/// An empty array that grows as needed; `capacity` is only a hint.
CFMutableArrayRef CFArrayCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                       const CFArrayCallBacks* callbacks);
/// Adds a value at the end. An array that is not mutable stops the process.
void CFArrayAppendValue(CFMutableArrayRef array, const void* value);
/// The number of values.
CFIndex CFArrayGetCount(CFArrayRef array);
/// The value at an index, from 0, borrowed; an index that is out of range stops the process.
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

/// A dictionary of `count` entries; of several with equal keys the first stays. Entries keep the
/// order in which their keys first came in.
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void** keys, const void** values,
                                   CFIndex count, const CFDictionaryKeyCallBacks* key_callbacks,
                                   const CFDictionaryValueCallBacks* value_callbacks);
/// An empty dictionary that grows as needed; `capacity` is only a hint.
CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef allocator, CFIndex capacity,
                                                 const CFDictionaryKeyCallBacks* key_callbacks,
                                                 const CFDictionaryValueCallBacks* value_callbacks);
/// A mutable dictionary with the same entries and callbacks, which share their keys and values.
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary);
/// The number of entries.
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
/// The value of a key, borrowed; null when there is no such key.
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
/// Whether the key is there.
Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key);
/// Whether the key is there; if so, `value` (may be null) gets its value, borrowed.
Boolean CFDictionaryGetValueIfPresent(CFDictionaryRef dictionary, const void* key,
                                      const void** value);
/// Fills arrays of as many pointers as there are entries, both in the same order, with what the
/// dictionary holds, borrowed; either may be null.
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values);
/// Adds an entry, or puts the key and the value in the place of those of an equal key. This and the
/// next two stop the process when the dictionary is not mutable.
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
/// Adds an entry unless there is one with an equal key.
void CFDictionaryAddValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);
/// Removes the entry of a key, if there is one; the others keep their order.
void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key);

/// The number of values.
CFIndex CFSetGetCount(CFSetRef set);
/// Fills an array of as many pointers as there are values with these, borrowed.
void CFSetGetValues(CFSetRef set, const void** values);

/// The domain to which the code belongs: kCFErrorDomainCocoa. Borrowed.
CFErrorDomain CFErrorGetDomain(CFErrorRef error);
/// What went wrong, as one of the kCFPropertyList...Error numbers.
CFIndex CFErrorGetCode(CFErrorRef error);
/// What went wrong, in English. The caller releases it.
CFStringRef CFErrorCopyDescription(CFErrorRef error);

/// The URL of a path of `length` bytes, which need not be UTF-8; null for no bytes. A relative path
/// starts from the folder that is current now. A folder's URL ends in "/".
CFURLRef CFURLCreateFromFileSystemRepresentation(CFAllocatorRef allocator, const UInt8* path,
                                                 CFIndex length, Boolean is_directory);
/// The URL that is written in `string`; null when it has characters that no URL has, or when `base`
/// is not null.
CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef string, CFURLRef base);
/// The text of the URL, percent-encoded; of a relative path, that path. Borrowed.
CFStringRef CFURLGetString(CFURLRef url);
/// The URL's path in the POSIX style, without "/" at its end and not resolved; null when the URL
/// has no path or one that is not UTF-8, and in another style.
CFStringRef CFURLCopyFileSystemPath(CFURLRef url, CFURLPathStyle style);
/// Writes the URL's path and a NUL into `size` bytes, if asked to as an absolute path. False when
/// they do not suffice (the buffer then has an empty path) or the URL has no path.
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve_against_base, UInt8* buffer,
                                         CFIndex size);

/// The property list in `data` (null: none), in XML or binary form, nothing of which can be
/// changed; `format` (may be null) gets the form. `options` must be kCFPropertyListImmutable. Null,
/// with an error that the caller releases in `*error` (`error` may be null), when the data is no
/// property list, nests too deep or is too large for the memory there is (3840).
CFPropertyListRef CFPropertyListCreateWithData(CFAllocatorRef allocator, CFDataRef data,
                                               CFOptionFlags options, CFPropertyListFormat* format,
                                               CFErrorRef* error);
/// The binary form of a property list, which depends on its values alone. `format` must be
/// kCFPropertyListBinaryFormat_v1_0; `options` are not looked at. Null, with an error as above
/// (3851), for another format, when `list` holds what no property list can or itself, or without
/// memory.
CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error);

#ifdef __cplusplus
}
#endif
