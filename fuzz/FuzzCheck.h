#pragma once
// The fuzz targets' check of a promise: it names the broken one before
// stopping, so that a crash report says which.

#include <cstdio>

#define Check(condition)                                                            \
    do {                                                                            \
        if (!(condition)) {                                                         \
            std::fprintf(stderr, "Failed at line %d: %s\n", __LINE__, #condition); \
            __builtin_trap();                                                       \
        }                                                                           \
    } while (false)
