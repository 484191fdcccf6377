#include "tembrakey/text/chinese.h"

namespace tembra::tool {

namespace {

const Translation TRACE_TEXTS[] = {
    // the command line
    {"Read a trace log: calls, durations, errors first; or mask it",
     "读取跟踪日志：调用、耗时、错误在前；或将其脱敏"},
    {"PINs are masked in everything this command writes. A page and a masked copy leave out hex\n"
     "texts too, other than those of certificates and public keys. With --json each line is an\n"
     "object: calls as they end, lines that are no trace lines, and at last a summary.",
     "本命令的所有输出都隐去 PIN。网页和脱敏副本还隐去除证书和公钥以外的十六进制内容。\n"
     "使用 --json 时每行是一个对象：按结束顺序的调用、非跟踪行，最后是汇总。"},
    {"The trace log (- is standard input, for --json, --html, --redact)",
     "跟踪日志（- 为标准输入，用于 --json、--html、--redact）"},
    {"Only calls of these threads", "只看这些线程的调用"},
    {"Only calls of these entry points", "只看这些入口函数的调用"},
    {"Only lines of this level and the more serious ones", "只看此级别及更严重的行"},
    {"Only calls that wrote an error line", "只看写过错误行的调用"},
    {"Write a page with a timeline, searchable, in one file",
     "写出一个带时间线、可搜索的单文件网页"},
    {"Most calls that the page holds", "网页最多包含的调用数"},
    {"Write a copy that can be sent away: no PINs, no hex texts of data",
     "写出可外发的副本：不含 PIN，不含数据的十六进制内容"},
    {"{1} is no thread id", "{1} 不是线程号"},
    {"{1} is no entry point of the provider", "{1} 不是提供者的入口函数"},
    {"Standard input can be read only once: use - with one of --json, --html and --redact",
     "标准输入只能读一次：- 只能与 --json、--html、--redact 之一同用"},
    {"Masking", "脱敏中"},
    {"Reading", "读取中"},
    {"Looking for errors", "查找错误"},
    {"{1} written, with secrets masked in {2} lines", "已写出 {1}，其中 {2} 行已脱敏"},
    {"{1} written; open it in a browser", "已写出 {1}；请用浏览器打开"},

    // the listing
    {"No line of this file is a trace line ({1} lines)", "此文件没有跟踪行（共 {1} 行）"},
    {"{1} lines, {2} calls on {3} threads, {4} to {5}",
     "{1} 行，{2} 次调用，{3} 个线程，{4} 至 {5}"},
    {"Lines that are no trace lines, shown as they are: {1}", "{1} 行不是跟踪行，按原样显示"},
    {"{1} calls were entered, but the log does not show that they returned",
     "{1} 次调用已进入，但日志中没有其返回"},
    {"The log's clock shows whole seconds: durations are right to within one second",
     "日志时钟以整秒计：耗时误差不超过一秒"},
    {"No durations: the log has no entry and exit lines (level 4 writes them); calls are told "
     "apart by the lines of their arguments",
     "没有耗时：日志没有进入和退出行（级别 4 才写）；按参数行区分各次调用"},
    {"Calls with errors", "出错的调用"},
    {"These calls in full", "这些调用的全文"},
    {"All calls", "全部调用"},
    {"... and {1} more", "……另有 {1} 个"},
    {"(line {1})", "（第 {1} 行）"},
    {"line {1}", "第 {1} 行"},
    {"({1} more lines and calls that are not shown)", "（另有 {1} 行或调用未显示）"},
    {"(inside a call that began before the log)", "（日志开始之前的调用之内）"},
    {"under 1 s", "不足 1 秒"},
    {"about {1} s", "约 {1} 秒"},
    {"did not return", "未返回"},
    {"began before the log", "始于日志之前"},

    // the page
    {"en", "zh-CN"},
    {"Trace of {1}", "{1} 的跟踪"},
    {"calls", "调用"},
    {"call", "调用"},
    {"with errors", "出错"},
    {"with warnings", "有警告"},
    {"threads", "线程"},
    {"lines", "行"},
    {"foreign lines", "非跟踪行"},
    {"error", "错误"},
    {"{1} errors", "{1} 个错误"},
    {"warning", "警告"},
    {"{1} warnings", "{1} 个警告"},
    {"{1} s", "{1} 秒"},
    {"{1} min", "{1} 分钟"},
    {"{1} h", "{1} 小时"},
    {"{1} days", "{1} 天"},
    {"Threads", "线程"},
    {"Thread", "线程"},
    {"Fit", "适应"},
    {"Within a second the bars follow the order of the lines; long silences (striped) are drawn "
     "short.",
     "同一秒内按行的先后排列；长时间的静默（斜纹）缩短显示。"},
    {"Show {1} more", "再显示 {1} 个"},
    {"{1} of {2} calls", "{2} 次调用中的 {1} 次"},
    {"{1} calls", "{1} 次调用"},
    {"This page holds {1} of {2} calls: those with errors first, then the latest others. Filter, "
     "or raise --limit, to see more.",
     "本页包含 {2} 次调用中的 {1} 次：先取出错的，再取最近的其他调用。如需更多，请筛选或提高 "
     "--limit。"},
    {"The log was filtered when this page was made.", "生成本页时对日志作了筛选。"},
    {"The log's clock shows whole seconds: durations are right to within one second.",
     "日志时钟以整秒计：耗时误差不超过一秒。"},
    {"No durations: the log has no entry and exit lines (level 4 writes them); calls are told "
     "apart by the lines of their arguments.",
     "没有耗时：日志没有进入和退出行（级别 4 才写）；按参数行区分各次调用。"},
    {"PINs, and hex texts other than certificates and public keys, are masked. Results are not in "
     "the log: a call counts as failed when it wrote an error line.",
     "PIN 以及除证书和公钥以外的十六进制内容均已隐去。日志不记返回值：写过错误行的调用算作出错。"},
    {"Calls with errors, or without an end ({1})", "出错或没有结束的调用（{1}）"},
    {"{1} more are in the list below", "另有 {1} 个在下面的列表中"},
    {"Entry point", "入口函数"},
    {"Calls", "调用次数"},
    {"With errors", "出错"},
    {"Longest", "最长"},
    {"Entry points in the whole log", "整个日志中的入口函数"},
    {"Lines that are no trace lines ({1})", "非跟踪行（{1}）"},
    {"Search calls, arguments, messages ( / )", "搜索调用、参数、消息（ / ）"},
    {"Unfold all", "全部展开"},
    {"Fold all", "全部折叠"},
    {"only failed", "只看出错的"},
    {"all threads", "所有线程"},
    {"thread {1}", "线程 {1}"},
    {"all entry points", "所有入口函数"},
    {"Light", "浅色"},
    {"Dark", "深色"},
};

} // namespace

std::span<const Translation> chineseTrace() {
    return TRACE_TEXTS;
}

} // namespace tembra::tool
