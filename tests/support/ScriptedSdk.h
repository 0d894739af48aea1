#pragma once

#include <map>
#include <string>
#include <vector>

// What the scripted account SDK answers and what it was asked; exported as the variable "g_script".
struct SdkScript {
    std::map<std::string, int> codes;  // return code by entry point; 0 when not given
    std::vector<std::string> calls;    // "<entry point>(<arguments>)"
};
