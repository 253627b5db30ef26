#include "kxrender/Version.h"

const char* kxrenderVersion() { return "0.1.0"; }
