#include "tembrakey/trace/entry_points.h"

#include <algorithm>
#include <map>

namespace tembra::trace {

namespace {

using Names = std::vector<std::string_view>;

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// "(SPI_DEVICE_HANDLE hDevice, const char *pwd)" -> hDevice, pwd
Names argumentNames(std::string_view declaration) {
    Names names;
    for (std::size_t end = 0; end < declaration.size(); ++end) {
        if (declaration[end] != ',' && declaration[end] != ')')
            continue;
        std::size_t begin = end;
        while (isNameCharacter(declaration[begin - 1]))
            --begin;
        names.push_back(declaration.substr(begin, end - begin));
    }
    return names;
}

const std::map<std::string_view, Names> &entryPoints() {
    static const std::map<std::string_view, Names> table = {
#define TEMBRA_ENTRY_POINT(result, name, arguments) {#name, argumentNames(#arguments)},
#include "tembra_key_prov_entry_points.h"
    };
    return table;
}

// Offset of the last "name = " as a whole word before `end`.
std::size_t findArgument(std::string_view message, std::string_view name, std::size_t end) {
    std::size_t found = end;
    do {
        found = found == 0 ? message.npos : message.substr(0, found).rfind(name);
    } while (found != message.npos && ((found > 0 && isNameCharacter(message[found - 1])) ||
                                       message.substr(found + name.size(), 3) != " = "));
    return found;
}

} // namespace

bool isEntryPoint(std::string_view name) {
    return entryPoints().contains(name);
}

// From the last argument to the first, so that a label that reads like arguments stays a label.
Arguments readArguments(std::string_view entryPoint, std::string_view message) {
    Arguments found;
    const auto entry = entryPoints().find(entryPoint);
    if (entry == entryPoints().end())
        return found;
    std::size_t end = message.size();
    for (auto name = entry->second.rbegin(); name != entry->second.rend(); ++name) {
        const std::size_t begin = findArgument(message, *name, end);
        if (begin == message.npos)
            continue;
        const std::size_t value = begin + name->size() + 3;
        found.emplace_back(*name, message.substr(value, end - value));
        // The value before ends at a comma, which is a full-width one in one of the lines.
        const std::string_view before = message.substr(0, begin);
        const std::size_t comma = before.rfind(',') + 1;
        const std::size_t wide = before.rfind("\xEF\xBC\x8C") + 1;
        end = std::max(comma, wide);
        if (end == 0)
            break;
        --end;
    }
    std::reverse(found.begin(), found.end());
    return found;
}

} // namespace tembra::trace
