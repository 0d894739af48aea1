#include "BareCurl.h"

#include <cstdio>
#include <stdexcept>

namespace bench {
namespace {

std::size_t AppendText(char* data, std::size_t one, std::size_t size, void* text) {
    static_cast<std::string*>(text)->append(data, one * size);
    return one * size;
}

std::size_t WriteFile(char* data, std::size_t one, std::size_t size, void* file) {
    return std::fwrite(data, one, size, static_cast<std::FILE*>(file));
}

std::size_t AddField(char* data, std::size_t one, std::size_t size, void* fields) {
    const std::string line(data, one * size);
    const std::size_t colon = line.find(": ");
    if (colon != std::string::npos) {
        auto& map = *static_cast<std::map<std::string, std::string>*>(fields);
        map[line.substr(0, colon)] = line.substr(colon + 2, line.size() - colon - 4);
    }
    return line.size();
}

}  // namespace

BareCurl::BareCurl(const std::string& url) : m_handle(curl_easy_init()) {
    curl_easy_setopt(m_handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(m_handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(m_handle, CURLOPT_PROXY, "");
}

BareCurl::~BareCurl() {
    curl_easy_cleanup(m_handle);
    curl_slist_free_all(m_headers);
}

void BareCurl::SetHeaders(const std::map<std::wstring, std::wstring>& headers) {
    for (const auto& [name, value] : headers) {
        const std::string narrowName(name.begin(), name.end());
        const std::string narrowValue(value.begin(), value.end());
        m_headers = curl_slist_append(m_headers, (narrowName + (value.empty() ? ";" : ": " + narrowValue)).c_str());
    }
    curl_easy_setopt(m_handle, CURLOPT_HTTPHEADER, m_headers);
}

void BareCurl::SetBody(const std::string& body) {
    m_body = body;
    curl_easy_setopt(m_handle, CURLOPT_POSTFIELDSIZE, static_cast<long>(m_body.size()));
    curl_easy_setopt(m_handle, CURLOPT_POSTFIELDS, m_body.c_str());
}

void BareCurl::SetAuthorities(const std::string& file) {
    curl_easy_setopt(m_handle, CURLOPT_CAINFO, file.c_str());
}

void BareCurl::CollectFields() {
    curl_easy_setopt(m_handle, CURLOPT_HEADERFUNCTION, &AddField);
    curl_easy_setopt(m_handle, CURLOPT_HEADERDATA, &m_fields);
}

const std::string& BareCurl::Perform() {
    m_text.clear();
    m_fields.clear();
    std::FILE* const file = m_file.empty() ? nullptr : std::fopen(m_file.c_str(), "wb");
    if (file != nullptr) {
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &WriteFile);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, file);
    } else {
        curl_easy_setopt(m_handle, CURLOPT_WRITEFUNCTION, &AppendText);
        curl_easy_setopt(m_handle, CURLOPT_WRITEDATA, &m_text);
    }
    const CURLcode result = curl_easy_perform(m_handle);
    if (file != nullptr && std::fclose(file) != 0) {
        throw std::runtime_error("cannot write " + m_file);
    }
    long status = 0;
    curl_easy_getinfo(m_handle, CURLINFO_RESPONSE_CODE, &status);
    if (result != CURLE_OK || status != 200) {
        throw std::runtime_error("bare libcurl: " + std::string(curl_easy_strerror(result)) + ", status " +
                                 std::to_string(status));
    }
    return m_text;
}

}  // namespace bench
