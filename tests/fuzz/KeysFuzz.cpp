// The key exchange: what the key server sends, in its shapes or in none.

#include <ParamStore.h>
#include <openssl/err.h>

#include <algorithm>

#include "FuzzTarget.h"
#include "KeyServerPeer.h"
#include "SuiteStandIns.h"
#include "UserSyncKeyService.h"
#include "synckey/AesGcm.h"
#include "synckey/Sha256Hex.h"
#include "synckey/WrapTempKey.h"

class UserSyncKeyServiceAccess {
public:
    static bool List(const Bytes& temporaryKey, const std::wstring& dataType) {
        return UserSyncKeyService().getUserKeyList(L"token", L"version", temporaryKey, dataType);
    }
};

namespace {

const Bytes kTemporaryKey(16, 0x11);
const Bytes kShortKey(16, 0x22);
const Bytes kLongKey(32, 0x33);

template <std::size_t Size, std::size_t Characters>
void RequireSound(const std::uint8_t (&key)[Size], const wchar_t (&uuid)[Characters]) {
    const auto known = [](std::uint8_t byte) { return byte == 0 || byte == kShortKey[0] || byte == kLongKey[0]; };
    Require(std::all_of(key, key + Size, known), "a key was stored that nobody sent");
    Require(std::find(uuid, uuid + Characters, L'\0') != uuid + Characters, "a uuid without its end");
}

// A list's text, in which "@k" and "@K" stand for the wrapped keys, "@d" and "@D" for their digests; "@l" and "@L" for
// a key that is too long, "@z" for the digest of what a failed unwrapping leaves.
void List(FuzzInput input) {
    static const auto digest = [](const Bytes& key) { return FromHex(userauth::Sha256Hex(key)); };
    static const std::pair<const char*, std::string> kMarks[] = {
        {"@k", KeyServerPeer::Wrap(kTemporaryKey, kShortKey)},
        {"@K", KeyServerPeer::Wrap(kTemporaryKey, kLongKey)},
        {"@d", KeyServerPeer::Wrap(kTemporaryKey, digest(kShortKey))},
        {"@D", KeyServerPeer::Wrap(kTemporaryKey, digest(kLongKey))},
        {"@l", KeyServerPeer::Wrap(kTemporaryKey, Bytes(64, 0x33))},
        {"@L", KeyServerPeer::Wrap(kTemporaryKey, digest(Bytes(64, 0x33)))},
        {"@z", KeyServerPeer::Wrap(kTemporaryKey, digest(Bytes(1)))}};
    const std::wstring dataType = input.Choice(2) == 0 ? kSyncDriveDataType : kCloudPhotoDataType;
    for (const auto& [mark, wrapped] : kMarks) {
        input.text = Expanded(input.text, mark, wrapped);
    }
    st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    record = {};
    Recording() = SuiteRecording();
    Recording().replies = {{200, input.text, {}}};
    UserSyncKeyServiceAccess::List(kTemporaryKey, dataType);
    RequireSound(record.driveKey1, record.driveKeyUuid1);
    RequireSound(record.driveKey3, record.driveKeyUuid3);
    RequireSound(record.photoKey1, record.photoKeyUuid1);
    RequireSound(record.photoKey3, record.photoKeyUuid3);
}

// True when the bytes were changed.
bool Disturb(std::string& bytes, const std::string& by) {
    const std::string before = bytes;
    std::transform(by.begin(), by.begin() + static_cast<std::ptrdiff_t>(std::min(by.size(), bytes.size())),
                   bytes.begin(), bytes.begin(), [](char left, char right) { return static_cast<char>(left ^ right); });
    return bytes != before;
}

// A server key as text, as bytes, or as the peer's own, disturbed by the text.
void ServerKey(FuzzInput input) {
    static const KeyServerPeer peer;
    const std::size_t form = input.Choice(3);
    std::string key = form == 2 ? *sandbox::Base64Decoded(peer.PublicKeyText()) : input.text;
    const bool intact = form == 2 && !Disturb(key, input.text);
    const std::string token = userauth::WrapTempKey(form == 0 ? key : sandbox::Base64Encoded(key), kTemporaryKey);
    Require(token.size() == 185 && token[124] == ':', "a token of another form");
    Require(sandbox::Base64UrlDecoded(token.substr(0, 124)) && sandbox::Base64UrlDecoded(token.substr(125)),
            "a token that is no base64");
    Require(!intact || peer.UnwrapTemporaryKey(token) == kTemporaryKey, "the peer cannot unwrap the key");
    ERR_clear_error();  // what stays for the thread would look like a leak of this input
}

// A blob of any bytes, or one that was wrapped, disturbed by the text.
void Wrapped(FuzzInput input) {
    const bool sealed = input.Choice(2) == 0;
    const Bytes& key = input.Choice(2) == 0 ? kShortKey : kLongKey;
    std::string blob = sealed ? *sandbox::Base64Decoded(KeyServerPeer::Wrap(kTemporaryKey, key)) : input.text;
    const bool intact = sealed && !Disturb(blob, input.text);
    const Bytes plain = userauth::AesGcmDecrypt({blob.begin(), blob.end()}, sealed ? kTemporaryKey : key);
    Require(plain == (intact ? key : Bytes{0}), "a blob was unwrapped, or was not");
}

const FuzzTarget kTargets[] = {{"keys-list", List}, {"keys-server", ServerKey}, {"keys-wrapped", Wrapped}};

}  // namespace
