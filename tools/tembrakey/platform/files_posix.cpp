#include "tembrakey/platform/files.h"

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
