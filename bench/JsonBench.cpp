#include <json/reader.h>
#include <json/value.h>

#include <memory>

#include "Subjects.h"
#include "core/JsonText.h"
#include "core/TextEncoding.h"
#include "request/Reply.h"

namespace bench {
namespace {

const std::string kTokenReply =
    R"({"accessToken":"DQEBAPnlqMWQWZ9yLXRoZS1iZW5jaC1hY2Nlc3MtdG9rZW4tMTIzNDU2Nzg5MGFiY2RlZmdoaWprbG1ub3A=",)"
    R"("refreshToken":"DAEBANvlq9yLXRoZS1iZW5jaC1yZWZyZXNoLXRva2VuLTEyMzQ1Njc4OTBhYmNkZWZnaGlqa2xtbm9wcXI=",)"
    R"("registerCountryCode":"DE","expires":3600,"oauthHttpStatusCode":200,"oauthSubErrorCode":0,)"
    R"("result":{"code":"0","desc":"success"}})";

std::string Join(int count, const std::string& item, const std::string& head, const std::string& tail) {
    std::string text = head;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : ",") + item;
    }
    return text + tail;
}

std::string KeyList() {
    const std::string key = std::string(R"({"keyType":1,"encryptedKey":")") + std::string(60, 'Q') +
                            R"(","keyUuid":"0123456789abcdef0123456789abcdef","keySHA256":")" + std::string(80, 'Q') +
                            "\"}";
    return Join(static_cast<int>(40000 / (key.size() + 1)), key, R"({"keys":[)", "]}");
}

std::string Devices(int count) {
    return Join(count,
                R"({"aliasName":"Work laptop","devDisplayName":"NimbaBook 14","deviceCategory":"PC",)"
                R"("deviceId":"0123456789abcdef0123456789abcdef","deviceType":"6",)"
                R"("lastUpdateTime":"2026-11-01 12:00:00","opDesc":"sign-in"})",
                R"({"opRecordList":[)", "]}");
}

Json::Value Parsed(const std::string& text) {
    static const Json::CharReaderBuilder builder;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    reader->parse(text.data(), text.data() + text.size(), &root, nullptr);
    return root;
}

// What the code exchange reads.
std::size_t ReadTokens(const std::string& text) {
    const userauth::Reply reply(text);
    const userauth::Reply result = reply.Member("result");
    return reply.Text("accessToken").size() + reply.Text("refreshToken").size() +
           reply.Text("registerCountryCode").size() + static_cast<std::size_t>(reply.Integer("expires")) +
           static_cast<std::size_t>(reply.Integer("oauthHttpStatusCode")) +
           static_cast<std::size_t>(reply.Integer("oauthSubErrorCode")) + result.StyledText("code").size() +
           result.StyledText("desc").size();
}

// What the login-device history reads.
std::size_t ReadDevices(const std::string& text) {
    std::size_t units = 0;
    for (const userauth::Reply& entry : userauth::Reply(text).Elements("opRecordList")) {
        for (const char* name :
             {"aliasName", "devDisplayName", "deviceCategory", "deviceId", "lastUpdateTime", "opDesc"}) {
            units += userauth::MultiByteToWide(entry.Text(name), userauth::kUtf8CodePage).size();
        }
        units += static_cast<std::size_t>(entry.ConvertedInteger("deviceType").value_or(0));
    }
    return units;
}

Json::Value ParseKeyList(const std::string& text) {
    Json::Value root;
    userauth::ParseJsonText(text, root);
    return root;
}

}  // namespace

void BenchJson(Report& report) {
    report.Cpu(
        "token reply", AtMost(1.6), [] { return ReadTokens(kTokenReply); }, [] { return Parsed(kTokenReply); });
    const std::string keys = KeyList();
    report.Cpu(
        "key list of 40 KB", AtMost(1.15), [=] { return ParseKeyList(keys); }, [=] { return Parsed(keys); });
    const std::string devices = Devices(190);
    report.Cpu(
        "190 devices", AtMost(1.45), [=] { return ReadDevices(devices); }, [=] { return Parsed(devices); });
    for (const int factor : {10, 100}) {
        const std::string many = Devices(2 * factor);
        const std::string few = Devices(2);  // a reply of 200 is the largest that an operation reads
        report.Growth(
            "growth: devices, x" + std::to_string(factor), factor, [=] { return ReadDevices(many); },
            [=] { return ReadDevices(few); });
    }
}

}  // namespace bench
