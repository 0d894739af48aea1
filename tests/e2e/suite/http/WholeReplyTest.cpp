#include <gtest/gtest.h>

#include <chrono>

#include "HttpCall.h"
#include "SandboxSession.h"
#include "http/TransferPace.h"

namespace {

// libcurl once kept a pointer into freed memory for such a line, and the next replies wrote through it.
TEST(HttpReply, FiftyThatBeginWithABlankLeaveTheirHandleSound) {
    for (const RequestForm form : kRequestForms) {
        std::vector<RawReply> script(50, {"HTTP/1.1 200 OK\r\n Content-Type: a\r\nContent-Length: 2\r\n\r\nok"});
        script.push_back(OkReply("next"));
        RawServer server(script);
        std::string last;
        for (std::size_t i = 0; i < script.size(); ++i) {
            HttpCall call(server.Url());
            EXPECT_EQ(call.SendAs(form), 200);
            last = call.BodyOf(form);
        }
        EXPECT_EQ(last, "next");
        EXPECT_EQ(server.AcceptCount(), 1);
    }
}

TEST(HttpReply, ADownloadKeepsUpItsPace) {
    using std::chrono::seconds;
    suite::TransferPace pace;
    const auto accept = [&](int second, std::uint64_t size) {
        return pace.Accept(suite::TransferPace::Time(seconds(second)), size);
    };
    EXPECT_TRUE(accept(0, 1) && accept(59, 1) && accept(60, 61438)) << "60 KiB in a minute";
    pace.Excuse(seconds(10));
    EXPECT_TRUE(accept(129, 61439)) << "the handler took ten seconds";
    EXPECT_FALSE(accept(130, 0)) << "a byte too few";
}

}  // namespace

TEST_F(SandboxSession, OverHttpsABodyNeedsALengthOrChunks) {
    CurlHttpLibContext::SetDefaultCertPath((m_folder / "authority.pem").wstring());
    for (const RequestForm form : kRequestForms) {
        for (const std::string& base : {m_sandbox.m_http, m_sandbox.m_https}) {
            m_sandbox.Fault("/routing/v1/remote", R"({"unframed":true})");
            HttpCall call(Wide(base + "/routing/v1/remote"));
            EXPECT_EQ(call.SendAs(form), base == m_sandbox.m_http ? 200 : int{kHttpConnectionBroken});
        }
    }
}
