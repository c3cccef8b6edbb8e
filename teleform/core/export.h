/// @file
/// The macro that exports symbols from the shared library. All other symbols are hidden. Every
/// public header includes this one first.
#pragma once

#if __cplusplus < 201703L
#error "libteleform needs C++17 or later (-std=c++17)"
#endif

/// Exports the class or function that it precedes from the shared library.
#define TELEFORM_EXPORT __attribute__((visibility("default")))
