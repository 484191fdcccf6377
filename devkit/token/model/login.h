// The login of this process to an application. All handles of the application share it, and it ends
// with the last of them.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace tembra::token::model {

struct Login {
    std::atomic<bool> user{false};
    std::atomic<bool> admin{false};

    void clear() {
        user = false;
        admin = false;
    }
};

class Logins {
public:
    // application: identifies the application and the insertion of its token.
    std::shared_ptr<Login> enter(const std::string &application) {
        const std::lock_guard guard(m_mutex);
        Entry &entry = m_entries[application];
        if (!entry.login)
            entry.login = std::make_shared<Login>();
        ++entry.handles;
        return entry.login;
    }

    void leave(const std::string &application) {
        const std::lock_guard guard(m_mutex);
        const auto found = m_entries.find(application);
        if (found != m_entries.end() && --found->second.handles == 0) {
            found->second.login->clear();
            m_entries.erase(found);
        }
    }

private:
    struct Entry {
        std::shared_ptr<Login> login;
        unsigned handles = 0;
    };
    std::mutex m_mutex;
    std::map<std::string, Entry> m_entries;
};

} // namespace tembra::token::model
