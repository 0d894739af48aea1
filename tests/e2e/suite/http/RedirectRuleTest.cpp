#include "http/RedirectRule.h"

#include <gtest/gtest.h>

#include "http/UrlText.h"

namespace {

std::string NamesOf(const suite::CheckedRequest& request) {
    std::string names;
    for (const auto& header : request.headers) {
        names += header.first + " ";
    }
    return names;
}

constexpr char kAllNames[] = "Authorization userId Content-Type ACCEPT user-agent ";
constexpr char kPublicNames[] = "Content-Type ACCEPT user-agent ";

// What goes where after a reply with 307, which keeps the method.
TEST(HttpRedirect, WhoIsTheSameParty) {
    enum class Goes { kAll, kNoBody, kNothing };  // kNoBody: a request with a body is refused
    const struct {
        const char* from;
        const char* location;
        const char* url;  // of the next request
        Goes goes;
    } rows[] = {
        {"https://h.example/a/b?c", "d", "https://h.example/a/d", Goes::kAll},
        {"https://h.example/a/b?c", "/d e?f#g", "https://h.example/d%20e?f#g", Goes::kAll},
        {"https://h.example/a/b?c", "//H.Example/d", "https://H.Example/d", Goes::kAll},
        {"https://h.example/a", "HTTPS://h.example:443/d", "https://h.example:443/d", Goes::kAll},
        {"https://h.example:443/a", "https://h.example/d", "https://h.example/d", Goes::kAll},
        {"http://h.example:8080/a", "http://h.example:8080/d", "http://h.example:8080/d", Goes::kAll},
        {"http://h.example/a", "https://h.example/d", "https://h.example/d", Goes::kAll},
        {"http://h.example:80/a", "https://h.example:443/d", "https://h.example:443/d", Goes::kAll},
        {"http://h.example/a", "https://h.example:8443/d", "https://h.example:8443/d", Goes::kNoBody},
        {"http://h.example:8080/a", "https://h.example/d", "https://h.example/d", Goes::kNoBody},
        {"http://h.example:8080/a", "https://h.example:8080/d", "https://h.example:8080/d", Goes::kNoBody},
        {"https://h.example/a", "https://h.example:8443/d", "https://h.example:8443/d", Goes::kNoBody},
        {"https://h.example/a", "https://other.example/d", "https://other.example/d", Goes::kNoBody},
        {"https://h.example/a", "//other.example/d", "https://other.example/d", Goes::kNoBody},
        {"https://h.example/a", "https://h.example.other/d", "https://h.example.other/d", Goes::kNoBody},
        {"https://h.example/a", "https://x.h.example/d", "https://x.h.example/d", Goes::kNoBody},
        {"https://h.example/a", "https://h.example@other.example/d", "https://h.example@other.example/d",
         Goes::kNoBody},
        {"https://h.example/a", "http://h.example/d", "", Goes::kNothing},
        {"https://h.example/a", "HTTP://other.example/d", "", Goes::kNothing},
        {"https://h.example/a", "ftp://h.example/d", "", Goes::kNothing},
        {"https://h.example/a", "mailto:a@h.example", "", Goes::kNothing},
        {"https://h.example/a", "data:text/plain,x", "", Goes::kNothing},
        {"https://h.example/a", "/d\r\nCookie: x", "", Goes::kNothing},
    };
    for (const auto& row : rows) {
        for (const std::string body : {"body", ""}) {
            SCOPED_TRACE(std::string(row.from) + " to " + row.location + (body.empty() ? "" : ", with a body"));
            const suite::CheckedRequest request = {
                row.from,
                *suite::ParseUrl(row.from),
                true,
                {{"Authorization", "1"}, {"userId", "2"}, {"Content-Type", "3"}, {"ACCEPT", "4"}, {"user-agent", "5"}},
                body};
            const auto outcome = suite::FollowRedirect(request, 307, row.location);
            const auto* const next = std::get_if<suite::CheckedRequest>(&outcome);
            ASSERT_EQ(next != nullptr, row.goes == Goes::kAll || (row.goes == Goes::kNoBody && body.empty()));
            if (next != nullptr) {
                EXPECT_EQ(next->url, row.url);
                EXPECT_EQ(next->parts.display, suite::ParseUrl(row.url)->display);
                EXPECT_TRUE(next->post);
                EXPECT_EQ(next->body, body);
                EXPECT_EQ(NamesOf(*next), row.goes == Goes::kAll ? kAllNames : kPublicNames);
            }
        }
    }
}

TEST(HttpRedirect, WhichStatusKeepsTheMethod) {
    const struct {
        long status;
        bool redirects;
        bool postStays;
    } rows[] = {{300, false, false}, {301, true, false},  {302, true, false}, {303, true, false}, {304, false, false},
                {305, false, false}, {306, false, false}, {307, true, true},  {308, true, true},  {309, false, false}};
    for (const auto& row : rows) {
        EXPECT_EQ(suite::IsRedirectStatus(row.status), row.redirects) << row.status;
        for (const bool post : {true, false}) {
            const suite::CheckedRequest request = {
                "http://h/", *suite::ParseUrl("http://h/"), post, {{"content-type", "1"}, {"x", "2"}}, post ? "b" : ""};
            const auto outcome = suite::FollowRedirect(request, row.status, "/d");
            const auto* const next = std::get_if<suite::CheckedRequest>(&outcome);
            ASSERT_NE(next, nullptr) << row.status;
            if (row.redirects) {
                EXPECT_EQ(next->post, post && row.postStays) << row.status;
                EXPECT_EQ(next->body, next->post ? "b" : "") << row.status;
                EXPECT_EQ(NamesOf(*next), !post || row.postStays ? "content-type x " : "x ") << row.status;
            }
        }
    }
}

TEST(HttpUrl, WhichHostsAreLoopback) {
    const struct {
        const char* url;
        bool isLoopback;
    } rows[] = {
        {"http://127.0.0.1/", true},          {"http://127.255.3.4:81/", true}, {"http://LocalHost/", true},
        {"https://[::1]:8443/", true},        {"http://127.example/", false},   {"http://127.0.0.1.example/", false},
        {"http://localhost.example/", false}, {"http://128.0.0.1/", false},     {"http://[::2]/", false},
        {"http://1.127.0.0/", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(suite::IsLoopback(*suite::ParseUrl(row.url)), row.isLoopback) << row.url;
    }
}

}  // namespace
