#include "UserAuthService.h"

#include <openssl/crypto.h>

#include <cstring>
#include <new>

int g_nUserAuthService = 0;

int FnUserAuthService() {
    return 0;
}

// Storage that is zero-filled before the object is constructed in it, so that padding holds no old bytes either.
struct UserAuthService::Storage {
    Storage() {
        auto* service = reinterpret_cast<UserAuthService*>(bytes);
#if !defined(_MSC_VER)
        service->__autoclassinit2(sizeof(UserAuthService));
#endif
        new (service) UserAuthService();
    }
    ~Storage() {
        Object()->~UserAuthService();
    }

    UserAuthService* Object() {
        return std::launder(reinterpret_cast<UserAuthService*>(bytes));
    }

    alignas(UserAuthService) unsigned char bytes[sizeof(UserAuthService)];
};

UserAuthService* UserAuthService::GetInstance() {
    static Storage storage;
    return storage.Object();
}

#if !defined(_MSC_VER)
void UserAuthService::__autoclassinit2(std::size_t size) {
    std::memset(static_cast<void*>(this), 0, size);
}
#endif

UserAuthService::UserAuthService() {
    m_bSdkLoaded = LoadZMSSDKLibrary();
    m_bActiveAccount = false;
    m_bAvailableCountry = false;
}

UserAuthService::~UserAuthService() {
    // First of all, and without the SDK's "Uninit": that is UnInitializeSDK's, which the host calls at shutdown.
    m_hSdkModule.reset();
    OPENSSL_cleanse(m_vecRealUserKey.data(), m_vecRealUserKey.size());
}
