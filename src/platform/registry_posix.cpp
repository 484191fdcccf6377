#include "platform/registry.h"

#include "platform/reg_file.h"

#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace tembra::platform {

namespace {

// The error numbers and types that Windows would return.
constexpr int ERROR_SUCCESS = 0;
constexpr int ERROR_FILE_NOT_FOUND = 2;
constexpr int ERROR_MORE_DATA = 234;
constexpr std::uint32_t REG_SZ = 1;
constexpr std::uint32_t REG_BINARY = 3;

constexpr std::size_t DATA_CAPACITY = 8;
constexpr int DWORD_DIGITS = 8;

struct Value {
    std::uint32_t type = 0;
    unsigned char data[DATA_CAPACITY] = {};
    std::size_t size = 0;

    void append(unsigned char byte) {
        if (size < DATA_CAPACITY)
            data[size] = byte;
        ++size;
    }
};

int hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Reads hex digits up to the first other character.
std::uint32_t parseHex(const char *&text) {
    std::uint32_t number = 0;
    for (; hexDigit(*text) >= 0; ++text)
        number = (number << 4) | static_cast<std::uint32_t>(hexDigit(*text));
    return number;
}

bool parseDword(const char *text, Value &value) {
    const char *digits = text;
    const std::uint32_t number = parseHex(text);
    if (text == digits || text - digits > DWORD_DIGITS)
        return false;
    value.type = REGISTRY_TYPE_DWORD;
    for (int shift = 0; shift < 32; shift += 8)
        value.append(static_cast<unsigned char>(number >> shift));
    return *text == '\0' || *text == ';' || *text == ' ';
}

// text follows "hex": an optional type in parentheses, a colon, bytes separated by commas.
bool parseBytes(const char *text, Value &value) {
    value.type = REG_BINARY;
    if (*text == '(') {
        value.type = parseHex(++text);
        if (*text++ != ')')
            return false;
    }
    if (*text++ != ':')
        return false;
    while (*text != '\0')
        if (hexDigit(*text) >= 0)
            value.append(static_cast<unsigned char>(parseHex(text)));
        else
            ++text;
    return true;
}

// text follows the opening quote. A REG_SZ is stored in UTF-16 with its NUL.
bool parseText(const char *text, Value &value) {
    value.type = REG_SZ;
    for (; *text != '\0' && *text != '"'; ++text) {
        if (*text == '\\' && text[1] != '\0')
            ++text;
        value.append(static_cast<unsigned char>(*text));
        value.append(0);
    }
    value.append(0);
    value.append(0);
    return true; // without a closing quote the line was truncated, which the size shows
}

bool parseValue(const char *text, Value &value) {
    if (strncasecmp(text, "dword:", 6) == 0)
        return parseDword(text + 6, value);
    if (strncasecmp(text, "hex", 3) == 0)
        return parseBytes(text + 3, value);
    return *text == '"' && parseText(text + 1, value);
}

// Returns the text after "name"= if the line sets that value, else null.
const char *valueText(const char *line, const char *name) {
    const std::size_t length = std::strlen(name);
    if (line[0] != '"' || strncasecmp(line + 1, name, length) != 0)
        return nullptr;
    const char *rest = line + 1 + length;
    if (*rest++ != '"')
        return nullptr;
    while (*rest == ' ' || *rest == '\t')
        ++rest;
    if (*rest++ != '=')
        return nullptr;
    while (*rest == ' ' || *rest == '\t')
        ++rest;
    return rest;
}

bool isSectionOf(const char *section, const char *subkey) {
    static const char root[] = "HKEY_LOCAL_MACHINE\\";
    const std::size_t rootLength = sizeof(root) - 1;
    const std::size_t length = std::strlen(subkey);
    return strncasecmp(section, root, rootLength) == 0 &&
           strncasecmp(section + rootLength, subkey, length) == 0 &&
           std::strcmp(section + rootLength + length, "]") == 0;
}

struct Search {
    bool keyFound = false;
    bool valueFound = false;
    Value value;
};

// Applies the file as an import would: later entries override earlier ones.
Search searchFile(RegFile &file, const char *subkey, const char *name) {
    Search search;
    bool inSection = false;
    while (const char *line = file.nextLine()) {
        if (line[0] == '[') {
            const bool removal = line[1] == '-';
            const bool ours = isSectionOf(line + (removal ? 2 : 1), subkey);
            inSection = ours && !removal;
            if (ours && removal)
                search = Search();
            search.keyFound = search.keyFound || inSection;
            continue;
        }
        const char *text = inSection ? valueText(line, name) : nullptr;
        if (!text)
            continue;
        Value value;
        search.valueFound = parseValue(text, value);
        search.value = value;
    }
    return search;
}

} // namespace

RegistryAnswer queryRegistryValue(const char *subkey, const char *name) {
    const char *path = std::getenv("TEMBRA_KEY_PROV_REGISTRY");
    RegFile file(path ? path : "/etc/tembra_key_prov.reg");
    RegistryAnswer answer = {ERROR_FILE_NOT_FOUND, ERROR_FILE_NOT_FOUND, 0, 0};
    if (!file.isOpen())
        return answer;

    const Search search = searchFile(file, subkey, name);
    if (!search.keyFound)
        return answer;
    answer.openResult = ERROR_SUCCESS;
    if (!search.valueFound)
        return answer;
    answer.queryResult = search.value.size > DATA_CAPACITY ? ERROR_MORE_DATA : ERROR_SUCCESS;
    answer.type = search.value.type;
    for (int i = 3; i >= 0; --i)
        answer.data = (answer.data << 8) | search.value.data[i];
    return answer;
}

} // namespace tembra::platform
