#pragma once

#include <ParamStore.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace userauth {

// Whether a key field of the user record holds a key: any byte that is not zero.
template <std::size_t Bytes>
bool HoldsKey(const std::uint8_t (&field)[Bytes]) {
    return std::any_of(field, field + Bytes, [](std::uint8_t byte) { return byte != 0; });
}

// Stores a key and its uuid into the record's fields of that type and service. Nothing is stored for another type or
// service, nor for a key that is longer than its field. What follows a shorter key in its field stays. A uuid of more
// than 32 characters empties its field: no id rather than a wrong one.
void StoreSyncKey(st_UserInfo& record, int keyType, const std::wstring& dataType, const std::vector<unsigned char>& key,
                  const std::wstring& uuid);

}  // namespace userauth
