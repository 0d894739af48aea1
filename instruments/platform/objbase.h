#pragma once

#include <windows.h>

void CoTaskMemFree(void* memory);
