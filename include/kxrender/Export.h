#pragma once
// Symbols are hidden by default; exported classes and functions carry this.
/// Marks a class or function as part of the shared library's interface.
#define KXRENDER_API __attribute__((visibility("default")))
