// The part of AudioToolbox that is needed to host AUSampler: components, units and the sampler's
// properties. Names, values and layouts are those of macOS.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct OpaqueAudioComponent* AudioComponent;
typedef struct OpaqueAudioComponentInstance* AudioComponentInstance;
typedef AudioComponentInstance AudioUnit;
typedef UInt32 AudioUnitPropertyID;
typedef UInt32 AudioUnitScope;
typedef UInt32 AudioUnitElement;

/// Selects components: four-character codes, and flags, of which those in the mask are compared.
typedef struct AudioComponentDescription {
    OSType componentType;
    OSType componentSubType;
    OSType componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
} AudioComponentDescription;

/// An instrument file to load, borrowed, and its type. Bank and preset select an instrument in
/// files with several, which EXS24 files are not.
typedef struct AUSamplerInstrumentData {
    CFURLRef fileURL;
    UInt8 instrumentType;
    UInt8 bankMSB;
    UInt8 bankLSB;
    UInt8 presetID;
} AUSamplerInstrumentData;

enum {
    kAudioUnitType_MusicDevice = 0x61756D75,  // 'aumu'
    kAudioUnitSubType_Sampler = 0x73616D70,   // 'samp'
    kAudioUnitManufacturer_Apple = 0x6170706C // 'appl'
};

enum { kAudioUnitScope_Global = 0 };

enum { kAudioUnitProperty_ClassInfo = 0, kAUSamplerProperty_LoadInstrument = 4102 };

enum { kInstrumentType_EXS24 = 4 };

enum { kAUSampler_DefaultMelodicBankMSB = 0x79, kAUSampler_DefaultBankLSB = 0x00 };

enum {
    kAudioUnitErr_InvalidProperty = -10879,
    kAudioUnitErr_InvalidElement = -10877,
    kAudioUnitErr_InvalidFile = -10871,
    kAudioUnitErr_FormatNotSupported = -10868,
    kAudioUnitErr_InvalidScope = -10866,
    kAudioUnitErr_InvalidPropertyValue = -10851
};

/// The next component after `after` (null: the first) that matches the description, in which 0
/// matches any type, subtype or manufacturer; null when there is none. It is never released.
AudioComponent AudioComponentFindNext(AudioComponent after, const AudioComponentDescription* match);
/// Creates an instance; the caller disposes of it. Returns 0, or a status and no instance.
OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* out);
/// Disposes of an instance. Returns 0 or a status.
OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance);

// The sampler's properties, both in the global scope:
//
// kAudioUnitProperty_ClassInfo, a CFPropertyListRef: the unit's whole state, a dictionary. Setting
// it opens all samples in "file-references", in ascending byte order of the keys. It fails, before
// any sample is opened, for a value that is not a dictionary, has "part", or has another version,
// subtype or manufacturer (-10851); for parameters of an unknown scope (-10866); and for more than
// 2^22 layers and zones together (-108). It also fails for a missing sample (-43), one without read
// permission (-54) and one that is not audio (1954115647); the first failure is returned. Getting
// it returns a new mutable dictionary, which the caller releases.
//
// kAUSamplerProperty_LoadInstrument, an AUSamplerInstrumentData: loads an EXS24 instrument and
// opens its samples. It fails for a `fileURL` that is null or not a URL (-10851), for other types
// and more layers than the sampler can number (-10868), and for a file that is not a valid EXS24
// file or larger than 1 GiB (-10871); for the file and its samples also with the statuses of
// samples above. It cannot be read.
//
// A load that fails leaves the unit unchanged.

/// Prepares the unit for use. Returns 0 or a status.
OSStatus AudioUnitInitialize(AudioUnit unit);
/// Reads a property into `data` of `*size` bytes, and sets `*size` to the number written. An object
/// is returned with a reference that the caller releases, unless the buffer is too small for the
/// pointer. Returns 0, or a status with `*size` set to 0: -50 when `data` is null or `*size` is 0,
/// -10879 for an unknown property, -10866 for another scope, -10877 for another element.
OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, void* data, UInt32* size);
/// Sets a property from `size` bytes at `data`. Returns 0 or a status: -50 when only one of `data`
/// and `size` is given, -10851 for neither, -10879 for an unknown property, -10851 for a wrong
/// size, -10866 for another scope (the element is not checked), or a status of the property.
OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, const void* data, UInt32 size);

#ifdef __cplusplus
}
#endif
