// What the kit needs of the operating system. Texts are UTF-8.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tembra::fault_injection {

// The value of an environment variable; nothing if it is unset or empty.
std::optional<std::string> environment(const char *name);

inline std::filesystem::path pathFromUtf8(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

// The operating system's number of the calling thread.
std::uint64_t threadNumber();

// A file to which several threads and processes append, each piece in one write. Only its owner has
// access. A piece that cannot be written is lost.
class AppendFile {
public:
    explicit AppendFile(const std::string &path);
    AppendFile(const AppendFile &) = delete;
    AppendFile &operator=(const AppendFile &) = delete;
    ~AppendFile();

    bool isOpen() const;
    void append(std::string_view piece) noexcept;

private:
    std::intptr_t m_handle;
};

} // namespace tembra::fault_injection
