// The page: calls, a timeline and the page's own code in one HTML file.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "tembrakey/trace/call.h"
#include "tembrakey/trace/summary.h"
#include "tembrakey/trace/texts.h"

namespace tembra::trace {

// Keeps what the page shows of a log of any length: of the calls first those that failed, the
// earliest before the later ones, and then the latest others.
class PageContent {
public:
    // mostCalls: inner calls count too.
    explicit PageContent(std::size_t mostCalls) : m_mostCalls(mostCalls) {}

    void add(Call &&call);
    void addForeign(std::uint64_t number, std::string_view text);

    // Writes the page; source is the name of the log. Uses the content up.
    void write(const std::function<void(std::string_view)> &out, const std::string &source,
               const Summary &summary, bool isFiltered, Translate translate);

private:
    struct Kept {
        Call call;
        std::size_t calls; // with the inner ones
        std::size_t bytes;
    };
    struct Foreign {
        std::uint64_t number;
        std::string text;
    };
    struct Store {
        std::deque<Kept> kept;
        std::size_t calls = 0;
        std::size_t bytes = 0;
        void push(Kept &&one);
        void popFront();
    };

    void makeRoom();
    void writeData(const std::function<void(std::string_view)> &out, const std::string &source,
                   const Summary &summary, bool isFiltered, Translate translate);

    std::size_t m_mostCalls;
    std::uint64_t m_seen = 0; // calls handed in
    Store m_failed;
    Store m_others;
    std::deque<Foreign> m_foreign;
};

} // namespace tembra::trace
