#include <charconv>
#include <memory>

#include "http/JsonText.h"
#include "page/Endpoints.h"
#include "page/EventStream.h"
#include "page/PageFiles.h"
#include "page/PageState.h"

namespace sandbox {
namespace {

// What is new since the last look, as events.
class PageNews {
public:
    explicit PageNews(const PageSources& sources) : m_sources(sources) {}

    std::string Next() {
        std::string news;
        auto state = PageState(m_sources);
        if (state != m_state) {
            news = EventText("state", state);
            m_state = std::move(state);
        }
        return news + Exchanges();
    }

private:
    std::string Exchanges() {
        const auto shown = m_sources.traffic.ShownAfter(m_latest);
        const auto oldest = m_sources.traffic.OldestShown();
        if (shown.empty() && oldest == m_oldest) {
            return {};
        }
        Json::Value added(Json::arrayValue);
        for (const auto& exchange : shown) {
            added.append(SummaryOf(exchange));
            m_latest = exchange.number;
        }
        m_oldest = oldest;
        return EventText("exchanges", JsonObject({{"oldest", static_cast<Json::UInt64>(oldest)}, {"added", added}}));
    }

    const PageSources m_sources;
    Json::Value m_state;
    std::uint64_t m_latest = 0;
    std::uint64_t m_oldest = 0;
};

PlatformReply Details(const PlatformRequest& request, const TrafficLog& traffic) {
    constexpr int kNotFound = 404;
    const auto parameter = request.parameters.find("number");
    const auto text = parameter == request.parameters.end() ? std::string() : parameter->second;
    std::uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    const auto exchange = traffic.Shown(number);
    return exchange ? JsonReply(DetailsOf(*exchange)) : ErrorReply(kNotFound, "the exchange is no longer kept");
}

const char* ContentTypeOf(std::string_view name) {
    const auto ending = name.substr(name.rfind('.') + 1);
    return ending == "html"  ? "text/html;charset=UTF-8"
           : ending == "css" ? "text/css;charset=UTF-8"
           : ending == "js"  ? "text/javascript;charset=UTF-8"
                             : "image/svg+xml";
}

PlatformReply FileReply(const PageFile& file, const std::string& token) {
    // The page runs nothing but its own files and talks to nobody but us, and no site may frame it.
    constexpr const char* kPolicy =
        "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri 'none'; "
        "form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'; trusted-types 'none'";
    constexpr std::string_view kTokenPlace = "{{token}}";
    PlatformReply reply{200, std::string(file.bytes), {}, ContentTypeOf(file.name)};
    if (const auto place = reply.body.find(kTokenPlace); place != std::string::npos) {
        reply.body.replace(place, kTokenPlace.size(), token);
    }
    reply.headers = {{"Content-Security-Policy", kPolicy},
                     {"X-Content-Type-Options", "nosniff"},
                     {"X-Frame-Options", "DENY"},
                     {"Referrer-Policy", "same-origin"},
                     {"Cross-Origin-Resource-Policy", "same-origin"},
                     {"Cross-Origin-Opener-Policy", "same-origin"},
                     {"Cache-Control", "no-store"}};
    return reply;
}

}  // namespace

void AddPageFileEndpoints(EndpointTable& endpoints, const BrowserGuard& guard) {
    for (const auto& file : PageFiles()) {
        const std::string path = file.name == "index.html"     ? "/"
                                 : file.name == "sign-in.html" ? "/sign-in"
                                                               : "/page/" + std::string(file.name);
        endpoints.Add("GET", path, [&](const PlatformRequest&) { return FileReply(file, guard.Token()); });
    }
}

void AddPageEndpoints(EndpointTable& endpoints, const PageSources& sources) {
    endpoints.Add("GET", "/sandbox/events", [sources](const PlatformRequest&) {
        return EventStreamReply([news = std::make_shared<PageNews>(sources)] { return news->Next(); });
    });
    endpoints.Add("GET", "/sandbox/exchange",
                  [sources](const PlatformRequest& request) { return Details(request, sources.traffic); });
}

}  // namespace sandbox
