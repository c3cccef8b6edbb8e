/// @file
/// Marks what the shared library offers to its callers; everything else in it stays hidden. Every
/// public header includes this one before all others.
#pragma once

#if __cplusplus < 201703L
#error "libteleform needs C++17 or later (-std=c++17)"
#endif

/// Before a class or a function: the shared library exports it.
#define TELEFORM_EXPORT __attribute__((visibility("default")))
