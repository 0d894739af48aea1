#include "http/HttpFrontEnd.h"

#include <algorithm>
#include <utility>

#include "http/ConnectionThreads.h"
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

HttpFrontEnd::HttpFrontEnd(const EndpointTable& endpoints, FaultTable& faults, TrafficLog& traffic)
    : m_endpoints(endpoints), m_faults(faults), m_traffic(traffic) {}

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
    auto reply = m_endpoints.Answer(platformRequest);
    const auto fault = m_faults.Take(path);
    if (fault) {
        SpoilReply(*fault, reply);
        Pause(fault->delay, [] { return true; });
    }
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) {
        response.set_header(name, value);
    }
    if ((fault && ShapesDelivery(*fault)) || reply.stream || reply.chunked) {
        const auto delivery = PlanDelivery(fault.value_or(Fault()), BodySize(reply));
        Deliver(std::move(reply), delivery, response);
    } else {
        response.set_content(reply.body, reply.contentType);
    }
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
