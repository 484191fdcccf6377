// The page: calls, a timeline and the page's own code in one HTML file.
#pragma once

#include <deque>

#include "tembrakey/trace/json.h"

namespace tembra::trace {

// Selects what the page shows of a log of any length. Calls that ended alike are cut alike, so that
// rare failures stay; of each kind the first call and the latest ones.
class PageContent {
public:
    // mostCalls includes inner calls.
    explicit PageContent(std::size_t mostCalls) : m_mostCalls(mostCalls) {}

    void add(Call &&call);
    void addForeign(std::uint64_t number, std::string_view text);

    // source is the name of the log.
    void write(const std::function<void(std::string_view)> &out, const std::string &source,
               bool isFiltered, const Summary &summary, const Failures &failures, Translate tr);

private:
    struct Like {
        std::deque<Call> calls;
        bool isFailed;
    };

    bool isFull() const;
    void makeRoom();
    std::string data(const std::string &source, bool isFiltered, const Summary &summary,
                     const Failures &failures, Translate tr);

    std::size_t m_mostCalls;
    std::uint64_t m_seen = 0;
    std::size_t m_calls = 0;
    std::size_t m_bytes = 0;
    std::map<std::string, Like> m_kept; // by how the calls ended
    Json m_foreign = Json::array();
};

} // namespace tembra::trace
