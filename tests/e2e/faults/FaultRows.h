#pragma once

#include <optional>
#include <string>
#include <vector>

#include "RawServer.h"

// One way in which a server, a proxy or the way to them fails. In a reply "<b>" stands for the body that the operation
// wants, "<n>" for its length, "<x>" for the same in hexadecimal digits, "<d>" and "<m>" for the body under "deflate"
// and its length, "<e>" and "<y>" for that but its first byte, and its length in hexadecimal digits. In URLs "<server>"
// is the server of the row, "<other>" one that answers well, "<nobody>" a port where nobody listens.
struct Fault {
    Fault(std::string faultName, int exchangeCode, std::string replyBytes = "",
          RawReply::Then afterwards = RawReply::Then::kKeep, std::string lastPart = "")
        : name(std::move(faultName)),
          code(exchangeCode),
          reply{std::move(replyBytes), afterwards, std::move(lastPart)},
          postCode(exchangeCode),
          downloadCode(exchangeCode) {}

    // A 200 that brings another body than the wanted one.
    Fault Brings(const std::string& body) const { return With(&Fault::other, std::optional<std::string>(body)); }
    Fault ForPosts(int of) const { return With(&Fault::postCode, of); }
    Fault ForDownloads(int of) const { return With(&Fault::downloadCode, of); }  // 0: they do not meet it
    // Too long for the operations whose reply text has room for 40,959 bytes; only they meet it.
    Fault ForShortTexts() const { return With(&Fault::isForShortTexts, true); }
    Fault At(const std::string& url) const { return With(&Fault::base, url); }
    Fault Through(const std::string& url) const { return With(&Fault::proxy, url); }

    // To a platform of the scheme that only the server of the row, as the proxy, knows.
    Fault By(const std::string& scheme) const { return At(scheme + "://platform.invalid").Through("<server>"); }

    // Not one server's reply, but the way to every server.
    bool IsOfTheWay() const { return base != "<server>" && (reply.bytes.empty() || base[4] == 's'); }

    template <typename Member, typename Value>
    Fault With(Member member, const Value& value) const {
        Fault copy = *this;
        copy.*member = value;
        return copy;
    }

    std::string name;
    int code;  // of the exchange: a status or a transport code
    RawReply reply;
    int postCode;
    int downloadCode;
    std::optional<std::string> other = {};
    bool isForShortTexts = false;
    std::string base = "<server>";  // of the URLs that the operation asks
    std::string proxy = {};
};

// All of them, the controls first.
std::vector<Fault> FaultRows();

// Good replies of which no part may count: one with a length; an interim one and then chunks under "deflate".
std::vector<Fault> CutRows();

// The reply up to each stage at which a server may fall silent, and a head of which a byte comes now and then.
std::vector<Fault> StallRows();
