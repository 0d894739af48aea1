#pragma once

#include <fcntl.h>
#include <unistd.h>

// The C runtime's descriptors. Text and binary are the same here.
#define _O_BINARY 0
#define _O_NOINHERIT O_CLOEXEC
inline int _pipe(int* ends, unsigned, int flags) {
    return pipe2(ends, flags);
}
inline int _dup(int descriptor) {
    return dup(descriptor);
}
inline int _dup2(int descriptor, int other) {
    return dup2(descriptor, other) < 0 ? -1 : 0;
}
inline int _close(int descriptor) {
    return close(descriptor);
}
inline int _read(int descriptor, void* buffer, unsigned bytes) {
    return static_cast<int>(read(descriptor, buffer, bytes));
}
