#include <algorithm>

#include "Harness.h"

namespace bench {
namespace {

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return text;
}

}  // namespace

bool Report::Wants(const std::string& what) const {
    return Lowered(what).find(Lowered(m_filter)) != std::string::npos;
}

}  // namespace bench
