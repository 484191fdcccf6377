// What the door needs of the operating system. Texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tembra::door {

// The value of an environment variable; empty when it is not set.
std::optional<std::string> environmentVariable(const char *name);

// The operating system's number of the calling thread.
std::uint64_t threadNumber();

// A file that is only appended to, each piece whole, also beside other processes. Created with
// access for its owner only.
class AppendFile {
public:
    explicit AppendFile(const std::string &path);
    AppendFile(const AppendFile &) = delete;
    AppendFile &operator=(const AppendFile &) = delete;
    ~AppendFile();

    bool isOpen() const;
    // One write; what cannot be written is lost. May be called by several threads at once.
    void append(std::string_view piece) noexcept;

private:
    std::intptr_t m_handle;
};

} // namespace tembra::door
