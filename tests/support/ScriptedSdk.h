#pragma once

#include <map>
#include <string>

// What the scripted account SDK answers and what it was asked; exported as the variable "g_script".
struct SdkScript {
    std::map<std::string, int> codes;  // return code by entry point; 0 when not given
    std::string calls;                 // "<entry point>(<arguments>)" of each, without anything between
};
