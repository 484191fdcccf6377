// The provider's trace log, to which the benchmarks also write directly. It is in the temporary
// directory, as a trace log is by default, and is removed at the end of the process.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace tembra::bench {

inline constexpr char LEVEL_VARIABLE[] = "TEMBRA_KEY_PROV_LOG_LEVEL";

class TraceFile {
public:
    // Must be called before the provider writes a line.
    static const TraceFile &instance() {
        static const TraceFile file;
        return file;
    }
    ~TraceFile() { std::filesystem::remove(m_path); }

    // Sets the level and empties the file, so that no benchmark pays for a large one.
    void begin(const char *level) const {
        setLevel(level);
        require(ftruncate(m_descriptor, 0) == 0);
    }
    void write(const std::string_view &text) const {
        require(::write(m_descriptor, text.data(), text.size()) ==
                static_cast<ssize_t>(text.size()));
    }
    // The lines since the file was emptied, with their line ends.
    std::vector<std::string> lines() const {
        std::ifstream file(m_path, std::ios::binary);
        std::vector<std::string> found;
        for (std::string line; std::getline(file, line);)
            found.push_back(line + (file.eof() ? "" : "\n"));
        return found;
    }

    // Sets the level from the next trace statement on; null unsets the variable.
    static void setLevel(const char *level) {
        if (level)
            setenv(LEVEL_VARIABLE, level, 1);
        else
            unsetenv(LEVEL_VARIABLE);
    }

private:
    TraceFile() {
        require(m_descriptor >= 0);
        setenv("TEMBRA_KEY_PROV_LOG_PATH", m_path.c_str(), 1);
    }
    void require(bool done) const {
        if (!done) {
            std::perror(m_path.c_str());
            std::exit(1);
        }
    }

    std::string m_path = std::filesystem::temp_directory_path() / "tembra_bench_XXXXXX";
    int m_descriptor = mkostemp(m_path.data(), O_APPEND | O_CLOEXEC);
};

} // namespace tembra::bench
