#include "http/HttpFrontEnd.h"

#include <algorithm>
#include <utility>

#include "http/ConnectionThreads.h"
#include "http/JsonText.h"
#include "http/RecordingServer.h"

namespace sandbox {
namespace {

// Requests for paths without an endpoint are counted under this one name: names of their own could fill the memory.
constexpr const char* kUnknownPaths = "unknown";
constexpr std::size_t kLongestPath = 512;
constexpr std::size_t kLargestRequestBody = 4 * 1024 * 1024;
constexpr std::size_t kRequestsPerConnection = 10'000;
constexpr time_t kIdleConnectionSeconds = 30;
constexpr std::size_t kConnectionsPerListener = 512;  // at once
constexpr std::chrono::milliseconds kPeerCheckInterval{100};
constexpr std::size_t kLargestBlock = 1024 * 1024;

// The listener's own address, not the client's idea of it in the field "Host".
std::string Origin(const httplib::Request& request) {
    return std::string(request.ssl != nullptr ? "https" : "http") +
           "://127.0.0.1:" + std::to_string(request.local_port);
}

PlatformRequest ToPlatformRequest(const httplib::Request& request) {
    PlatformRequest converted;
    converted.method = request.method;
    const auto question = request.target.find('?');
    converted.path = request.target.substr(0, question);  // that of the library is decoded
    converted.query = question == std::string::npos ? std::string() : request.target.substr(question + 1);
    converted.parameters = request.params;
    converted.origin = Origin(request);
    converted.head = RequestHead(RawHead(request));
    converted.body = request.body;
    return converted;
}

void AnswerInternalError(httplib::Response& response) {
    response.status = 500;
    response.set_content(ErrorReply(500, "the reply could not be made").body, kContentTypeJson);
}

StreamedBody ToStream(PlatformReply reply) {
    return reply.stream ? *std::move(reply.stream) : SharedBody(std::move(reply.body));
}

// Without what the library adds to it.
std::string HeadOf(const PlatformReply& reply) {
    auto head = "HTTP/1.1 " + std::to_string(reply.status) + "\nContent-Type: " + reply.contentType + "\n";
    for (const auto& [name, value] : reply.headers) {
        head += name + ": " + value + "\n";
    }
    return head;
}

// The library matches paths by regular expressions, whose depth of recursion grows with the path.
httplib::Server::HandlerResponse RefuseLongPath(const httplib::Request& request, httplib::Response& response) {
    if (request.path.size() <= kLongestPath) {
        return httplib::Server::HandlerResponse::Unhandled;
    }
    response.status = 414;
    response.set_content(ErrorReply(414, "the path is too long").body, kContentTypeJson);
    return httplib::Server::HandlerResponse::Handled;
}

// An exclusive port: the library's own choice lets another program listen on it as well. On other systems than Windows
// a port is exclusive unless somebody asks for less.
void TakePortExclusively([[maybe_unused]] socket_t socket) {
#if defined(_WIN32)
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&on), sizeof(on));
#endif
}

}  // namespace

HttpFrontEnd::HttpFrontEnd(const EndpointTable& endpoints, FaultTable& faults, TrafficLog& traffic, Reception reception)
    : m_endpoints(endpoints), m_faults(faults), m_traffic(traffic), m_reception(std::move(reception)) {}

void HttpFrontEnd::Attach(httplib::Server& server) {
    constexpr const char* kEveryPath = "[\\s\\S]*";
    const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
        Handle(request, response);
    };
    server.Get(kEveryPath, handle).Post(kEveryPath, handle).Put(kEveryPath, handle);
    server.Patch(kEveryPath, handle).Delete(kEveryPath, handle).Options(kEveryPath, handle);
    server.set_pre_routing_handler(RefuseLongPath);
    server.set_exception_handler([](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
        AnswerInternalError(response);
    });
    server.set_socket_options(TakePortExclusively);
    server.set_keep_alive_max_count(kRequestsPerConnection);
    server.set_keep_alive_timeout(kIdleConnectionSeconds);
    server.set_payload_max_length(kLargestRequestBody);
    server.new_task_queue = [] { return new ConnectionThreads(kConnectionsPerListener); };
}

void HttpFrontEnd::Stop() {
    {
        const std::lock_guard<std::mutex> guard(m_stopLock);
        m_stopping = true;
    }
    m_stopChanged.notify_all();
}

void HttpFrontEnd::Handle(const httplib::Request& request, httplib::Response& response) {
    const auto platformRequest = ToPlatformRequest(request);
    const auto& path = platformRequest.path;
    m_traffic.RecordRequest(m_endpoints.Knows(path) ? path : kUnknownPaths, platformRequest.head.Text(),
                            platformRequest.body);
    auto reply = Answer(platformRequest);
    const auto fault = reply.live ? std::nullopt : m_faults.Take(path);
    if (fault) {
        SpoilReply(*fault, reply);
    }
    Show(platformRequest, reply, fault);
    if (fault) {
        Pause(fault->delay, [] { return true; });
    }
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) {
        response.set_header(name, value);
    }
    if (reply.live) {
        KeepSending(std::move(reply), response);
    } else if ((fault && ShapesDelivery(*fault)) || reply.stream || reply.chunked) {
        const auto delivery = PlanDelivery(fault.value_or(Fault()), BodySize(reply));
        Deliver(std::move(reply), delivery, response);
    } else {
        response.set_content(reply.body, reply.contentType);
    }
}

PlatformReply HttpFrontEnd::Answer(const PlatformRequest& request) const {
    constexpr int kForbidden = 403;
    const auto refusal = m_reception.refusal(request);
    return refusal.empty() ? m_endpoints.Answer(request) : ErrorReply(kForbidden, refusal);
}

void HttpFrontEnd::Show(const PlatformRequest& request, const PlatformReply& reply, const std::optional<Fault>& fault) {
    using std::chrono::milliseconds;
    using std::chrono::system_clock;
    if (!m_reception.isShown(request)) {
        return;
    }
    ShownExchange shown;
    shown.time = std::chrono::duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    shown.method = request.method;
    shown.path = request.path;
    shown.status = reply.status;
    shown.refusal = reply.refusal;
    shown.fault = fault ? JsonLine(fault->order) : std::string();
    shown.requestHead = request.head.Text();
    shown.requestBody = request.body;
    shown.replyHead = HeadOf(reply);
    shown.replyBody = reply.contentType == kContentTypeJson && !reply.stream
                          ? reply.body
                          : "[" + std::to_string(BodySize(reply)) + " bytes of " + reply.contentType + "]";
    m_traffic.Show(std::move(shown));
}

void HttpFrontEnd::KeepSending(PlatformReply reply, httplib::Response& response) {
    response.set_chunked_content_provider(
        reply.contentType, [this, live = std::move(reply.live), first = true](size_t, httplib::DataSink& sink) mutable {
            if (!std::exchange(first, false) && !Pause(kPeerCheckInterval, sink.is_writable)) {
                return false;
            }
            // The library takes a write of nothing for the end.
            const auto news = live();
            return news.empty() || sink.write(news.data(), news.size());
        });
}

void HttpFrontEnd::Deliver(PlatformReply reply, const Delivery& delivery, httplib::Response& response) {
    const auto contentType = reply.contentType;
    const bool chunked = reply.chunked;
    const auto send = [this, body = ToStream(std::move(reply)), delivery](size_t offset, httplib::DataSink& sink) {
        return SendNext(body, delivery, offset, sink);
    };
    if (chunked) {
        response.set_chunked_content_provider(contentType, send);
        return;
    }
    if (delivery.announced) {
        response.set_header("Content-Length", std::to_string(*delivery.announced));
    }
    // Without a length of its own the library sends what the function writes, whatever the header announces.
    response.set_content_provider(contentType, send);
}

bool HttpFrontEnd::SendNext(const StreamedBody& body, const Delivery& delivery, std::size_t offset,
                            httplib::DataSink& sink) {
    const auto end = delivery.firstPart + delivery.secondPart;
    if (offset == delivery.firstPart && !Pause(delivery.pause, sink.is_writable)) {
        return false;
    }
    if (offset == end) {
        if (!delivery.close) {
            sink.done();
        }
        return !delivery.close;
    }
    const auto limit = offset < delivery.firstPart ? delivery.firstPart : end;
    const auto block = body.block(offset).substr(0, std::min(limit - offset, kLargestBlock));
    return sink.write(block.data(), block.size());
}

bool HttpFrontEnd::Pause(std::chrono::milliseconds duration, const std::function<bool()>& peerWaits) {
    const auto end = std::chrono::steady_clock::now() + duration;
    bool goOn = true;
    while (goOn && std::chrono::steady_clock::now() < end) {
        std::unique_lock<std::mutex> lock(m_stopLock);
        const auto wake = std::min(end, std::chrono::steady_clock::now() + kPeerCheckInterval);
        goOn = !m_stopChanged.wait_until(lock, wake, [this] { return m_stopping; });
        lock.unlock();
        goOn = goOn && peerWaits();
    }
    return goOn;
}

}  // namespace sandbox
