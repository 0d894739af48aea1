#pragma once

#include <cstddef>
#include <string>

namespace sandbox {

struct Photo {
    std::string bytes;
    std::string contentType;
};

// A picture of a few hundred bytes: JPEG when the name ends in .jpg, else a PNG that differs from number to number.
Photo MakePhoto(const std::string& name, std::size_t number);

}  // namespace sandbox
