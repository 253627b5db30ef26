#pragma once
// Process-wide text settings a host makes.
#include "kxrender/Export.h"
#include "kxrender/Win32Types.h"

/// The process's ANSI code page, used for byte strings in files and fonts:
/// CP_UTF8 unless the host sets another, for example 936 for GBK data written
/// on Windows. Returns false for a code page the system cannot convert,
/// leaving the active one unchanged.
KXRENDER_API bool KxSetAnsiCodePage(UINT codePage);
