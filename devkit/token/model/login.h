// Who is logged in to an application, as this process sees it. All handles of one application share
// it, and it ends with the last of them.
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
    // application: its id and what else tells one session from another.
    std::shared_ptr<Login> enter(const std::string &application) {
        const std::lock_guard guard(mutex_);
        Entry &entry = entries_[application];
        if (!entry.login) {
            entry.login = std::make_shared<Login>();
        }
        ++entry.handles;
        return entry.login;
    }

    void leave(const std::string &application) {
        const std::lock_guard guard(mutex_);
        const auto found = entries_.find(application);
        if (found != entries_.end() && --found->second.handles == 0) {
            found->second.login->clear();
            entries_.erase(found);
        }
    }

private:
    struct Entry {
        std::shared_ptr<Login> login;
        unsigned handles = 0;
    };
    std::mutex mutex_;
    std::map<std::string, Entry> entries_;
};

} // namespace tembra::token::model
