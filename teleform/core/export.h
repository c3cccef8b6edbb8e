/// @file
/// Marks what the shared library offers to its callers; everything else in it stays hidden.
#pragma once

/// Before a class or a function: the shared library exports it.
#define TELEFORM_EXPORT __attribute__((visibility("default")))
