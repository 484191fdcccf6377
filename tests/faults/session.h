// A host that plays a scenario up to the first entry point that fails, and then frees everything.
#pragma once

#include "secret_watch.h"

#include "../support/scripted_token.h"

#include "../../src/provider/records.h"
#include "tembra_key_prov.h"

#include <set>
#include <string>

namespace tembra::test {

struct Step {
    std::string entry;                // the entry point
    int result;                       // 1 if an entry point returned a handle
    std::size_t callsBegin, callsEnd; // in the journal
};

class Session {
public:
    // Thrown when a step fails.
    struct Ended {};

    explicit Session(SecretWatch *watch = nullptr)
        : m_watch(watch), m_callsBegin(script().journal.size()) {}
    // Frees all handles.
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // Records the result of an entry point; the scenario continues if it is 1.
    void did(const std::string &entry, int result);
    // The same for an entry point that returns bytes, first asked for their number.
    template <typename Ask>
    Bytes got(const std::string &entry, Ask ask) {
        int length = 0;
        did(entry, ask(static_cast<unsigned char *>(nullptr), 0, &length));
        Bytes bytes(static_cast<std::size_t>(length));
        did(entry, ask(bytes.data(), length, &length));
        bytes.resize(static_cast<std::size_t>(length));
        return bytes;
    }

    void discover(int index = 0);
    SPI_KEYPAIR_HANDLE find(const char *label, int type);
    void keep(const std::string &entry, SPI_KEYPAIR_HANDLE pair, int result);
    void keepHash(SPI_HASH_HANDLE hash);
    void keepCipher(SPI_CIPHER_HANDLE cipher);
    // If it succeeds, also records what stays in memory by contract.
    void deletePair(SPI_KEYPAIR_HANDLE pair);

    const std::vector<Step> &steps() const { return m_steps; }
    const Step *failed() const;
    std::set<std::string> entries{}; // all that were called

    SPI_DEVICESET_HANDLE set = nullptr;
    SPI_DEVICE_HANDLE device = nullptr;

    // The records that stay after a deletion.
    struct Kept {
        TembraDevice *device = nullptr;
        TembraContainer *container = nullptr;
    };
    // Outlives the session.
    static Kept &kept();
    static void freeKept();

private:
    SecretWatch *m_watch;
    std::vector<Step> m_steps;
    std::size_t m_callsBegin;
    std::vector<SPI_KEYPAIR_HANDLE> m_pairs;
    SPI_HASH_HANDLE m_hash = nullptr;
    SPI_CIPHER_HANDLE m_cipher = nullptr;
};

} // namespace tembra::test
