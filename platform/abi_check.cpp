// Compile-time checks that the declarations used by the tool have the sizes, layouts, values and
// signatures of macOS. This file includes only the public headers, so it compiles with the
// project's headers and with Apple's, and is part of every build.
#include <AudioToolbox/AudioToolbox.h>
#include <CoreFoundation/CoreFoundation.h>
#include <copyfile.h>

#include <cstddef>
#include <type_traits>

namespace {

template <class A, class B>
constexpr bool same = std::is_same_v<A, B>;

/// Whether a function has this type, noexcept or not.
template <class Type, class Function>
constexpr bool callable_as(Function* function) {
    return std::is_convertible_v<decltype(function), Type*>;
}

// Scalar types
static_assert(same<Boolean, unsigned char> && same<UInt8, unsigned char>);
static_assert(same<SInt8, signed char> && same<SInt64, long long>);
static_assert(same<UInt32, unsigned int> && same<SInt32, int>);
static_assert(same<OSType, unsigned int> && same<OSStatus, int>);
static_assert(same<CFIndex, long> && same<CFTypeID, unsigned long>);
static_assert(same<CFOptionFlags, unsigned long> && same<CFHashCode, unsigned long>);
static_assert(same<CFStringEncoding, UInt32>);
static_assert(same<CFAbsoluteTime, double>);
static_assert(same<CFTypeRef, const void*> && same<CFPropertyListRef, const void*>);
static_assert(sizeof(CFStringRef) == 8 && sizeof(CFErrorRef) == 8);
static_assert(same<CFDictionaryRef, const std::remove_pointer_t<CFMutableDictionaryRef>*>);
static_assert(!std::is_const_v<std::remove_pointer_t<CFErrorRef>>);

// Structures
static_assert(sizeof(CFRange) == 16 && offsetof(CFRange, length) == 8);
static_assert(sizeof(CFArrayCallBacks) == 40 && offsetof(CFArrayCallBacks, equal) == 32);
static_assert(sizeof(CFDictionaryKeyCallBacks) == 48);
static_assert(offsetof(CFDictionaryKeyCallBacks, retain) == 8);
static_assert(offsetof(CFDictionaryKeyCallBacks, release) == 16);
static_assert(offsetof(CFDictionaryKeyCallBacks, copyDescription) == 24);
static_assert(offsetof(CFDictionaryKeyCallBacks, equal) == 32);
static_assert(offsetof(CFDictionaryKeyCallBacks, hash) == 40);
static_assert(sizeof(CFDictionaryValueCallBacks) == 40);
static_assert(offsetof(CFDictionaryValueCallBacks, equal) == 32);
static_assert(sizeof(AudioComponentDescription) == 20 && alignof(AudioComponentDescription) == 4);
static_assert(offsetof(AudioComponentDescription, componentSubType) == 4);
static_assert(offsetof(AudioComponentDescription, componentManufacturer) == 8);
static_assert(offsetof(AudioComponentDescription, componentFlags) == 12);
static_assert(offsetof(AudioComponentDescription, componentFlagsMask) == 16);
static_assert(sizeof(AUSamplerInstrumentData) == 16 && alignof(AUSamplerInstrumentData) == 8);
static_assert(offsetof(AUSamplerInstrumentData, instrumentType) == 8);
static_assert(offsetof(AUSamplerInstrumentData, bankMSB) == 9);
static_assert(offsetof(AUSamplerInstrumentData, bankLSB) == 10);
static_assert(offsetof(AUSamplerInstrumentData, presetID) == 11);

// Constants of CoreFoundation
static_assert(sizeof(CFNumberType) == 8 && sizeof(CFPropertyListFormat) == 8);
static_assert(sizeof(CFURLPathStyle) == 8);
static_assert(kCFStringEncodingMacRoman == 0 && kCFStringEncodingUTF16 == 0x100);
static_assert(kCFStringEncodingISOLatin1 == 0x201 && kCFStringEncodingASCII == 0x600);
static_assert(kCFStringEncodingWindowsLatin1 == 0x500 && kCFStringEncodingUTF8 == 0x08000100);
static_assert(kCFStringEncodingUTF16BE == 0x10000100 && kCFStringEncodingUTF16LE == 0x14000100);
static_assert(kCFNumberSInt8Type == 1 && kCFNumberSInt16Type == 2 && kCFNumberSInt32Type == 3);
static_assert(kCFNumberSInt64Type == 4 && kCFNumberFloat32Type == 5 && kCFNumberFloat64Type == 6);
static_assert(kCFNumberCharType == 7 && kCFNumberShortType == 8 && kCFNumberIntType == 9);
static_assert(kCFNumberLongType == 10 && kCFNumberLongLongType == 11 && kCFNumberFloatType == 12);
static_assert(kCFNumberDoubleType == 13 && kCFNumberCFIndexType == 14);
static_assert(kCFNumberNSIntegerType == 15 && kCFNumberCGFloatType == 16);
static_assert(kCFPropertyListImmutable == 0 && kCFPropertyListMutableContainers == 1);
static_assert(kCFPropertyListOpenStepFormat == 1 && kCFPropertyListXMLFormat_v1_0 == 100);
static_assert(kCFPropertyListBinaryFormat_v1_0 == 200);
static_assert(kCFURLPOSIXPathStyle == 0);

// Constants of AudioToolbox
static_assert(kAudioUnitType_MusicDevice == 0x61756D75 && kAudioUnitSubType_Sampler == 0x73616D70);
static_assert(kAudioUnitManufacturer_Apple == 0x6170706C && kAudioUnitScope_Global == 0);
static_assert(kAudioUnitProperty_ClassInfo == 0 && kAUSamplerProperty_LoadInstrument == 4102);
static_assert(kInstrumentType_EXS24 == 4 && kAUSampler_DefaultMelodicBankMSB == 0x79);
static_assert(kAUSampler_DefaultBankLSB == 0);
static_assert(kAudioUnitErr_InvalidProperty == -10879 && kAudioUnitErr_InvalidElement == -10877);
static_assert(kAudioUnitErr_InvalidFile == -10871 && kAudioUnitErr_FormatNotSupported == -10868);
static_assert(kAudioUnitErr_InvalidScope == -10866 && kAudioUnitErr_InvalidPropertyValue == -10851);

// Constants of copyfile
static_assert(sizeof(copyfile_state_t) == 8 && same<copyfile_flags_t, uint32_t>);
static_assert(COPYFILE_ACL == 1 && COPYFILE_STAT == 2 && COPYFILE_XATTR == 4);
static_assert(COPYFILE_DATA == 8 && COPYFILE_SECURITY == 3 && COPYFILE_METADATA == 7);
static_assert(COPYFILE_ALL == 15 && COPYFILE_EXCL == 1 << 17);
static_assert(COPYFILE_NOFOLLOW_SRC == 1 << 18 && COPYFILE_CLONE == 1 << 24);

// Signatures of CoreFoundation
static_assert(callable_as<CFTypeRef(CFTypeRef)>(CFRetain));
static_assert(callable_as<void(CFTypeRef)>(CFRelease));
static_assert(callable_as<CFTypeID(CFTypeRef)>(CFGetTypeID));
static_assert(callable_as<Boolean(CFTypeRef, CFTypeRef)>(CFEqual));
static_assert(callable_as<CFHashCode(CFTypeRef)>(CFHash));
static_assert(callable_as<CFTypeID()>(CFStringGetTypeID));
static_assert(callable_as<CFTypeID()>(CFDataGetTypeID));
static_assert(callable_as<CFTypeID()>(CFDateGetTypeID));
static_assert(callable_as<CFTypeID()>(CFArrayGetTypeID));
static_assert(callable_as<CFTypeID()>(CFDictionaryGetTypeID));
static_assert(callable_as<CFTypeID()>(CFNumberGetTypeID));
static_assert(callable_as<CFTypeID()>(CFBooleanGetTypeID));
static_assert(callable_as<CFTypeID()>(CFSetGetTypeID));
static_assert(callable_as<CFTypeID()>(CFURLGetTypeID));
static_assert(callable_as<CFStringRef(CFAllocatorRef, const char*, CFStringEncoding)>(
    CFStringCreateWithCString));
static_assert(callable_as<CFStringRef(CFAllocatorRef, const UInt8*, CFIndex, CFStringEncoding,
                                      Boolean)>(CFStringCreateWithBytes));
static_assert(
    callable_as<Boolean(CFStringRef, char*, CFIndex, CFStringEncoding)>(CFStringGetCString));
static_assert(callable_as<CFIndex(CFStringRef, CFRange, CFStringEncoding, UInt8, Boolean, UInt8*,
                                  CFIndex, CFIndex*)>(CFStringGetBytes));
static_assert(callable_as<CFIndex(CFStringRef)>(CFStringGetLength));
static_assert(callable_as<CFIndex(CFIndex, CFStringEncoding)>(CFStringGetMaximumSizeForEncoding));
static_assert(callable_as<CFDataRef(CFAllocatorRef, const UInt8*, CFIndex)>(CFDataCreate));
static_assert(callable_as<CFDataRef(CFAllocatorRef, const UInt8*, CFIndex, CFAllocatorRef)>(
    CFDataCreateWithBytesNoCopy));
static_assert(callable_as<const UInt8*(CFDataRef)>(CFDataGetBytePtr));
static_assert(callable_as<CFIndex(CFDataRef)>(CFDataGetLength));
static_assert(callable_as<CFDateRef(CFAllocatorRef, CFAbsoluteTime)>(CFDateCreate));
static_assert(callable_as<CFAbsoluteTime(CFDateRef)>(CFDateGetAbsoluteTime));
static_assert(callable_as<CFNumberRef(CFAllocatorRef, CFNumberType, const void*)>(CFNumberCreate));
static_assert(callable_as<Boolean(CFNumberRef, CFNumberType, void*)>(CFNumberGetValue));
static_assert(callable_as<Boolean(CFNumberRef)>(CFNumberIsFloatType));
static_assert(callable_as<Boolean(CFBooleanRef)>(CFBooleanGetValue));
static_assert(callable_as<CFArrayRef(CFAllocatorRef, const void**, CFIndex,
                                     const CFArrayCallBacks*)>(CFArrayCreate));
static_assert(callable_as<CFIndex(CFArrayRef)>(CFArrayGetCount));
static_assert(callable_as<const void*(CFArrayRef, CFIndex)>(CFArrayGetValueAtIndex));
static_assert(callable_as<CFDictionaryRef(CFAllocatorRef, const void**, const void**, CFIndex,
                                          const CFDictionaryKeyCallBacks*,
                                          const CFDictionaryValueCallBacks*)>(CFDictionaryCreate));
static_assert(
    callable_as<CFMutableDictionaryRef(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks*,
                                       const CFDictionaryValueCallBacks*)>(
        CFDictionaryCreateMutable));
static_assert(callable_as<CFMutableDictionaryRef(CFAllocatorRef, CFIndex, CFDictionaryRef)>(
    CFDictionaryCreateMutableCopy));
static_assert(callable_as<CFIndex(CFDictionaryRef)>(CFDictionaryGetCount));
static_assert(callable_as<const void*(CFDictionaryRef, const void*)>(CFDictionaryGetValue));
static_assert(
    callable_as<void(CFDictionaryRef, const void**, const void**)>(CFDictionaryGetKeysAndValues));
static_assert(
    callable_as<void(CFMutableDictionaryRef, const void*, const void*)>(CFDictionarySetValue));
static_assert(callable_as<CFIndex(CFSetRef)>(CFSetGetCount));
static_assert(callable_as<void(CFSetRef, const void**)>(CFSetGetValues));
static_assert(callable_as<CFURLRef(CFAllocatorRef, const UInt8*, CFIndex, Boolean)>(
    CFURLCreateFromFileSystemRepresentation));
static_assert(callable_as<CFURLRef(CFAllocatorRef, CFStringRef, CFURLRef)>(CFURLCreateWithString));
static_assert(callable_as<CFStringRef(CFURLRef, CFURLPathStyle)>(CFURLCopyFileSystemPath));
static_assert(
    callable_as<Boolean(CFURLRef, Boolean, UInt8*, CFIndex)>(CFURLGetFileSystemRepresentation));
static_assert(
    callable_as<CFPropertyListRef(CFAllocatorRef, CFDataRef, CFOptionFlags, CFPropertyListFormat*,
                                  CFErrorRef*)>(CFPropertyListCreateWithData));
static_assert(callable_as<CFDataRef(CFAllocatorRef, CFPropertyListRef, CFPropertyListFormat,
                                    CFOptionFlags, CFErrorRef*)>(CFPropertyListCreateData));

// Signatures of AudioToolbox and copyfile
static_assert(same<AudioUnit, AudioComponentInstance>);
static_assert(callable_as<AudioComponent(AudioComponent, const AudioComponentDescription*)>(
    AudioComponentFindNext));
static_assert(
    callable_as<OSStatus(AudioComponent, AudioComponentInstance*)>(AudioComponentInstanceNew));
static_assert(callable_as<OSStatus(AudioComponentInstance)>(AudioComponentInstanceDispose));
static_assert(callable_as<OSStatus(AudioUnit)>(AudioUnitInitialize));
static_assert(callable_as<OSStatus(AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement,
                                   void*, UInt32*)>(AudioUnitGetProperty));
static_assert(callable_as<OSStatus(AudioUnit, AudioUnitPropertyID, AudioUnitScope, AudioUnitElement,
                                   const void*, UInt32)>(AudioUnitSetProperty));
static_assert(
    callable_as<int(const char*, const char*, copyfile_state_t, copyfile_flags_t)>(copyfile));

} // namespace
