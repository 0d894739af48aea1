#include <ParamStore.h>

#include "SandboxSession.h"

namespace {

class Contacts : public SandboxSession {
protected:
    Contacts() {
        SignInWhole();
        const Json::Value login = m_sandbox.Control("/sandbox/portal-login");
        m_path = login["path"].asString();
        for (const std::string& name : login["cookies"].getMemberNames()) {
            const std::string value = login["cookies"][name].asString();
            m_cookies[{name.begin(), name.end()}] = {value.begin(), value.end()};
        }
    }

    void Serve(const std::string& order) {
        Json::Value value;
        std::istringstream(order) >> value;
        m_sandbox.Control("/sandbox/contacts", value);
    }

    bool Export() { return m_service->ExportContracts(m_sandbox.Url(m_path), m_file.wstring(), m_cookies); }

    std::string m_path;
    std::map<std::wstring, std::wstring> m_cookies;
    std::filesystem::path m_file = m_folder / L"\u0E17.vcf";
};

}  // namespace

TEST_F(Contacts, ArriveDecodedWhateverTheirCoding) {
    for (const char* cards : {"3", "100000"}) {
        std::string plain;
        for (const char* coding : {"identity", "gzip", "deflate", "br"}) {
            for (const char* chunked : {"false", "true"}) {
                Serve(std::string(R"({"cards":)") + cards + R"(,"coding":")" + coding + R"(","chunked":)" + chunked +
                      "}");
                ASSERT_TRUE(Export()) << coding << LogText();
                const std::string text = ReadFile(m_file);
                plain = plain.empty() ? text : plain;
                EXPECT_EQ(text.substr(0, 13), "BEGIN:VCARD\r\n");
                EXPECT_TRUE(text == plain) << coding << " chunked " << chunked << ": " << text.size() << " bytes";
            }
        }
        EXPECT_NE(LogText().find(std::string("NIMBASUITE_CONTACT_EXPORT ") + cards), std::string::npos);
        EXPECT_NE(LogText().find(std::string("\"num\":\"") + cards + "\""), std::string::npos);
    }
}

TEST_F(Contacts, AFailedDownloadLeavesWhatCame) {
    const struct {
        const char* fault;
        std::size_t bytes;
    } rows[] = {{R"({"status":404})", 0}, {R"({"cutAfter":50})", 50}, {R"({"contentLength":100000})", 0}};
    for (const auto& row : rows) {
        WriteFile(m_file, "an earlier export");
        m_sandbox.Fault(m_path, row.fault);
        EXPECT_FALSE(Export()) << row.fault;
        if (row.bytes != 0) {
            EXPECT_EQ(ReadFile(m_file).size(), row.bytes) << row.fault;
        }
        EXPECT_EQ(ReadFile(m_file).find("an earlier"), std::string::npos) << row.fault;
    }
    m_cookies.begin()->second = L"other";
    EXPECT_FALSE(Export());
    EXPECT_EQ(ReadFile(m_file), "") << "the portal refused the cookie, and nothing of its page is kept";
    EXPECT_EQ(LogText().find("NIMBASUITE_CONTACT_EXPORT"), std::string::npos);
}

TEST_F(Contacts, AnUnwritablePathCostsTheFileOnly) {
    m_file = m_folder / "absent" / "contacts.vcf";
    EXPECT_TRUE(Export());
    EXPECT_FALSE(std::filesystem::exists(m_file));
    EXPECT_NE(LogText().find("NIMBASUITE_CONTACT_EXPORT 3"), std::string::npos);
}
