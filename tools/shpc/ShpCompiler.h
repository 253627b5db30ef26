#pragma once
// Compiles shape definitions in the SHP text format into an SHX file
// image: plain shape fonts, unifonts (a "*UNIFONT" header) and big fonts
// (a "*BIGFONT" first line with its escape-byte ranges).
#include <cstdint>
#include <string>
#include <vector>

// False with a message naming the line when the source is not valid SHP.
bool CompileShp(const std::string& source, std::vector<uint8_t>& shx, std::string& error);
