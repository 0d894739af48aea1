#include "SandboxSession.h"

namespace {

const char kPath[] = "/contacts/v1/export";

class Contacts : public SandboxSession {
protected:
    Contacts() {
        SignInWhole();
        m_cookies = m_sandbox.PortalCookies();
    }

    bool Export() { return m_service->ExportContracts(m_sandbox.Url(kPath), m_file.wstring(), m_cookies); }

    std::map<std::wstring, std::wstring> m_cookies;
    const std::filesystem::path m_file = m_folder / L"\u0E17.vcf";
};

}  // namespace

TEST_F(Contacts, ArriveDecodedWhateverTheirCoding) {
    const std::pair<std::string, std::string> replies[] = {{"3", "false"}, {"3", "true"}, {"100000", "true"}};
    for (const auto& [cards, chunked] : replies) {
        std::string plain;
        for (const char* coding : {"identity", "gzip", "deflate", "br"}) {
            SCOPED_TRACE(cards + " chunked " + chunked + " " + coding);
            m_sandbox.Control("/sandbox/contacts",
                              R"({"cards":)" + cards + R"(,"chunked":)" + chunked + R"(,"coding":")" + coding + "\"}");
            ASSERT_TRUE(Export()) << LogText();
            const std::string text = ReadFile(m_file);
            plain = plain.empty() ? text : plain;
            EXPECT_EQ(text.substr(0, 13), "BEGIN:VCARD\r\n");
            EXPECT_TRUE(text == plain) << text.size() << " bytes";
        }
        EXPECT_NE(LogText().find("NIMBASUITE_CONTACT_EXPORT " + cards), std::string::npos);
        EXPECT_NE(LogText().find("\"num\":\"" + cards + "\""), std::string::npos);
    }
}

TEST_F(Contacts, ACutDownloadLeavesWhatCame) {
    WriteFile(m_file, "an earlier export");
    m_sandbox.Fault(kPath, R"({"cutAfter":50})");
    EXPECT_FALSE(Export());
    EXPECT_EQ(ReadFile(m_file).size(), 50U);
    EXPECT_EQ(LogText().find("NIMBASUITE_CONTACT_EXPORT"), std::string::npos);
}
