// The key exchange: what the key server sends, in its shapes or in none.

#include <ParamStore.h>

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

std::string WrappedDigest(const Bytes& key) {
    return KeyServerPeer::Wrap(kTemporaryKey, FromHex(userauth::Sha256Hex(key)));
}

template <std::size_t Size, std::size_t Characters>
void RequireSound(const std::uint8_t (&key)[Size], const wchar_t (&uuid)[Characters]) {
    const auto known = [](std::uint8_t byte) { return byte == 0 || byte == kShortKey[0] || byte == kLongKey[0]; };
    Require(std::all_of(key, key + Size, known), "a key was stored that nobody sent");
    Require(std::find(uuid, uuid + Characters, L'\0') != uuid + Characters, "a uuid without its end");
}

// A list's text, in which "@k" and "@K" stand for the wrapped keys, "@d" and "@D" for their digests.
void List(FuzzInput input) {
    static const std::string shortKey = KeyServerPeer::Wrap(kTemporaryKey, kShortKey);
    static const std::string longKey = KeyServerPeer::Wrap(kTemporaryKey, kLongKey);
    static const std::string shortDigest = WrappedDigest(kShortKey);
    static const std::string longDigest = WrappedDigest(kLongKey);
    const std::wstring dataType = input.Choice(2) == 0 ? kSyncDriveDataType : kCloudPhotoDataType;
    std::string text = Expanded(Expanded(input.Text(), "@k", shortKey), "@K", longKey);
    text = Expanded(Expanded(text, "@d", shortDigest), "@D", longDigest);
    st_UserInfo& record = GlobalParamWrapper::GetInstance()->GetUserInfo();
    record = {};
    Recording() = SuiteRecording();
    Recording().replies = {{200, text, {}}};
    UserSyncKeyServiceAccess::List(kTemporaryKey, dataType);
    RequireSound(record.driveKey1, record.driveKeyUuid1);
    RequireSound(record.driveKey3, record.driveKeyUuid3);
    RequireSound(record.photoKey1, record.photoKeyUuid1);
    RequireSound(record.photoKey3, record.photoKeyUuid3);
}

// True when the bytes were changed.
bool Disturb(std::string& bytes, const std::string& by) {
    const std::string before = bytes;
    for (std::size_t at = 0; at < std::min(bytes.size(), by.size()); ++at) {
        bytes[at] = static_cast<char>(bytes[at] ^ by[at]);
    }
    return bytes != before;
}

// A server key as text, as bytes, or as the peer's own, disturbed by the text.
void ServerKey(FuzzInput input) {
    static const KeyServerPeer peer;
    const std::size_t form = input.Choice(3);
    std::string key = form == 2 ? *sandbox::Base64Decoded(peer.PublicKeyText()) : input.Text();
    const bool intact = form == 2 && !Disturb(key, input.Text());
    const std::string token = userauth::WrapTempKey(form == 0 ? key : sandbox::Base64Encoded(key), kTemporaryKey);
    Require(token.size() == 185 && token[124] == ':', "a token of another form");
    Require(sandbox::Base64UrlDecoded(token.substr(0, 124)).has_value(), "a client key that is no base64");
    Require(sandbox::Base64UrlDecoded(token.substr(125)).has_value(), "a wrapped key that is no base64");
    Require(!intact || peer.UnwrapTemporaryKey(token) == kTemporaryKey, "the peer cannot unwrap the key");
}

// A blob of any bytes, or one that was wrapped, disturbed by the text.
void Wrapped(FuzzInput input) {
    const Bytes failed = {0};
    const std::size_t form = input.Choice(3);
    const Bytes& key = form == 1 ? kLongKey : kShortKey;
    std::string blob = form == 0 ? *sandbox::Base64Decoded(KeyServerPeer::Wrap(kTemporaryKey, key)) : input.Text();
    const bool intact = form == 0 && !Disturb(blob, input.Text());
    const Bytes plain = userauth::AesGcmDecrypt({blob.begin(), blob.end()}, form == 0 ? kTemporaryKey : key);
    Require(plain == (intact ? key : failed), "a blob was unwrapped, or was not");
    const Bytes sealed = userauth::AesGcmEncrypt({blob.begin(), blob.end()}, kLongKey, Bytes(12, 1));
    Require(sealed.size() == (blob.empty() ? 0 : 44), "a wrapped key of another length");
    Require(blob.size() < 16 || userauth::AesGcmDecrypt(sealed, kLongKey) == Bytes(blob.begin(), blob.begin() + 16),
            "a wrapped key does not unwrap");
}

const FuzzTarget kTargets[] = {{"keys-list", List}, {"keys-server", ServerKey}, {"keys-wrapped", Wrapped}};

}  // namespace
