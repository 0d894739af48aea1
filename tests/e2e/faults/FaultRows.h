#pragma once

#include <optional>
#include <string>
#include <vector>

#include "RawServer.h"

// One way in which a server, a proxy or the way to them fails an operation. In texts "|" is CRLF and, of the body that
// the operation wants: "<b>" itself, "<n>" its length, "<l>" the header line of that, "<x>" the length in hexadecimal
// digits, "<k>" it as a chunk; "<d>" and "<m>" the body under "deflate" and its length, "<e>" that without its first
// byte, "<y>" the length of that in hexadecimal digits. "<ok>" is the status line of a 200, "<c>" the end of a head
// before chunks. Of URLs "<server>" is the row's server, "<other>" one that answers well, "<nobody>" one that is gone.
struct Fault {
    Fault Brings(const char* body) const { return With(&Fault::other, std::optional<std::string>(body)); }
    Fault ForPosts(int special) const { return With(&Fault::postCode, special); }
    Fault ForDownloads(int special) const { return With(&Fault::downloadCode, special); }
    Fault NotForDownloads() const { return With(&Fault::hasTextLimit, true); }
    Fault At(const char* base, const char* by = "") const { return With(&Fault::url, base).With(&Fault::proxy, by); }
    // To a platform that only the server of the row, as the proxy, knows.
    Fault ToHttp() const { return At("http://platform.invalid", "<server>"); }
    Fault ToHttps() const { return At("https://platform.invalid", "<server>"); }

    template <typename Member, typename Value>
    Fault With(Member member, const Value& value) const {
        Fault copy = *this;
        copy.*member = value;
        return copy;
    }

    std::string name;
    int code;  // of the exchange: a status or a transport code
    std::string bytes = {};
    RawReply::Then then = RawReply::Then::kKeep;
    std::string last = {};
    std::optional<std::string> other = {};  // body of a 200 that is not the wanted one
    int postCode = 0;                       // 0: as the code
    int downloadCode = 0;
    bool hasTextLimit = false;  // of the 16 MiB of a text
    bool hasRoomLimit = false;  // of the 40,959 bytes that most operations have room for
    std::string url = "<server>";
    std::string proxy = {};
};

// All of them, the controls first.
std::vector<Fault> FaultRows();
// Good replies of which no part may count.
std::vector<Fault> CutRows();
// The reply up to each stage at which a server may fall silent, and a head of which a byte comes now and then.
std::vector<Fault> StallRows();
