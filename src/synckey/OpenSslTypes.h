#pragma once

#include <openssl/ec.h>
#include <openssl/evp.h>

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

}  // namespace userauth
