#include <gtest/gtest.h>

#include <chrono>

#include "HttpCases.h"
#include "SandboxSession.h"
#include "http/TransferPace.h"

namespace {

TEST(HttpReply, CountsFromItsLastByteOn) {
    for (const CutCase& row : CutCases()) {
        for (const RequestForm form : {RequestForm::kHeaders, RequestForm::kDownload}) {
            RawServer server(row.script);
            for (std::size_t size = 0; size < row.script.size(); ++size) {
                SCOPED_TRACE(testing::Message()
                             << row.name << ", form " << static_cast<int>(form) << ", byte " << size);
                const bool isWhole = size + 1 == row.script.size();
                HttpCall call(server.Url());
                EXPECT_EQ(call.SendAs(form), isWhole ? 200 : row.code);
                EXPECT_EQ(call.BodyOf(form), isWhole ? kCutText : "");
                EXPECT_TRUE(isWhole || (call.headers.size() <= 1 && call.received.find('.') == std::string::npos));
            }
            EXPECT_EQ(server.Requests().size(), row.script.size());
        }
    }
}

TEST(HttpReply, AmbiguousOrOverlongOnesAreRefusedAndSpoilNoOther) {
    for (const ReplyCase& row : ReplyCases()) {
        for (const RequestForm form : kRequestForms) {
            SCOPED_TRACE(testing::Message() << row.name << ", form " << static_cast<int>(form));
            RawServer server({row.reply, OkReply("next")});
            HttpCall call(server.Url());
            EXPECT_EQ(call.SendAs(form), row.code);
            if (row.code > 0) {
                EXPECT_EQ(call.BodyOf(form), row.body);
            }
            Sleep(row.reply.last.empty() ? 0 : 100);
            HttpCall next(server.Url());
            EXPECT_EQ(next.SendAs(form), 200);
            EXPECT_EQ(next.BodyOf(form), "next");
        }
    }
}

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

TEST(HttpReply, DownloadsAreBounded) {
    for (const DownloadCase& row : DownloadCases()) {
        RawServer server({row.reply});
        HttpCall call(server.Url());
        call.handler.SetMaxSize(5);
        EXPECT_EQ(call.SendAs(RequestForm::kDownload), row.code) << row.name;
        EXPECT_EQ(call.received, row.received) << row.name;
    }
    EXPECT_EQ(FileTransferHandler().MaxSize(), 2147483648U);
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
