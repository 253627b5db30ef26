#pragma once
// Engine text (CString) is in the process's ANSI code page, while files the
// engine writes for exchange are UTF-8. These convert between the two and
// refuse text that does not survive the trip, rather than mangle it.
#include <string>

// False when the bytes are not valid text of the active code page.
bool KxAnsiToUtf8(const std::string& ansi, std::string& utf8);
// False when the text (valid UTF-8 expected) has characters the active code
// page cannot write.
bool KxUtf8ToAnsi(const std::string& utf8, std::string& ansi);
