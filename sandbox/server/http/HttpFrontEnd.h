#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

#include <httplib.h>

#include "http/EndpointTable.h"
#include "http/FaultEffects.h"
#include "http/Faults.h"
#include "http/TrafficLog.h"

namespace sandbox {

// What is decided about a request before an endpoint sees it.
struct Reception {
    std::function<std::string(const PlatformRequest&)> refusal;  // why it is refused; empty: it is not
    std::function<bool(const PlatformRequest&)> isShown;         // whether it is for people to look at
};

// Between the HTTP library and the endpoints: records each request, has it answered, and applies faults to the
// reply. The same for every endpoint and both listeners.
class HttpFrontEnd {
public:
    // The references must outlive the front end, and the front end the servers that it is attached to.
    HttpFrontEnd(const EndpointTable& endpoints, FaultTable& faults, TrafficLog& traffic, Reception reception);

    void Attach(httplib::Server& server);
    // Ends delays and stalls that are under way.
    void Stop();

private:
    void Handle(const httplib::Request& request, httplib::Response& response);
    PlatformReply Answer(const PlatformRequest& request) const;
    void Show(const PlatformRequest& request, const PlatformReply& reply, const std::optional<Fault>& fault);
    // Sends what is new, as long as the peer is there.
    void KeepSending(PlatformReply reply, httplib::Response& response);
    void Deliver(PlatformReply reply, const Delivery& delivery, httplib::Response& response);
    // Sends what comes at offset of the body; false when the connection is to be closed.
    bool SendNext(const StreamedBody& body, const Delivery& delivery, std::size_t offset, httplib::DataSink& sink);
    // Waits; false when the server stops or the peer goes away meanwhile.
    bool Pause(std::chrono::milliseconds duration, const std::function<bool()>& peerWaits);

    const EndpointTable& m_endpoints;
    FaultTable& m_faults;
    TrafficLog& m_traffic;
    const Reception m_reception;
    std::mutex m_stopLock;
    std::condition_variable m_stopChanged;
    bool m_stopping = false;  // guarded by m_stopLock
};

}  // namespace sandbox
