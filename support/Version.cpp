#include "kxrender/Version.h"

// KXRENDER_VERSION_STRING comes from the CMake project version, the one
// source of the version for the library, its packages and its pkg-config file.
const char* kxrenderVersion() { return KXRENDER_VERSION_STRING; }
