#pragma once

#include <shlobj.h>
