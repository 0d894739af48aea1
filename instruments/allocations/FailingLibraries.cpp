#include "FailingLibraries.h"

#include <brotli/decode.h>
#include <curl/curl.h>
#include <dlfcn.h>
#include <openssl/ssl.h>
#include <zlib.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "FailingAllocations.h"

namespace {

void* CurlMalloc(std::size_t size) {
    return Fails(Allocator::kLibcurl) ? nullptr : std::malloc(size);
}
void* CurlRealloc(void* memory, std::size_t size) {
    return Fails(Allocator::kLibcurl) ? nullptr : std::realloc(memory, size);
}
char* CurlStrdup(const char* text) {
    return Fails(Allocator::kLibcurl) ? nullptr : strdup(text);
}
void* CurlCalloc(std::size_t count, std::size_t size) {
    return Fails(Allocator::kLibcurl) ? nullptr : std::calloc(count, size);
}

void* DecoderMalloc(void*, std::size_t size) {
    return Fails(Allocator::kDecoders) ? nullptr : std::malloc(size);
}
void* ZlibMalloc(void* unused, unsigned count, unsigned size) {
    return DecoderMalloc(unused, std::size_t{count} * size);
}
void DecoderFree(void*, void* memory) {
    std::free(memory);
}

using KeepSession = int (*)(SSL* tls, SSL_SESSION* session);
std::atomic<KeepSession> g_keepSession{nullptr};

int KeepSessionUncounted(SSL* tls, SSL_SESSION* session) {
    const Uncounted uncounted;
    return g_keepSession.load()(tls, session);
}

}  // namespace

bool LetLibcurlFail() {
    return curl_global_init_mem(CURL_GLOBAL_ALL, CurlMalloc, std::free, CurlRealloc, CurlStrdup, CurlCalloc) ==
           CURLE_OK;
}

// libcurl's own, for lack of memory to copy the settings of a TLS session that it keeps, leaves a name there that it
// has freed, and frees it again with the next session (Curl_ssl_addsessionid of 7.88).
void SSL_CTX_sess_set_new_cb(SSL_CTX* context, KeepSession keep) {
    static const auto set = reinterpret_cast<void (*)(SSL_CTX*, KeepSession)>(dlsym(RTLD_NEXT, __func__));
    g_keepSession = keep;
    set(context, keep != nullptr ? KeepSessionUncounted : nullptr);
}

// NOLINTBEGIN: names that the linker gives
extern "C" int __real_inflateInit2_(z_streamp stream, int bits, const char* version, int size);
extern "C" int __wrap_inflateInit2_(z_streamp stream, int bits, const char* version, int size) {
    stream->zalloc = ZlibMalloc;
    stream->zfree = DecoderFree;
    return __real_inflateInit2_(stream, bits, version, size);
}
extern "C" BrotliDecoderState* __real_BrotliDecoderCreateInstance(brotli_alloc_func, brotli_free_func, void*);
extern "C" BrotliDecoderState* __wrap_BrotliDecoderCreateInstance(brotli_alloc_func, brotli_free_func, void*) {
    return __real_BrotliDecoderCreateInstance(DecoderMalloc, DecoderFree, nullptr);
}

// The distribution's libcurl copies the names of its own certificate bundle here, and swallows lack of memory: the
// handle then has no buffer, and no request of it ends well. The project's own has no bundle and allocates nothing.
extern "C" void __real_curl_easy_reset(CURL* handle);
extern "C" void __wrap_curl_easy_reset(CURL* handle) {
    const Uncounted uncounted;
    __real_curl_easy_reset(handle);
}
// NOLINTEND
