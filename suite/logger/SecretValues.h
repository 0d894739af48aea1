#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "PatternSearch.h"

namespace suite {

// Masks values that are known to be secret, in whatever text they stand: as they are, in any encoding that
// UnwrappedText takes off, as hexadecimal digits, and inside base64 of either alphabet, whatever precedes and follows
// them there.
class SecretValues {
public:
    // Texts in UTF-8, by name.
    explicit SecretValues(const std::map<std::string, std::string>& values);

    // The first bytes of the text, as many as the limit says, with "***" for each value; one that goes on behind the
    // limit is masked too. Linear in the text.
    std::string Masked(std::string_view text, std::size_t limit) const;

    // Bytes that the longest form of a value takes at most. A text has to be given with as many behind the limit.
    std::size_t LongestForm() const { return m_longestForm; }

private:
    std::size_t m_longestForm;
    PatternSearch m_search;
};

// The values that are secret now. Any thread.
class KnownSecrets {
public:
    // Replaces the value of that name and wipes the former one. False when it was not taken, the former one is gone all
    // the same: it is too short, or there are too many (Logger::SetSecret).
    bool Set(const std::string& name, std::string value);

    // Null when there are none. A value that is replaced later stays in what was handed out, until that goes.
    std::shared_ptr<const SecretValues> Current();

private:
    std::mutex m_mutex;
    std::map<std::string, std::string> m_values;
    std::shared_ptr<const SecretValues> m_current;  // made from the values by the first who asks
};

}  // namespace suite
