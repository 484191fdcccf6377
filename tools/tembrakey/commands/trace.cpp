#include <algorithm>
#include <charconv>
#include <optional>

#include "tembrakey/commands/commands.h"
#include "tembrakey/io/files.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/text/text.h"
#include "tembrakey/trace/entry_points.h"
#include "tembrakey/trace/filter.h"
#include "tembrakey/trace/listing.h"
#include "tembrakey/trace/page.h"

namespace tembra::tool {

namespace {

std::string translated(const char *english, std::initializer_list<std::string_view> values) {
    return tr(english, values);
}

// JSON is the same in every language. Its texts have no values.
std::string inEnglish(const char *english, std::initializer_list<std::string_view>) {
    return english;
}

std::vector<std::string> split(const std::string &list) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        if (end > at)
            parts.push_back(list.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

class Trace final : public Command {
public:
    void describe(Arguments &arguments) override;
    void run(Context &context) override;

private:
    trace::Filter filter() const;
    void read(trace::TraceReader &reader, const std::string &progress) const;
    void redact(const Console &console) const;
    void writePage(const Console &console, const trace::Filter &wanted) const;
    void printJson(const trace::Filter &wanted) const;
    void printText(const trace::Filter &wanted) const;

    std::string m_file;
    std::string m_threads;
    std::string m_entryPoints;
    std::string m_level = "verbose";
    bool m_errorsOnly = false;
    std::string m_page;
    std::string m_copy;
    int m_limit = 5000;
};

void Trace::describe(Arguments &arguments) {
    arguments.text("FILE", m_file, "trace log (-: standard input, with --json, --html or --redact)")
        .required()
        .text("--thread ID,...", m_threads, "only calls of these threads")
        .text("--entry NAME,...", m_entryPoints, "only calls of these entry points")
        .choice("--level LEVEL", m_level, "only lines of this level and the more serious ones",
                {"error", "warning", "information", "debug", "verbose"})
        .flag("--errors", m_errorsOnly, "only calls that failed")
        .text("--html OUT", m_page, "write a searchable page with a timeline, in one file")
        .number("--limit N", m_limit, "maximum number of calls on the page", 1, 1000000)
        .text("--redact OUT", m_copy,
              "write a copy that can be sent away: no PINs, no hex dumps of data");
}

trace::Filter Trace::filter() const {
    trace::Filter wanted;
    for (const std::string &id : split(m_threads)) {
        std::int64_t thread = 0;
        const auto end = std::from_chars(id.data(), id.data() + id.size(), thread);
        if (end.ec != std::errc() || end.ptr != id.data() + id.size())
            throw Failure(ExitCode::usage, tr("{1} is not a thread id", {id}));
        wanted.threads.push_back(thread);
    }
    for (const std::string &name : split(m_entryPoints)) {
        if (!trace::isEntryPoint(name))
            throw Failure(ExitCode::usage, tr("{1} is not an entry point of the provider", {name}));
        wanted.entryPoints.push_back(name);
    }
    constexpr std::string_view levels[] = {"error", "warning", "information", "debug", "verbose"};
    const auto *level = std::find(std::begin(levels), std::end(levels), m_level);
    wanted.level = static_cast<trace::Level>(level - std::begin(levels) + 1);
    wanted.failedOnly = m_errorsOnly;
    return wanted;
}

void Trace::read(trace::TraceReader &reader, const std::string &progress) const {
    forEachPiece(m_file, progress,
                 [&](crypto::ByteView piece) { reader.feed(crypto::asText(piece)); });
    reader.finish();
}

void Trace::redact(const Console &console) const {
    OutputFile file(m_copy);
    trace::RedactingCopy copy([&](std::string_view text) { file.write(crypto::asBytes(text)); });
    forEachPiece(m_file, tr("Masking"),
                 [&](crypto::ByteView piece) { copy.feed(crypto::asText(piece)); });
    copy.finish();
    if (!copy.isTrace())
        throw Failure(ExitCode::usage,
                      tr("{1} has no trace lines, so what is secret in it is not known; nothing "
                         "was written",
                         {inputName(m_file)}));
    file.commit();
    const auto masked = static_cast<std::int64_t>(copy.maskedLines());
    if (m_copy != "-")
        console.result({{"redacted", m_copy}, {"maskedLines", masked}},
                       tr("{1} written, with secrets masked in {2} lines",
                          {m_copy, trace::grouped(copy.maskedLines())}));
}

void Trace::writePage(const Console &console, const trace::Filter &wanted) const {
    trace::PageContent content(static_cast<std::size_t>(m_limit));
    trace::TraceReader reader(
        trace::Mask::pinsAndData, wanted, [&](trace::Call &&call) { content.add(std::move(call)); },
        [&](std::uint64_t line, std::string_view text) { content.addForeign(line, text); });
    read(reader, tr("Reading"));
    OutputFile file(m_page);
    const auto slash = m_file.find_last_of("/\\");
    const std::string name = slash == m_file.npos ? m_file : m_file.substr(slash + 1);
    content.write([&](std::string_view text) { file.write(crypto::asBytes(text)); }, name,
                  !wanted.isEmpty(), reader.summary(), reader.failures(), &translated);
    file.commit();
    if (m_page != "-")
        console.result({{"page", m_page}, {"calls", reader.summary().calls}},
                       tr("{1} written; open it in a browser", {m_page}));
}

// One object per line, so that a reader needs no more memory than this command.
void Trace::printJson(const trace::Filter &wanted) const {
    const auto print = [](const trace::Json &json) {
        Console::write(trace::jsonText(json) + "\n");
    };
    trace::TraceReader reader(
        trace::Mask::pins, wanted,
        [&](trace::Call &&call) { print(trace::toJson(call, &inEnglish)); },
        [&](std::uint64_t number, std::string_view text) {
            print({{"kind", "foreign"}, {"line", number}, {"text", text}});
        });
    read(reader, tr("Reading"));
    print(trace::toJson(reader.summary(), reader.failures(), &inEnglish));
}

// Reads the log twice: what failed comes first.
void Trace::printText(const trace::Filter &wanted) const {
    trace::TraceReader first(
        trace::Mask::pins, wanted, [](trace::Call &&) {}, [](std::uint64_t, std::string_view) {});
    read(first, tr("Looking for failures"));
    Console::write(trace::summaryText(first.summary(), &translated) + "\n" +
                   trace::failuresText(first.failures(), &translated) + "\n" +
                   tr(m_errorsOnly ? "These calls in full" : N_("All calls")) + "\n");
    trace::Listing listing(&translated);
    trace::TraceReader second(
        trace::Mask::pins, wanted, [&](trace::Call &&call) { Console::write(listing.whole(call)); },
        [&](std::uint64_t line, std::string_view text) {
            Console::write(listing.foreign(line, text));
        },
        first.summary().refusedPins);
    read(second, tr("Reading"));
}

void Trace::run(Context &context) {
    const trace::Filter wanted = filter();
    if (m_file == "-" && (m_copy.empty() + m_page.empty() != 1) &&
        !(context.console.json() && m_copy.empty() && m_page.empty()))
        throw Failure(ExitCode::usage, tr("standard input can be read only once: use - with one of "
                                          "--json, --html and --redact"));
    if (!m_copy.empty())
        redact(context.console);
    if (!m_page.empty())
        writePage(context.console, wanted);
    if (!m_copy.empty() || !m_page.empty())
        return;
    if (context.console.json())
        printJson(wanted);
    else
        printText(wanted);
}

} // namespace

const CommandEntry traceCommand = {
    "trace", N_("Read a trace log: failures first, then calls; or mask it"),
    N_("PINs are masked in everything this command writes; in a page and in a masked copy, hex "
       "dumps\n"
       "other than certificates and public keys are masked too. With --json each line is an "
       "object:\n"
       "calls as they end, lines that are not trace lines, and finally a summary with the "
       "failures."),
    "  tembrakey trace tembra_key_prov.log\n"
    "  tembrakey trace app.log --errors --thread 4711\n"
    "  tembrakey trace app.log --html trace.html\n"
    "  tembrakey trace app.log --redact for-support.log\n"
    "  tembrakey trace app.log --json | jq -c 'select(.failed) | [.begin, .entryPoint]'",
    make<Trace>};

} // namespace tembra::tool
