#include "token/ReplaceAllIgnoringCase.h"

#include <algorithm>

namespace userauth {
namespace {

std::string Lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

}  // namespace

void ReplaceAllIgnoringCase(std::string& subject, const std::string& pattern, const std::string& replacement) {
    if (subject.empty() || pattern.empty()) {
        return;
    }
    const std::string lowered = Lowered(subject);
    const std::string wanted = Lowered(pattern);
    std::string rebuilt;
    std::size_t position = 0;
    for (std::size_t found = lowered.find(wanted); found != std::string::npos; found = lowered.find(wanted, position)) {
        rebuilt.append(subject, position, found - position).append(replacement);
        position = found + wanted.size();
    }
    subject = rebuilt.append(subject, position, std::string::npos);
}

}  // namespace userauth
