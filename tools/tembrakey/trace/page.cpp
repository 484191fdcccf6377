#include "tembrakey/trace/page.h"

#include <algorithm>

#include "page_files.h"

namespace tembra::trace {

namespace {

constexpr std::size_t MOST_BYTES = std::size_t{48} << 20;
constexpr std::size_t MOST_FOREIGN = 500;
constexpr std::size_t LONGEST_FOREIGN = 1000;
constexpr std::size_t FAILED_SHARE = 4; // a failed call is worth as many others

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

// All that went wrong in the call and inside it; empty when nothing did.
std::string failureOf(const Call &call) {
    std::string text = call.lost() ? call.name + '\n' : "";
    for (const CallLine &line : call.lines)
        if (line.failed() && text.find(line.message) == text.npos)
            text += line.function + ' ' + line.message + '\n';
    for (const Call &inner : call.calls)
        text += failureOf(inner);
    return text;
}

// The translations of the texts that the script looks up as t("...").
Json textsOfScript(Translate tr) {
    constexpr std::string_view script = PAGE_SCRIPT;
    constexpr std::string_view lookup = "t(\"";
    Json texts = Json::object();
    for (auto found = script.find(lookup); found != script.npos;
         found = script.find(lookup, found)) {
        found += lookup.size();
        const std::string text(script.substr(found, script.find('"', found) - found));
        texts[text] = tr(text.c_str(), {});
    }
    return texts;
}

} // namespace

void PageContent::add(Call &&call) {
    const std::string failure = failureOf(call);
    const std::size_t calls = callsOf(call);
    m_seen += calls;
    m_calls += calls;
    m_bytes += bytesOf(call);
    // The calls without failures come first, and go first.
    Like &like = m_kept[(failure.empty() ? ' ' + call.name : '!' + failure)];
    like.isFailed = !failure.empty();
    like.calls.push_back(std::move(call));
    if (m_calls > m_mostCalls + m_mostCalls / 4 || m_bytes > MOST_BYTES + MOST_BYTES / 4)
        makeRoom();
}

bool PageContent::isFull() const {
    return m_calls > m_mostCalls || m_bytes > MOST_BYTES;
}

void PageContent::makeRoom() {
    const auto drop = [this](Like &like) {
        const auto victim = like.calls.begin() + (like.calls.size() > 1 ? 1 : 0); // not the first
        m_calls -= callsOf(*victim);
        m_bytes -= bytesOf(*victim);
        like.calls.erase(victim);
    };
    for (std::size_t most = FAILED_SHARE * m_mostCalls; isFull() && most > 0; most -= most / 8 + 1)
        for (auto &[failure, like] : m_kept) {
            const std::size_t mine = like.isFailed ? most : most / FAILED_SHARE;
            while (isFull() && like.calls.size() > std::max<std::size_t>(mine, 1))
                drop(like);
        }
    while (isFull()) {
        drop(m_kept.begin()->second);
        if (m_kept.begin()->second.calls.empty())
            m_kept.erase(m_kept.begin());
    }
}

void PageContent::addForeign(std::uint64_t number, std::string_view text) {
    if (m_foreign.size() < MOST_FOREIGN)
        m_foreign.push_back({{"line", number}, {"text", text.substr(0, LONGEST_FOREIGN)}});
}

// Everything but the calls, as an object that is left open.
std::string PageContent::data(const std::string &source, bool isFiltered, const Summary &summary,
                              const Failures &failures, Translate tr) {
    std::string text = jsonText({{"source", source},
                                 {"isFiltered", isFiltered},
                                 {"callsSeen", m_seen},
                                 {"callsShown", m_calls},
                                 {"summary", toJson(summary, failures, tr)},
                                 {"texts", textsOfScript(tr)},
                                 {"foreign", m_foreign}});
    text.pop_back();
    return text + ",\"calls\":[";
}

void PageContent::write(const std::function<void(std::string_view)> &out, const std::string &source,
                        bool isFiltered, const Summary &summary, const Failures &failures,
                        Translate tr) {
    makeRoom();
    std::vector<const Call *> calls;
    for (const auto &[failure, like] : m_kept)
        for (const Call &call : like.calls)
            calls.push_back(&call);
    std::sort(calls.begin(), calls.end(),
              [](const Call *a, const Call *b) { return a->firstLine < b->firstLine; });
    std::string_view page = PAGE_HTML;
    const auto writeUpTo = [&](std::string_view hole) {
        out(page.substr(0, page.find(hole)));
        page.remove_prefix(page.find(hole) + hole.size());
    };
    writeUpTo("{{style}}");
    out(PAGE_STYLE);
    writeUpTo("{{data}}");
    out(data(source, isFiltered, summary, failures, tr));
    for (const Call *call : calls)
        out((call == calls.front() ? "" : ",\n") + jsonText(toJson(*call, tr)));
    out("]}");
    writeUpTo("{{script}}");
    out(PAGE_SCRIPT);
    out(page);
}

} // namespace tembra::trace
