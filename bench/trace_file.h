// The provider's trace, and a file beside it for what is compared with it.
#pragma once

#include <string>
#include <vector>

namespace tembra::bench {

// What TEMBRA_KEY_PROV_LOG_LEVEL says from the next trace statement on; null unsets it.
void setLevel(const char *level);

// Both files lie in the temporary directory, where a trace lies by default, and go with the
// process.
class TraceFiles {
public:
    // The first use points the provider's trace at its file; no line may have been written before.
    static TraceFiles &instance();
    ~TraceFiles();

    // Sets the level for a batch and empties both, so that no batch pays for a large file.
    void begin(const char *level) const;
    // One write to the other file.
    void write(const char *text, std::size_t size) const;
    std::size_t written() const; // to the other file since the files were emptied
    // The provider's lines since the files were emptied, each with its end.
    std::vector<std::string> lines() const;

private:
    TraceFiles();

    std::string directory;
    std::string tracePath;
    std::string otherPath;
    int other;
};

} // namespace tembra::bench
