#include <openssl/evp.h>

#include "ServiceAccess.h"
#include "Subjects.h"
#include "core/DeploymentConstants.h"
#include "core/TextEncoding.h"

namespace bench {
namespace {

using HeaderMap = std::map<std::wstring, std::wstring>;

// What the call sites' text allows: ASCII in, ASCII out.
template <typename Text>
void AppendUrlEncoded(std::string& out, const Text& text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (const auto unit : text) {
        const auto byte = static_cast<unsigned char>(unit);
        const bool stays = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                           (byte >= '0' && byte <= '9') || byte == '-' || byte == '_' || byte == '.' || byte == '~';
        if (stays) {
            out += static_cast<char>(byte);
        } else if (byte == ' ') {
            out += '+';
        } else {
            out += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
}

std::string LeastAuthorization(const std::wstring& token) {
    std::string plain = "6::";
    for (const wchar_t unit : std::wstring(userauth::kApplicationId)) {
        plain += static_cast<char>(unit);
    }
    plain += "::";
    AppendUrlEncoded(plain, token);
    std::string text((plain.size() + 2) / 3 * 4 + 1, '\0');
    text.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                                         reinterpret_cast<const unsigned char*>(plain.data()),
                                                         static_cast<int>(plain.size()))));
    return text;
}

}  // namespace

void BenchHeaders(Report& report) {
    const std::wstring token = AccessToken();
    Service().SetCurrentAT(token);
    Service().SetCurrrentUserID(L"2850086000000000001");
    const std::wstring traceId = L"10006_11_1700000000_40318265";
    for (const HeadType type : {HeadType::kAccount, HeadType::kUser, HeadType::kCodeExchange, HeadType::kAccessToken}) {
        const HeaderMap ready = Service().BuildHeaders(type, traceId);
        report.Cpu(
            "BuildHeaders set " + std::to_string(static_cast<int>(type)), AtMost(1.5),
            [=] { return Service().BuildHeaders(type, traceId); },
            [=] {
                HeaderMap headers;
                for (const auto& [name, value] : ready) {
                    headers.emplace(name, value);
                }
                return headers;
            });
    }
    report.Cpu(
        "GetAuthorizationContents", AtMost(1.5), [] { return UserAuthServiceAccess::Authorization(Service()); },
        [token] { return LeastAuthorization(token); });
    report.Cpu(
        "UrlEncode 128", AtMost(1.5), [token] { return userauth::UrlEncode(token); },
        [token] {
            std::string encoded;
            AppendUrlEncoded(encoded, token);
            return std::wstring(encoded.begin(), encoded.end());
        });
    report.Cpu(
        "GetTraceID", {}, [] { return Service().GetTraceID(BaseCmd::kRequestAccessToken); },
        [traceId] { return std::wstring(traceId); });
}

}  // namespace bench
