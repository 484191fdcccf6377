#include "tembrakey/trace/failures.h"

#include <algorithm>
#include <charconv>

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_GROUPS = 2000;

constexpr SarCode SAR_CODES[] = {
#define TEMBRA_SAR_CODE(name, value, meaning) {#name, value, meaning},
#include "platform/sar_codes.h"
#undef TEMBRA_SAR_CODE
};

template <typename Is>
const SarCode *findCode(Is is) {
    const auto *code = std::find_if(std::begin(SAR_CODES), std::end(SAR_CODES), is);
    return code == std::end(SAR_CODES) || code->value == 0 ? nullptr : code;
}

} // namespace

bool isOrdinary(const Line &line, std::string_view entryPoint) {
    if (line.level != Level::error)
        return false;
    const std::string_view message = line.message;
    if (message == "RegOpenKeyEx fail, error = 2" || message == "RegQueryValueEx fail, error = 2" ||
        (message.starts_with("unsupport HasSM") && message.ends_with(", error = 2")))
        return true;
    return (entryPoint.empty() || entryPoint == "DeviceGetAllDevices") &&
           (message == "SKF_ExportCertificate fail, error = 0x0A00001C" ||
            message == "SKF_ExportPublicKey fail, error = 0x0A00001B");
}

const SarCode *findSarCode(std::string_view message) {
    constexpr std::size_t DIGITS = 8;
    for (std::size_t found = message.find("0x0"); found != message.npos;
         found = message.find("0x0", found + 1)) {
        std::uint32_t value = 0;
        const std::string_view digits = message.substr(found + 2, DIGITS);
        const auto parsed =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (parsed.ptr != digits.data() + DIGITS)
            continue;
        const auto hasValue = [&](const SarCode &one) { return one.value == value; };
        if (const auto *code = findCode(hasValue))
            return code;
    }
    const std::string_view name = message.substr(std::min(message.find("SAR_"), message.size()));
    const std::size_t end = name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_");
    return findCode([&](const SarCode &one) { return one.name == name.substr(0, end); });
}

std::string explained(std::string_view message, Translate tr) {
    std::string text = printable(message);
    if (const SarCode *code = findSarCode(message))
        text += " (" + std::string(code->name) + ": " + tr(code->meaning, {}) + ")";
    return text;
}

void Failures::count(Failure &&failure) {
    const std::string key = std::to_string(static_cast<int>(failure.kind)) + failure.entryPoint +
                            '\n' + failure.function + '\n' + failure.message;
    auto found = m_groups.find(key);
    if (found == m_groups.end() && m_groups.size() >= MOST_GROUPS) {
        ++m_others;
        return;
    }
    if (found == m_groups.end())
        found = m_groups.emplace(key, failure).first;
    Failure &group = found->second;
    ++group.count;
    if (failure.firstLine < group.firstLine) {
        group.firstLine = failure.firstLine;
        group.first = failure.first;
    } else if (failure.firstLine > group.lastLine) {
        group.lastLine = failure.firstLine;
        group.last = failure.first;
    }
}

void Failures::add(const Call &call) {
    for (const CallLine &line : call.lines)
        if (line.level == Level::error) // without an entry line, the call is only likely
            count({line.isOrdinary ? Kind::ordinary : Kind::failure,
                   call.entered ? call.name : line.function, line.function, line.message, 0,
                   line.number, line.number, line.time, line.time});
    if (call.lost())
        count({Kind::lostCall, call.name, "", "", 0, call.firstLine, call.firstLine, call.begin,
               call.begin});
    for (const Call &inner : call.calls)
        add(inner);
}

void Failures::add(const RefusedPin &pin) {
    count({Kind::refusedPin, pin.entryPoint, "", "", 0, pin.line, pin.line, pin.time, pin.time});
}

std::vector<Failure> Failures::list() const {
    std::vector<Failure> sorted;
    for (const auto &[key, group] : m_groups)
        sorted.push_back(group);
    std::sort(sorted.begin(), sorted.end(),
              [](const Failure &a, const Failure &b) { return a.firstLine < b.firstLine; });
    return sorted;
}

std::string failureText(const Failure &failure, Translate tr) {
    if (failure.kind == Kind::refusedPin)
        return tr("PIN probably refused: the next line about it shows fewer tries", {});
    if (failure.kind == Kind::lostCall)
        return tr("did not return", {});
    const std::string text = explained(failure.message, tr);
    return failure.function == failure.entryPoint ? text
                                                  : printable(failure.function) + ": " + text;
}

} // namespace tembra::trace
