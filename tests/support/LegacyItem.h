#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h.
#include <wincrypt.h>
// After wincrypt.h.
#include <dpapi.h>

#include "Bytes.h"

inline const std::string kLegacyTimeStamp = "2019-03-04 05:06:07";

// What an earlier version of the client left: a plaintext, usually a refresh token and a time stamp, protected for this
// user.
inline std::string LegacyItem(std::string plaintext) {
    DATA_BLOB input{static_cast<DWORD>(plaintext.size()), reinterpret_cast<BYTE*>(plaintext.data())};
    DATA_BLOB output{};
    EXPECT_TRUE(CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output));
    const Bytes blob(output.pbData, output.pbData + output.cbData);
    LocalFree(output.pbData);
    return ToBase64(blob);
}
