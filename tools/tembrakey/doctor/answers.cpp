#include "tembrakey/doctor/answers.h"

#include <cstdio>

#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

struct Meaning {
    ULONG result;
    const char *text; // English
};

const Meaning MEANINGS[] = {
#define TEMBRA_SAR_CODE(name, value, meaning) {value, meaning},
#include "platform/sar_codes.h"
#undef TEMBRA_SAR_CODE
};

} // namespace

std::string resultText(ULONG result) {
    char number[16];
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(result));
    for (const Meaning &one : MEANINGS)
        if (one.result == result)
            return std::string(number) + " (" + tr(one.text) + ")";
    return number;
}

std::string fieldText(const CHAR *field, std::size_t size) {
    return {field, std::find(field, field + size, '\0')};
}

void readNames(std::string_view bytes, ULONG capacity, ULONG length, NameList &list) {
    if (bytes.find_first_not_of('\x27', capacity) != bytes.npos)
        list.complaints.push_back(tr("it writes beyond the buffer"));
    if (length > capacity) {
        list.complaints.push_back(tr("it claims a longer list than the buffer holds"));
        length = capacity;
    }
    std::string_view rest = bytes.substr(0, length);
    while (!rest.empty() && rest[0] != '\0') {
        const std::size_t end = rest.find('\0');
        if (end == rest.npos) {
            list.complaints.push_back(tr("its last name does not end"));
            return;
        }
        list.names.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    if (rest.empty() && length > 0)
        list.complaints.push_back(tr("the list is not closed by an empty name"));
    std::vector<std::string> sorted = list.names;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
        list.complaints.push_back(tr("it names one thing twice"));
}

} // namespace tembra::tool::doctor
