// Before windows.h, which brings an older sockets header.
#include "TlsPeer.h"

#include "Examination.h"
#include "Folder.h"
#include "HttpCall.h"

namespace conformance {

namespace {

const TestIdentity::Extensions kAuthority = {{NID_basic_constraints, "critical,CA:TRUE"},
                                             {NID_key_usage, "critical,keyCertSign,cRLSign"}};

TestIdentity::Extensions ForName(const std::string& name) {
    return {
        {NID_basic_constraints, "critical,CA:FALSE"}, {NID_ext_key_usage, "serverAuth"}, {NID_subject_alt_name, name}};
}

// What the library said of the last request.
std::wstring g_said;

// An authority in a file, and what is asked of servers that it signed.
struct Trust {
    Trust() {
        WriteText(Authority(), authority.Pem());
        WriteText(folder / L"other.pem", other.Pem());
    }
    std::filesystem::path Authority() const { return folder / L"authority.pem"; }
    static int Ask(const TlsPeer& peer, const std::filesystem::path& certificates, const wchar_t* path = L"/") {
        HttpCall call(L"https://127.0.0.1:" + std::to_wstring(peer.port) + path);
        call.strategy.SetCertPath(certificates.wstring());
        const int code = call.Send(20);
        g_said = call.errors.empty() ? L"" : call.errors[0];
        return code;
    }
    TestIdentity Signed(const std::string& name, long beginsInSeconds = -60, long endsInSeconds = 3600) const {
        return TestIdentity("conformance", ForName(name), &authority, beginsInSeconds, endsInSeconds);
    }

    const Folder folder{L"trust"};
    const TestIdentity authority{"Conformance Authority", kAuthority};
    const TestIdentity other{"Another Authority", kAuthority};
};

void ExamineCertificates(Examination& examination) {
    const struct {
        const char* name;
        const char* subject;
        long beginsInSeconds;
        long endsInSeconds;
        const wchar_t* file;
        int code;
    } rows[] = {
        {"the right one", "IP:127.0.0.1", -60, 3600, L"authority.pem", 200},
        {"of another authority", "IP:127.0.0.1", -60, 3600, L"other.pem", kHttpCertificateUntrusted},
        {"of an authority that Windows does not know, without a file", "IP:127.0.0.1", -60, 3600, L"",
         kHttpCertificateUntrusted},
        {"for another host", "DNS:wrong.example", -60, 3600, L"authority.pem", kHttpCertificateWrongName},
        {"expired", "IP:127.0.0.1", -7200, -3600, L"authority.pem", kHttpCertificateUntrusted},
        {"not yet valid", "IP:127.0.0.1", 3600, 7200, L"authority.pem", kHttpCertificateUntrusted},
        {"the file is missing", "IP:127.0.0.1", -60, 3600, L"absent.pem", kHttpCertificateFileInvalid},
        {"the file has none", "IP:127.0.0.1", -60, 3600, L"empty.pem", kHttpCertificateFileInvalid},
        {"one in the file is damaged", "IP:127.0.0.1", -60, 3600, L"damaged.pem", kHttpCertificateFileInvalid},
    };
    for (const auto& row : rows) {
        examination.Point(std::string("a certificate: ") + row.name, [&row] {
            const Trust trust;
            WriteText(trust.folder / L"empty.pem", "no certificate\n");
            WriteText(trust.folder / L"damaged.pem",
                      TextOf(trust.Authority()) + "-----BEGIN CERTIFICATE-----\nMIIB\n-----END CERTIFICATE-----\n");
            const TlsPeer peer(trust.Signed(row.subject, row.beginsInSeconds, row.endsInSeconds));
            const std::wstring file = row.file;
            RequireEqual(Trust::Ask(peer, file.empty() ? file : (trust.folder / file).wstring()), row.code, "the code");
        });
    }
    examination.Point("a certificate: a common name alone names no host", [] {
        const Trust trust;
        const TestIdentity::Extensions none = {{NID_basic_constraints, "critical,CA:FALSE"}};
        const TlsPeer peer(TestIdentity("127.0.0.1", none, &trust.authority));
        RequireEqual(Trust::Ask(peer, trust.Authority()), int{kHttpCertificateWrongName}, "the code");
    });
}

void ExamineDefaults(Examination& examination) {
    examination.Point("SetDefaultCertPath counts for requests that name no file, and can be taken back", [] {
        const Trust trust;
        const TlsPeer peer(trust.Signed("IP:127.0.0.1"));
        CurlHttpLibContext::SetDefaultCertPath((trust.folder / L"other.pem").wstring());
        RequireEqual(Trust::Ask(peer, {}), int{kHttpCertificateUntrusted}, "the code with another authority");
        CurlHttpLibContext::SetDefaultCertPath(trust.Authority().wstring());
        const int code = Trust::Ask(peer, {});
        CurlHttpLibContext::SetDefaultCertPath(L"");
        RequireEqual(code, 200, "the code with the right one");
        const TlsPeer later(trust.Signed("IP:127.0.0.1"));
        RequireEqual(Trust::Ask(later, {}), int{kHttpCertificateUntrusted}, "the code after it was taken back");
    });
    examination.Point("SSL_CERT_FILE adds no authority", [] {
        const Trust trust;
        const TlsPeer peer(trust.Signed("IP:127.0.0.1"));
        _wputenv_s(L"SSL_CERT_FILE", trust.Authority().c_str());
        const int code = Trust::Ask(peer, {});
        _wputenv_s(L"SSL_CERT_FILE", L"");
        RequireEqual(code, int{kHttpCertificateUntrusted}, "the code");
    });
}

void ExamineTls(Examination& examination) {
    examination.Point("TLS below 1.2 is refused", [] {
        const Trust trust;
        const TlsPeer peer(trust.Signed("IP:127.0.0.1"));
        SSL_CTX_set_security_level(peer.server.ssl_context(), 0);  // which has nothing below 1.2 otherwise
        SSL_CTX_set_min_proto_version(peer.server.ssl_context(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(peer.server.ssl_context(), TLS1_1_VERSION);
        RequireEqual(Trust::Ask(peer, trust.Authority()), int{kHttpTlsFailed}, "the code");
    });
    examination.Point("a redirect: from https to http", [] {
        const Trust trust;
        RawServer plain({OkReply()});
        TlsPeer peer(trust.Signed("IP:127.0.0.1"));
        const std::wstring target = plain.Url();
        peer.server.Get("/moved",
                        [location = std::string(target.begin(), target.end())](
                            const httplib::Request&, httplib::Response& reply) { reply.set_redirect(location); });
        RequireEqual(Trust::Ask(peer, trust.Authority(), L"/moved"), int{kHttpRedirectRefused}, "the code");
        RequireEqual(plain.AcceptCount(), 0, "the number of plain connections");
    });
    examination.Point("over https a body needs a length or chunks", [] {
        const Trust trust;
        TlsPeer peer(trust.Signed("IP:127.0.0.1"));
        peer.server.Get("/unframed", [](const httplib::Request&, httplib::Response& reply) {
            reply.set_content_provider("text/plain", [](std::size_t, httplib::DataSink& sink) {
                sink.write("ok", 2);
                sink.done();
                return true;
            });
        });
        RequireEqual(Trust::Ask(peer, trust.Authority(), L"/unframed"), int{kHttpConnectionBroken}, "the code");
    });
}

}  // namespace

void ExamineHttpTrust(Examination& examination) {
    ExamineCertificates(examination);
    ExamineDefaults(examination);
    ExamineTls(examination);
}

}  // namespace conformance
