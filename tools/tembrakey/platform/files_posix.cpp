#include "tembrakey/platform/files.h"

#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra::tool::platform {

const bool HAS_FILE_MODES = true;

namespace {

char interruptedFile[4096]; // the handler may not call into std::string

void removeInterrupted(int signal) {
    if (interruptedFile[0] != '\0')
        unlink(interruptedFile);
    raise(signal); // SA_RESETHAND restored its default
}

} // namespace

std::FILE *openFile(const std::string &path, const char *mode) {
    return std::fopen(path.c_str(), mode);
}

std::FILE *createFile(const std::string &path, bool secret) {
    const int file =
        open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, secret ? 0600 : 0666);
    return file < 0 ? nullptr : fdopen(file, "wb");
}

void removeOnInterrupt(const std::string &path) {
    interruptedFile[0] = '\0';
    if (path.empty() || path.size() >= sizeof interruptedFile)
        return;
    struct sigaction action = {};
    action.sa_handler = removeInterrupted;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_NODEFER);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        if (sigaction(signal, nullptr, &before) == 0 && before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
    std::memcpy(interruptedFile, path.c_str(), path.size() + 1);
}

void removeOpenFile(const std::string &path) {
    unlink(path.c_str());
}

long long position(std::FILE *stream) {
    return ftello(stream);
}

bool isReadable(const std::string &path) {
    return access(path.c_str(), R_OK) == 0;
}

bool isWritable(const std::string &path) {
    return access(path.c_str(), W_OK) == 0;
}

// From the note that a linker can put into a library, {"type":...,"version":"1.0.0"}, or else from
// the name: libName.so.1.0.0.
std::string fileVersion(const std::string &path) {
    std::string bytes(std::size_t{1} << 16, '\0'); // notes are at the beginning of a file
    bytes.resize(
        static_cast<std::size_t>(std::ifstream(path, std::ios::binary)
                                     .read(bytes.data(), static_cast<std::streamsize>(bytes.size()))
                                     .gcount()));
    constexpr std::string_view key = "\"version\":\"";
    const auto note = bytes.find("{\"type\":\"");
    const auto end = bytes.find('}', note);
    const auto at = note == bytes.npos ? note : bytes.find(key, note);
    if (at < end && end != bytes.npos) {
        const auto begin = at + key.size();
        return bytes.substr(begin, std::min(bytes.find('"', begin), end) - begin);
    }
    const auto suffix = path.rfind(".so.");
    return suffix == path.npos ? std::string() : path.substr(suffix + 4);
}

std::string processNumber() {
    return std::to_string(getpid());
}

} // namespace tembra::tool::platform
