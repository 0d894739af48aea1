#pragma once

#include <UserSyncKeyService.h>

#include <atomic>
#include <mutex>

#include "AccountFields.h"
#include "FaultRows.h"
#include "KeyServerPeer.h"
#include "PortraitWindow.h"
#include "SandboxSession.h"

// One operation that asks a server. In its texts "#" stands for a number that differs from row to row, "@" for true in
// every second row and false else, "~" for the same as texts and "%" as 1 and 0, "<c>" for the code, "<o>" for another
// body. Fields are written "name=value|name=value".
struct FaultedOperation {
    // kBasic: a POST of the basic service, which may answer 201 too.
    enum class Form { kGet, kPost, kBasic, kDownload };
    enum class Place { kOnly, kFirst, kSecond, kPortrait };

    const char* name;
    const char* endpoint;  // part of the request's first line
    Form form;
    std::string body;        // that the server is wanted to send
    std::string changes;     // fields that such a reply changes
    std::string line;        // of the log after a failure; empty: none but the HTTP library's own
    bool showsCause = true;  // the log has the HTTP library's text of a transport error
    std::function<bool()> run;
    bool takesOther = false;          // a 200 with another body is a success
    std::string otherChanges = {};    // fields that such a reply changes
    std::string failureChanges = {};  // fields that a failure changes
    Place place = Place::kOnly;       // of the request that meets the fault
};

// A service whose servers are one scripted server, with a state that every row finds alike.
class FaultSession : public SandboxSession {
protected:
    FaultSession();
    ~FaultSession() override;

    std::vector<FaultedOperation> Operations();
    // All that the operations fill.
    Fields State();
    // The row's fault on one request of the operation, then the same request without it. False when anything is not as
    // it should be. The reply may be cut after so many bytes.
    bool Survives(const FaultedOperation& operation, const Fault& fault, std::size_t cut = std::string::npos);
    static bool IsMetBy(const FaultedOperation& operation, const Fault& fault);
    RawReply SilentReply(const Fault& row) const {
        return {Filled(row.bytes, "{wanted}"), row.then, Filled(row.last, "")};
    }
    // Size of the last reply with a fault when nothing of it is cut; an operation's replies have one size.
    std::size_t ReplySize();

    bool Keep(const std::string& text);
    std::string Located(std::string text) const;
    void Prepare(const FaultedOperation& operation, const Fault* fault, std::size_t cut = std::string::npos);
    void Run(const FaultedOperation& operation, int code, bool succeeds, const std::string& changes,
             const std::string& other = "");
    std::string Numbered(std::string text) const;
    Fields Changed(Fields fields, const std::string& changes, const std::string& other = "") const;
    std::string BodyFor(const FaultedOperation& operation) const;
    std::string Filled(std::string text, const std::string& body) const;
    RawReply FaultyReply(const std::string& body);
    RawReply Answer(const std::string& request);

    int m_number = 0;
    int m_callbacks = 0;
    std::atomic<int> m_code{0};      // of the last exchange
    static thread_local int t_code;  // of the last one of this thread
    std::string m_text;              // of a download, or of the routing service
    std::string m_link;              // of the portrait
    std::string m_platform;
    std::vector<DeviceTag> m_devices;
    UserSyncKeyService m_keys;
    const KeyServerPeer m_peer;
    PortraitWindow m_window;
    const std::vector<FaultedOperation> m_operations;

    std::mutex m_lock;  // guards what the server's thread reads
    const FaultedOperation* m_asked = nullptr;
    const Fault* m_fault = nullptr;
    std::size_t m_cut = std::string::npos;
    std::size_t m_replySize = 0;
    std::string m_temporaryKey;  // as the last request for a list carried it
    const std::string m_nobody;
    RawServer m_other;
    RawServer m_server;
};
