#include "platform.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra::fault_injection {

std::optional<std::string> environment(const char *name) {
    const char *value = std::getenv(name);
    return value != nullptr && *value != '\0' ? std::optional(std::string(value)) : std::nullopt;
}

std::uint64_t threadNumber() {
    return static_cast<std::uint64_t>(::gettid());
}

AppendFile::AppendFile(const std::string &path)
    : m_handle(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR)) {
}

AppendFile::~AppendFile() {
    if (isOpen())
        ::close(static_cast<int>(m_handle));
}

bool AppendFile::isOpen() const {
    return m_handle >= 0;
}

void AppendFile::append(std::string_view piece) noexcept {
    [[maybe_unused]] const auto written =
        ::write(static_cast<int>(m_handle), piece.data(), piece.size());
}

} // namespace tembra::fault_injection
