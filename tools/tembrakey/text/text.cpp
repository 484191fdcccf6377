#include "tembrakey/text/text.h"

#include <unordered_map>

#include "tembrakey/platform/process.h"
#include "tembrakey/text/chinese.h"

namespace tembra::tool {

namespace {

using Table = std::unordered_map<std::string_view, const char *>;

Table &table() {
    static Table translations;
    return translations;
}

bool wantsChinese() {
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const auto locale = platform::environment(name);
        if (locale && !locale->empty())
            return locale->rfind("zh", 0) == 0;
    }
    return platform::systemSpeaksChinese();
}

} // namespace

void chooseLanguage() {
    if (!wantsChinese())
        return;
    for (const auto texts : {chineseHelp(), chineseMessages(), chineseTrace(), chineseDoctor()})
        for (const Translation &entry : texts)
            table().emplace(entry.english, entry.translated);
}

const char *tr(const char *english) {
    const auto found = table().find(english);
    return found == table().end() ? english : found->second;
}

std::string tr(const char *english, std::initializer_list<std::string_view> values) {
    std::string result;
    for (const char *c = tr(english); *c != '\0'; ++c) {
        const auto index = static_cast<std::size_t>(c[0] == '{' ? c[1] - '1' : -1);
        if (index < values.size() && c[2] == '}') {
            result += values.begin()[index];
            c += 2;
        } else {
            result += *c;
        }
    }
    return result;
}

} // namespace tembra::tool
