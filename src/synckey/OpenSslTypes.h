#pragma once

#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/opensslv.h>

#include <atomic>
#include <memory>

namespace userauth {

struct OpenSslRelease {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
    void operator()(EC_KEY* key) const { EC_KEY_free(key); }
    void operator()(EC_POINT* point) const { EC_POINT_free(point); }
};

using OwnedCipherContext = std::unique_ptr<EVP_CIPHER_CTX, OpenSslRelease>;
using OwnedEcKey = std::unique_ptr<EC_KEY, OpenSslRelease>;
using OwnedEcPoint = std::unique_ptr<EC_POINT, OpenSslRelease>;

// What takes longer to make than to use, made once for the process and never freed: other threads may use it while the
// process ends. Two first callers at once may each make one, and the first to be done stays. Null when it cannot be
// made; the next call tries again. Any thread.
template <auto Make, auto Release>
auto KeptForProcess() -> decltype(Make()) {
    static std::atomic<decltype(Make())> kept{nullptr};
    decltype(Make()) object = kept.load(std::memory_order_acquire);
    if (object == nullptr) {
        const auto made = Make();
        // On failure object becomes what another first caller has made.
        if (kept.compare_exchange_strong(object, made, std::memory_order_acq_rel)) {
            return made;
        }
        Release(made);
    }
    return object;
}

}  // namespace userauth
