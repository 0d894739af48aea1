#include "request/DeviceIdentity.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>

#include "core/EntryPoint.h"

namespace userauth {
namespace {

constexpr DWORD kRawSmbiosProvider = 0x52534D42;  // "RSMB"

using GetFirmwareTable = UINT(WINAPI*)(DWORD provider, DWORD table, void* buffer, DWORD bytes);

DeviceIdentity ReadDeviceIdentity() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32");
    const auto getTable =
        kernel == nullptr ? nullptr : EntryPointOf<GetFirmwareTable>(kernel, "GetSystemFirmwareTable");
    if (getTable == nullptr) {
        return {};
    }
    const UINT bytes = getTable(kRawSmbiosProvider, 0, nullptr, 0);
    const std::unique_ptr<std::uint8_t[]> table(new (std::nothrow) std::uint8_t[bytes]);
    if (table == nullptr) {
        return {};
    }
    const UINT received = getTable(kRawSmbiosProvider, 0, table.get(), bytes);
    // A larger answer means that the table grew in between and nothing was copied.
    return received <= bytes ? ReadSmbiosTable(table.get(), received) : DeviceIdentity();
}

// C0, delete and C1.
bool IsControl(wchar_t character) {
    return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

std::atomic<const DeviceIdentity*> g_identity{nullptr};

}  // namespace

const DeviceIdentity& CurrentDeviceIdentity() {
    const DeviceIdentity* identity = g_identity.load(std::memory_order_acquire);
    if (identity == nullptr) {
        auto made = std::make_unique<const DeviceIdentity>(ReadDeviceIdentity());
        // On failure identity becomes what another first caller has made.
        if (g_identity.compare_exchange_strong(identity, made.get(), std::memory_order_acq_rel)) {
            identity = made.release();
        }
    }
    return *identity;
}

std::wstring DeviceNameHeader(const DeviceIdentity& identity) {
    constexpr std::size_t kLongestName = 250;
    std::wstring name = identity.system.productName.substr(0, kLongestName);
    // The HTTP library refuses a request whose header value holds a line break or a zero.
    std::replace_if(name.begin(), name.end(), IsControl, L' ');
    if (name.empty()) {
        return L"PC";
    }
    return name;
}

}  // namespace userauth
