/// @file
/// Marks what the shared library offers to its callers; everything else in it stays hidden.
#pragma once

#define TELEFORM_EXPORT __attribute__((visibility("default")))
