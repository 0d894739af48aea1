#pragma once

#include <curl/curl.h>

#include <map>
#include <string>
#include <vector>

namespace bench {

// What a program would write that calls libcurl itself: one handle, its options set once.
class BareCurl {
public:
    explicit BareCurl(const std::string& url);
    ~BareCurl();
    BareCurl(const BareCurl&) = delete;
    BareCurl& operator=(const BareCurl&) = delete;

    void SetHeaders(const std::map<std::wstring, std::wstring>& headers);
    void SetBody(const std::string& body);
    void SetAuthorities(const std::string& file);
    // From now on the body goes to the file, or the reply's header fields into Fields().
    void DownloadTo(const std::string& file) { m_file = file; }
    void CollectFields();

    // The body's text; empty for a download. Throws std::runtime_error unless the status is 200.
    const std::string& Perform();
    const std::map<std::string, std::string>& Fields() const { return m_fields; }

private:
    CURL* m_handle;
    curl_slist* m_headers = nullptr;
    std::string m_body;
    std::string m_text;
    std::string m_file;
    std::map<std::string, std::string> m_fields;
};

}  // namespace bench
