#include "tembrakey/platform/files.h"

#include <algorithm>
#include <ctime>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra::tool::platform {

std::FILE *openFile(const std::string &path, const char *mode) {
    return std::fopen(path.c_str(), mode);
}

long long position(std::FILE *stream) {
    return ftello(stream);
}

bool isReadable(const std::string &path) {
    return access(path.c_str(), R_OK) == 0;
}

bool isSpecialFile(const std::string &path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

// From the note that a linker can put into a library, {"type":...,"version":"1.0.0"}, or else from
// the name: libName.so.1.0.0.
std::string fileVersion(const std::string &path) {
    std::string bytes(std::size_t{1} << 16, '\0'); // notes stand at a file's beginning
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

std::string fileDate(const std::string &path) {
    struct stat status = {};
    struct tm day = {};
    char text[16];
    if (stat(path.c_str(), &status) != 0 || localtime_r(&status.st_mtime, &day) == nullptr)
        return {};
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d", &day));
}

FileState fileState(const std::string &path) {
    struct stat status = {};
    FileState state;
    state.exists = stat(path.c_str(), &status) == 0;
    const auto slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    state.isWritable = access(state.exists ? path.c_str() : folder.c_str(), W_OK) == 0;
    if (state.exists) {
        state.isRegular = S_ISREG(status.st_mode);
        state.othersMayRead = (status.st_mode & (S_IRGRP | S_IROTH)) != 0;
        state.size = status.st_size;
    }
    return state;
}

bool replaceFile(const std::string &from, const std::string &to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

void removeFile(const std::string &path) {
    std::remove(path.c_str());
}

std::string processNumber() {
    return std::to_string(getpid());
}

int readDescriptor(int descriptor, char *bytes, unsigned count) {
    return static_cast<int>(read(descriptor, bytes, count));
}

} // namespace tembra::tool::platform
