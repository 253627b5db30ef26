#pragma once
// The PLY reader of Debian's assimp 5.2 loops for ever on a header without
// an end_header line, reads past the end of a truncated binary body, and
// aborts on a face without vertices; files are checked here first.
#include <cstddef>
#include <cstdint>
#include <string>

namespace kximport {

// Whether data starts like a PLY file ("ply" and a line end).
bool isPly(const uint8_t* data, size_t size);
// Empty when the header is whole, names the vertex coordinates, and the
// body (for binary files) holds every element it declares, with no empty
// face; otherwise what is wrong.
std::string plyProblem(const uint8_t* data, size_t size);

}  // namespace kximport
