#include "tembrakey/trace/page.h"

#include <algorithm>
#include <span>
#include <vector>

#include "tembrakey/trace/call_json.h"
#include "tembrakey/trace/page_files.h"
#include "tembrakey/trace/page_texts.h"

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_BYTES = std::size_t{48} << 20; // in each of the two stores
constexpr std::size_t MOST_FOREIGN = 500;
constexpr std::size_t LONGEST_FOREIGN = 1000;

using Out = std::function<void(std::string_view)>;

bool hasFailed(const Call &call) {
    return call.failed() || call.lost() ||
           std::any_of(call.calls.begin(), call.calls.end(), hasFailed);
}

std::size_t callsOf(const Call &call) {
    std::size_t count = 1;
    for (const Call &inner : call.calls)
        count += callsOf(inner);
    return count;
}

std::size_t bytesOf(const Call &call) {
    std::size_t bytes = sizeof(Call);
    for (const CallLine &line : call.lines)
        bytes += sizeof(CallLine) + line.function.size() + line.message.size();
    for (const Call &inner : call.calls)
        bytes += bytesOf(inner);
    return bytes;
}

struct Placeholder {
    std::string_view name;
    std::function<void()> write;
};

// Writes the template with its {{names}} replaced.
void writeTemplate(const Out &out, std::string_view page, const std::vector<Placeholder> &holes) {
    for (const Placeholder &hole : holes) {
        const std::size_t at = page.find(hole.name);
        out(page.substr(0, at));
        hole.write();
        page.remove_prefix(at + hole.name.size());
    }
    out(page);
}

void writePieces(const Out &out, std::span<const std::string_view> pieces) {
    for (const std::string_view piece : pieces)
        out(piece);
}

std::string join(std::span<const std::string_view> pieces) {
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

} // namespace

void PageContent::Store::push(Kept &&one) {
    calls += one.calls;
    bytes += one.bytes;
    kept.push_back(std::move(one));
}

void PageContent::Store::popFront() {
    calls -= kept.front().calls;
    bytes -= kept.front().bytes;
    kept.pop_front();
}

void PageContent::add(Call &&call) {
    const std::size_t calls = callsOf(call);
    const std::size_t bytes = bytesOf(call);
    const bool isFailed = hasFailed(call);
    m_seen += calls;
    if (isFailed && (m_failed.calls + calls > m_mostCalls || m_failed.bytes + bytes > MOST_BYTES))
        return;
    (isFailed ? m_failed : m_others).push({std::move(call), calls, bytes});
    makeRoom();
}

void PageContent::makeRoom() {
    while (!m_others.kept.empty() &&
           (m_failed.calls + m_others.calls > m_mostCalls || m_others.bytes > MOST_BYTES))
        m_others.popFront();
}

void PageContent::addForeign(std::uint64_t number, std::string_view text) {
    if (m_foreign.size() < MOST_FOREIGN)
        m_foreign.push_back({number, std::string(text.substr(0, LONGEST_FOREIGN))});
}

void PageContent::writeData(const Out &out, const std::string &source, const Summary &summary,
                            bool isFiltered, Translate translate) {
    for (Kept &one : m_others.kept)
        m_failed.push(std::move(one));
    m_others = {};
    std::sort(m_failed.kept.begin(), m_failed.kept.end(),
              [](const Kept &a, const Kept &b) { return a.call.firstLine < b.call.firstLine; });
    JsonText json;
    json.beginObject().member("source", source).name("summary");
    writeSummary(json, summary);
    json.member("isFiltered", isFiltered)
        .member("callsSeen", m_seen)
        .member("callsShown", static_cast<std::uint64_t>(m_failed.calls));
    json.name("texts").beginObject();
    for (const char *text : pageTexts())
        json.member(text, translate(text));
    json.endObject().name("foreign").beginArray();
    for (const Foreign &line : m_foreign)
        writeForeign(json, line.number, line.text);
    json.endArray().name("calls").beginArray();
    for (const Kept &one : m_failed.kept) {
        writeCall(json, one.call);
        out(json.text());
        json.clear();
    }
    json.endArray().endObject();
    out(json.text());
}

void PageContent::write(const Out &out, const std::string &source, const Summary &summary,
                        bool isFiltered, Translate translate) {
    const std::string page = join(pageHtml());
    writeTemplate(out, page,
                  {{"{{style}}", [&] { writePieces(out, pageCss()); }},
                   {"{{data}}", [&] { writeData(out, source, summary, isFiltered, translate); }},
                   {"{{script}}", [&] { writePieces(out, pageScript()); }}});
}

} // namespace tembra::trace
