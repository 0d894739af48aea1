#include "CertificateAuthorities.h"

#if defined(_WIN32)
#include <windows.h>
#endif

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string_view>
#include <system_error>
#include <vector>

namespace suite {

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMaxPemBytes = 8'000'000;  // libcurl takes no more
constexpr std::size_t kMaxFiles = 4;                // a default, and those of single requests

// What tells one state of a file from another without reading it.
struct FileStamp {
    std::wstring path;
    std::uintmax_t size = 0;
    std::int64_t written = 0;  // in the system's own units

    bool operator==(const FileStamp& other) const {
        return path == other.path && size == other.size && written == other.written;
    }
};

// Looks at the file, at a link's target; false when that is not possible.
bool LookThroughLinks(FileStamp& stamp) {
    std::error_code sizeError;
    std::error_code timeError;
    stamp.size = fs::file_size(stamp.path, sizeError);
    stamp.written = fs::last_write_time(stamp.path, timeError).time_since_epoch().count();
    return !sizeError && !timeError;
}

// The same. Every request does it, so the system is asked once, unless the file is a link: of that the one question
// tells the link's own size, which is 0, and its own time.
bool Look(FileStamp& stamp) {
#if defined(_WIN32)
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(stamp.path.c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return false;
    }
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        return LookThroughLinks(stamp);
    }
    const auto joined = [](DWORD high, DWORD low) { return static_cast<std::uint64_t>(high) << 32 | low; };
    stamp.size = joined(data.nFileSizeHigh, data.nFileSizeLow);
    stamp.written =
        static_cast<std::int64_t>(joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime));
    return true;
#else
    return LookThroughLinks(stamp);
#endif
}

struct ReadFile {
    FileStamp stamp;
    std::shared_ptr<const Authorities> authorities;
};

struct KnownAuthorities {
    std::mutex reading;  // held while a file is read: the others want the same one. Taken before the lock
    std::mutex lock;     // guards what follows
    std::wstring defaultPath;
    std::vector<ReadFile> files;  // newest last
    const std::shared_ptr<const Authorities> none = std::make_shared<const Authorities>();
};

// Never destroyed: a request may still read it while the process ends.
KnownAuthorities& Shared() {
    static auto* const instance = new KnownAuthorities;
    return *instance;
}

// How often a certificate begins in the text, wherever on its line.
int CertificateCount(const std::string& pem) {
    int count = 0;
    for (const std::string_view begin :
         {"-----BEGIN CERTIFICATE-----", "-----BEGIN TRUSTED CERTIFICATE-----", "-----BEGIN X509 CERTIFICATE-----"}) {
        for (std::size_t at = pem.find(begin); at != std::string::npos; at = pem.find(begin, at + begin.size())) {
            ++count;
        }
    }
    return count;
}

struct BioDeleter {
    void operator()(BIO* bio) const { BIO_free(bio); }
};
using OwnedBio = std::unique_ptr<BIO, BioDeleter>;

struct CertificateDeleter {
    void operator()(X509* certificate) const { X509_free(certificate); }
};

struct EntriesDeleter {
    void operator()(STACK_OF(X509_INFO) * entries) const { sk_X509_INFO_pop_free(entries, X509_INFO_free); }
};
using Entries = std::unique_ptr<STACK_OF(X509_INFO), EntriesDeleter>;

// SHA-256 of the file's content in base64, with a line's end. Empty when there is no memory.
std::string DigestLine(const std::string& content) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    std::array<unsigned char, EVP_MAX_MD_SIZE * 2> text{};
    unsigned length = 0;
    if (EVP_Digest(content.data(), content.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1) {
        return {};
    }
    const int characters = EVP_EncodeBlock(text.data(), digest.data(), static_cast<int>(length));
    return std::string(text.begin(), text.begin() + characters) + "\n";
}

std::string PemOf(X509* certificate) {
    const OwnedBio memory(BIO_new(BIO_s_mem()));
    char* text = nullptr;
    if (!memory || PEM_write_bio_X509(memory.get(), certificate) != 1) {
        return {};
    }
    const long length = BIO_get_mem_data(memory.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

bool IsRead(X509* certificate) {
    EVP_PKEY* const key = X509_get0_pubkey(certificate);
    return X509_check_purpose(certificate, -1, 0) == 1 && key != nullptr && EVP_PKEY_security_bits(key) > 0;
}

// A certificate for whose key or extensions OpenSSL had no memory stays without them, or invalid, for good; and the
// extensions are not read before they are asked for, as here. What cannot be read in a copy either is so by itself.
bool ReadWhole(X509* certificate) {
    if (IsRead(certificate)) {
        return true;
    }
    const std::unique_ptr<X509, CertificateDeleter> copy(X509_dup(certificate));
    return copy && !IsRead(copy.get());
}

// As libcurl does it: every entry counts, one that cannot be added spoils all.
bool AddEntries(X509_STORE* store, const STACK_OF(X509_INFO) * entries) {
    for (int i = 0; i < sk_X509_INFO_num(entries); ++i) {
        const X509_INFO* const entry = sk_X509_INFO_value(entries, i);
        if ((entry->x509 != nullptr && (!ReadWhole(entry->x509) || X509_STORE_add_cert(store, entry->x509) != 1)) ||
            (entry->crl != nullptr && X509_STORE_add_crl(store, entry->crl) != 1)) {
            return false;
        }
    }
    return true;
}

// The certificates that OpenSSL has read, in number; the first of them as text.
int ReadCount(const STACK_OF(X509_INFO) * entries, std::string& firstPem) {
    int count = 0;
    for (int i = 0; i < sk_X509_INFO_num(entries); ++i) {
        X509* const certificate = sk_X509_INFO_value(entries, i)->x509;
        count += certificate != nullptr ? 1 : 0;
        firstPem = certificate != nullptr && firstPem.empty() ? PemOf(certificate) : firstPem;
    }
    return count;
}

// Reading 150 certificates takes OpenSSL longer than all the rest of a handshake, and they take a megabyte.
// Null: one of them was passed over. OpenSSL reads those that begin with their line, and none that is indented or
// stands behind a text.
std::shared_ptr<const Authorities> Prepared(std::string content) {
    const OwnedBio source(BIO_new_mem_buf(content.data(), static_cast<int>(content.size())));
    const Entries entries(source ? PEM_X509_INFO_read_bio(source.get(), nullptr, nullptr, nullptr) : nullptr);
    std::shared_ptr<X509_STORE> store(X509_STORE_new(), X509_STORE_free);
    ERR_clear_error();  // of a damaged file
    const std::string digest = DigestLine(content);
    std::string first;
    if (!entries || !store || digest.empty() || !AddEntries(store.get(), entries.get())) {
        return std::make_shared<const Authorities>(Authorities{std::move(content), nullptr});
    }
    if (ReadCount(entries.get(), first) < CertificateCount(content)) {
        return nullptr;
    }
    return std::make_shared<const Authorities>(first.empty() ? Authorities{std::move(content), nullptr}
                                                             : Authorities{digest + first, std::move(store)});
}

// Read here and not by libcurl, which opens paths in the ANSI code page.
std::shared_ptr<const Authorities> ReadAuthorities(const FileStamp& stamp) {
    if (stamp.size > kMaxPemBytes) {
        return nullptr;
    }
    std::ifstream file(fs::path(stamp.path), std::ios::binary);
    std::string content(static_cast<std::size_t>(stamp.size), '\0');
    const bool whole = file.is_open() && file.read(content.data(), static_cast<std::streamsize>(content.size()));
    return whole && CertificateCount(content) > 0 ? Prepared(std::move(content)) : nullptr;
}

std::shared_ptr<const Authorities> Known(const FileStamp& stamp) {
    const std::lock_guard<std::mutex> hold(Shared().lock);
    for (const ReadFile& file : Shared().files) {
        if (file.stamp == stamp) {
            return file.authorities;
        }
    }
    return nullptr;
}

void Remember(const ReadFile& file) {
    const std::lock_guard<std::mutex> hold(Shared().lock);
    std::vector<ReadFile>& files = Shared().files;
    const auto sameFile = [&file](const ReadFile& former) { return former.stamp.path == file.stamp.path; };
    files.erase(std::remove_if(files.begin(), files.end(), sameFile), files.end());
    if (files.size() == kMaxFiles) {
        files.erase(files.begin());
    }
    files.push_back(file);
}

}  // namespace

void SetDefaultAuthoritiesPath(const std::wstring& path) {
    const std::lock_guard<std::mutex> hold(Shared().lock);
    Shared().defaultPath = path;
}

std::shared_ptr<const Authorities> AuthoritiesFor(const std::wstring& ownPath) {
    FileStamp stamp{ownPath, 0, 0};
    if (stamp.path.empty()) {
        const std::lock_guard<std::mutex> hold(Shared().lock);
        stamp.path = Shared().defaultPath;
    }
    if (stamp.path.empty()) {
        return Shared().none;
    }
    if (!Look(stamp)) {
        return nullptr;
    }
    if (auto known = Known(stamp)) {
        return known;
    }
    const std::lock_guard<std::mutex> one(Shared().reading);
    if (auto known = Known(stamp)) {
        return known;
    }
    std::shared_ptr<const Authorities> authorities = ReadAuthorities(stamp);
    if (authorities && authorities->certificates) {
        Remember({stamp, authorities});
    }
    return authorities;
}

}  // namespace suite
