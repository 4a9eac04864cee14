// The part of AudioToolbox that hosts AUSampler: components, units, the sampler's properties.
// Same names, values and layouts as on macOS.
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

/// Which components are meant: codes of four characters, and flags, of which those in the mask
/// count.
typedef struct AudioComponentDescription {
    OSType componentType;
    OSType componentSubType;
    OSType componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
} AudioComponentDescription;

/// An instrument file to load, borrowed, and its kind. Bank and preset choose an instrument in
/// files of several, which EXS24 files are not.
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
    kAudioUnitErr_PropertyNotWritable = -10865,
    kAudioUnitErr_InvalidPropertyValue = -10851
};

/// The next component behind `after` (null: the first) that matches the description, in which 0
/// stands for any type, subtype or manufacturer; null when there is none. Never released.
AudioComponent AudioComponentFindNext(AudioComponent after, const AudioComponentDescription* match);
/// Makes an instance; the caller disposes of it. Returns 0, or a status and no instance.
OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* out);
/// Disposes of an instance. Returns 0 or a status.
OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance);

// The sampler's properties, both of the global scope:
//
// kAudioUnitProperty_ClassInfo, a CFPropertyListRef: the unit's whole state, a dictionary. Setting
// it opens all samples under "file-references" in the order of the keys' bytes. Refused are: no
// dictionary, one for a part, another version, subtype or manufacturer (-10851), parameters of a
// scope that there is not (-10866); no sample is opened then. A sample that is absent makes it -43,
// one that may not be read -54, one that is not audio 1954115647: the first that failed counts.
// Getting it gives a new mutable dictionary, which the caller releases.
//
// kAUSamplerProperty_LoadInstrument, an AUSamplerInstrumentData: loads an EXS24 instrument (other
// kinds: -10868) and opens its samples, with the same statuses. It cannot be read.
//
// A load that fails leaves the unit as it was.

/// Makes the unit ready for use. Returns 0 or a status.
OSStatus AudioUnitInitialize(AudioUnit unit);
/// Undoes AudioUnitInitialize. Returns 0 or a status.
OSStatus AudioUnitUninitialize(AudioUnit unit);
/// The size in bytes of a property's value and whether it can be set; either may be null. Returns
/// 0, or a status and zeros: -10879 for an unknown property, -10866 for another scope, -10877 for
/// another element.
OSStatus AudioUnitGetPropertyInfo(AudioUnit unit, AudioUnitPropertyID property,
                                  AudioUnitScope scope, AudioUnitElement element, UInt32* out_size,
                                  Boolean* out_writable);
/// Reads a property into `data` of `*size` bytes (-50 for none), and sets `*size` to how many it
/// took; with null for `data` it only does that. Objects come with a reference for the caller,
/// unless the bytes do not suffice for theirs. Returns 0, or a status, as AudioUnitGetPropertyInfo
/// does, and sets `*size` to 0.
OSStatus AudioUnitGetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, void* data, UInt32* size);
/// Sets a property from `size` bytes at `data`. Returns 0 or a status: -50 for one without the
/// other, -10851 for neither, -10879 for an unknown property, -10851 for another size, -10866 for
/// another scope (the element is not looked at), and those of the property.
OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
                              AudioUnitElement element, const void* data, UInt32 size);

#ifdef __cplusplus
}
#endif
