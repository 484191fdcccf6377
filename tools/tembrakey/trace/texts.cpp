#include "tembrakey/trace/texts.h"

namespace tembra::trace {

std::string fill(std::string_view text, std::initializer_list<std::string_view> values) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool opens = text[at] == '{' && at + 2 < text.size() && text[at + 2] == '}';
        const auto index = opens ? static_cast<std::size_t>(text[at + 1] - '1') : values.size();
        if (index < values.size()) {
            result += values.begin()[index];
            at += 2;
        } else {
            result += text[at];
        }
    }
    return result;
}

std::string grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3)
        digits.insert(at - 3, 1, ' ');
    return digits;
}

} // namespace tembra::trace
