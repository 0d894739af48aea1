#include <HttpLib.h>
#include <json/reader.h>
#include <json/value.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "Authorities.h"
#include "BareCurl.h"
#include "Platform.h"
#include "ServiceAccess.h"
#include "Subjects.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRequestsOfThread = 40;

std::string PathAndQuery() {
    const std::wstring token = AccessToken();
    return "/gw?access_token=" + std::string(token.begin(), token.end()) +
           "&nsp_fmt=JSON&nsp_svc=zorvan.oauth2.user.getTokenInfo&open_id=OPENID";
}

void Parse(const std::string& text) {
    static const Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    Require(reader->parse(text.data(), text.data() + text.size(), &root, nullptr) && root.isObject(), "parsing");
}

std::unique_ptr<BareCurl> BareUserId(const LoopbackServer& server, const std::string& authorities) {
    auto bare = std::make_unique<BareCurl>(server.Origin() + PathAndQuery());
    bare->SetAuthorities(authorities);
    return bare;
}

std::unique_ptr<BareCurl> BareTokens(const LoopbackServer& server, const std::string& authorities) {
    const std::wstring traceId = Service().GetTraceID(BaseCmd::kRequestAccessToken);
    const std::string narrow(traceId.begin(), traceId.end());
    auto bare = std::make_unique<BareCurl>(server.Origin() + "/pcclient/getAccessTokenByCode?traceId=" + narrow);
    bare->SetAuthorities(authorities);
    bare->SetHeaders(Service().BuildHeaders(HeadType::kCodeExchange, traceId));
    bare->SetBody(R"({"authorizationCode":"code-of-the-bench","traceId":")" + narrow + "\"}\n");
    return bare;
}

void AskUserId() {
    Require(Service().RequestUserID(), "RequestUserID");
}
void AskTokens() {
    Require(Service().RequestAT({}, "code-of-the-bench"), "RequestAT");
}

void BenchOperations(Report& report, const LoopbackServer& server, const std::string& over,
                     const std::string& authorities, Target userId, Target tokens) {
    UsePlatform(server.Origin());
    Service().SetCurrentAT(AccessToken());
    const std::unique_ptr<BareCurl> bareUserId = BareUserId(server, authorities);
    report.Calls("RequestUserID over " + over, userId, AskUserId, [&] { Parse(bareUserId->Perform()); });
    const std::unique_ptr<BareCurl> bareTokens = BareTokens(server, authorities);
    report.Calls("RequestAT over " + over, tokens, AskTokens, [&] { Parse(bareTokens->Perform()); });
}

// Seconds until so many threads have sent their requests.
template <typename MakeRequest>
double SecondsOfThreads(int count, MakeRequest makeRequest) {
    return SecondsOf([&] {
        std::vector<std::thread> threads;
        threads.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([i, &makeRequest] {
                const auto request = makeRequest(i);
                for (int n = 0; n < kRequestsOfThread; ++n) {
                    request();
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    });
}

void BenchThreads(Report& report, const LoopbackServer& server, int count) {
    const std::string what = "throughput of " + std::to_string(count) + " threads over http";
    if (!report.Wants(what)) {
        return;
    }
    std::vector<std::unique_ptr<BareCurl>> handles;
    handles.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        handles.push_back(BareUserId(server, ""));
    }
    int made = 0;
    bool warm = false;
    const auto ours = [&] {
        const int before = server.Connections();
        const double seconds = SecondsOfThreads(count, [](int) { return AskUserId; });
        made += warm ? server.Connections() - before : 0;
        return seconds;
    };
    const auto bare = [&] {
        return SecondsOfThreads(count, [&](int i) { return [&handles, i] { Parse(handles[i]->Perform()); }; });
    };
    ours();
    bare();
    warm = true;
    report.Timed(what, AtLeast(0.9), ours, bare, true);
    report.Figure("new connections meanwhile, " + std::to_string(count) + " threads", AtMost(0), "", made);
}

std::string Fields(int count) {
    std::string lines;
    for (int i = 0; i < count; ++i) {
        lines += "x-field-" + std::to_string(i * 7919 % 10007) + ": value of a field\r\n";
    }
    return lines;
}

void BenchFields(Report& report, const LoopbackServer& server) {
    const auto ask = [&server](const std::string& path) {
        const std::string origin = server.Origin();
        std::map<std::string, std::string> fields;
        const std::wstring url = std::wstring(origin.begin(), origin.end()) + std::wstring(path.begin(), path.end());
        Require(!Service().GetRtqRemoteInfo(url, fields).empty() && fields.size() > 5, "GetRtqRemoteInfo");
    };
    BareCurl bare(server.Origin() + "/fields-990");
    bare.CollectFields();
    report.Calls(
        "reply of 990 header fields", AtMost(2), [&] { ask("/fields-990"); }, [&] { bare.Perform(); });
    report.Growth(
        "growth: header fields, x10", 10,
        [&] {
            ask("/fields-990");
            return 0;
        },
        [&] {
            ask("/fields-99");
            return 0;
        });
}

}  // namespace

void BenchRequests(Report& report) {
    static LoopbackServer http(LoopbackServer::Scheme::kHttp);
    static LoopbackServer https(LoopbackServer::Scheme::kHttps);
    AnswerAsPlatform(http);
    AnswerAsPlatform(https);
    http.Answer("/fields-99", {"ok", Fields(99)});
    http.Answer("/fields-990", {"ok", Fields(990)});
    BenchOperations(report, http, "http", "", AtMost(1.1), AtMost(1.2));
    BenchFields(report, http);

    const fs::path authority = WriteText("-authority.pem", https.AuthorityPem());
    CurlHttpLibContext::SetDefaultCertPath(authority.wstring());
    BenchOperations(report, https, "https", authority.string(), AtMost(1.1), AtMost(1.25));
    report.Calls(
        "fresh bare handles over https against RequestUserID", AtLeast(4),
        [&] { Parse(BareUserId(https, authority.string())->Perform()); }, AskUserId);

    // A server of its own: libcurl looks at every connection that it keeps to a host, those under other authorities
    // too.
    static LoopbackServer bundled(LoopbackServer::Scheme::kHttps);
    AnswerAsPlatform(bundled);
    const fs::path bundle = WriteText("-bundle.pem", Bundle(bundled.AuthorityPem()));
    CurlHttpLibContext::SetDefaultCertPath(bundle.wstring());
    BenchOperations(report, bundled, "https with a bundle of 220 KB", bundle.string(), AtMost(1.12), AtMost(1.25));
    CurlHttpLibContext::SetDefaultCertPath({});
    fs::remove(authority);
    fs::remove(bundle);

    UsePlatform(http.Origin());
    Service().SetCurrentAT(AccessToken());
    BenchThreads(report, http, 16);
    BenchThreads(report, http, 64);
}

}  // namespace bench
