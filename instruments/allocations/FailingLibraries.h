#pragma once

// Gives libcurl the functions that fail; before it starts otherwise. zlib's decoder and brotli's have theirs from the
// linker, see CMakeLists.txt. False when libcurl does not take them.
bool LetLibcurlFail();
