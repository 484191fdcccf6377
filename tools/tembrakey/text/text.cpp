#include "tembrakey/text/text.h"

#include "CHINESE.h"
#include "tembrakey/platform/process.h"
#include "tembrakey/text/catalogue.h"
#include "tembrakey/text/printable.h"

namespace tembra::tool {

namespace {

bool g_isChinese = false;

bool wantsChinese() {
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const auto locale = platform::environment(name);
        if (locale && !locale->empty())
            return locale->starts_with("zh");
    }
    return platform::systemSpeaksChinese();
}

} // namespace

void chooseLanguage() {
    g_isChinese = wantsChinese();
}

const char *tr(const char *english) {
    const char *found = g_isChinese ? Catalogue(CHINESE).find(english) : nullptr;
    return found == nullptr ? english : found;
}

std::string tr(const char *english, std::initializer_list<std::string_view> values) {
    std::string result;
    for (const char *c = tr(english); *c != '\0'; ++c) {
        const auto index = static_cast<std::size_t>(c[0] == '{' ? c[1] - '1' : -1);
        if (index < values.size() && c[2] == '}') {
            result += printable(values.begin()[index]);
            c += 2;
        } else {
            result += *c;
        }
    }
    return result;
}

} // namespace tembra::tool
