#pragma once
// RGBA images as PNG files (rows from the top, four bytes a pixel).
#include <cstdint>
#include <string>
#include <vector>

#include "kxrender/Export.h"

/// Writes width x height RGBA pixels as a PNG file; false when a size is
/// not positive, rgba holds fewer pixels, or the file cannot be written.
KXRENDER_API bool KxWritePng(const std::string& path, const std::vector<uint8_t>& rgba, int width, int height);
/// Any PNG colour type is expanded to 8-bit RGBA. False for a missing or
/// corrupt file, or one larger than 16384 pixels a side.
KXRENDER_API bool KxReadPng(const std::string& path, std::vector<uint8_t>& rgba, int& width, int& height);
