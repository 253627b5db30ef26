#pragma once
// Symbols are hidden by default; exported classes and functions carry this.
#define KXRENDER_API __attribute__((visibility("default")))
