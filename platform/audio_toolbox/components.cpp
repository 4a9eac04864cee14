#include <AudioToolbox/AudioToolbox.h>
