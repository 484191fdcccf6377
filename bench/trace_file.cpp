#include "trace_file.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace tembra::bench {

void setLevel(const char *level) {
    if (level)
        setenv("TEMBRA_KEY_PROV_LOG_LEVEL", level, 1);
    else
        unsetenv("TEMBRA_KEY_PROV_LOG_LEVEL");
}

TraceFiles &TraceFiles::instance() {
    static TraceFiles files;
    return files;
}

TraceFiles::TraceFiles() {
    directory = (std::filesystem::temp_directory_path() / "tembra_bench_XXXXXX").string();
    if (!mkdtemp(directory.data())) {
        std::perror(directory.c_str());
        std::exit(1);
    }
    tracePath = directory + "/trace.log";
    otherPath = directory + "/other.log";
    other = open(otherPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    setenv("TEMBRA_KEY_PROV_LOG_PATH", tracePath.c_str(), 1);
}

TraceFiles::~TraceFiles() {
    close(other);
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

void TraceFiles::begin(const char *level) const {
    setLevel(level);
    for (const std::string &path : {tracePath, otherPath}) {
        std::error_code ignored; // the trace is not there before the first line
        std::filesystem::resize_file(path, 0, ignored);
    }
}

void TraceFiles::write(const char *text, std::size_t size) const {
    if (::write(other, text, size) != static_cast<ssize_t>(size)) {
        std::perror(otherPath.c_str());
        std::exit(1);
    }
}

std::size_t TraceFiles::written() const {
    return std::filesystem::file_size(otherPath);
}

std::vector<std::string> TraceFiles::lines() const {
    std::ifstream file(tracePath, std::ios::binary);
    std::vector<std::string> found;
    for (std::string line; std::getline(file, line);)
        found.push_back(line + (file.eof() ? "" : "\n"));
    return found;
}

} // namespace tembra::bench
