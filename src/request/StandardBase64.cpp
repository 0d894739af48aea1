#include "request/StandardBase64.h"

#include <openssl/bio.h>
#include <openssl/evp.h>

#include <memory>

namespace userauth {
namespace {

struct BioChainRelease {
    void operator()(BIO* chain) const { BIO_free_all(chain); }
};

}  // namespace

std::string EncodeStandardBase64(const std::string& bytes) {
    if (bytes.empty()) {
        return {};
    }
    const std::unique_ptr<BIO, BioChainRelease> filter(BIO_new(BIO_f_base64()));
    BIO* const sink = BIO_new(BIO_s_mem());
    if (filter == nullptr || sink == nullptr) {
        BIO_free(sink);
        return {};
    }
    BIO_set_flags(filter.get(), BIO_FLAGS_BASE64_NO_NL);
    BIO_push(filter.get(), sink);
    const int size = static_cast<int>(bytes.size());
    if (BIO_write(filter.get(), bytes.data(), size) != size || BIO_flush(filter.get()) != 1) {
        return {};
    }
    char* encoded = nullptr;
    const long length = BIO_get_mem_data(sink, &encoded);
    return length > 0 ? std::string(encoded, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace userauth
