// A token of this process: its current image, and changes to it that no other process and no kill
// can come between.
#pragma once

#include "image.h"
#include "login.h"
#include "process_lock.h"

#include "token/store/file_system.h"

#include <memory>
#include <mutex>
#include <string>

namespace tembra::token::model {

using Snapshot = std::shared_ptr<const Image>;

class Token {
public:
    // The process's one object for the token of this name in the current directory of tokens.
    static std::shared_ptr<Token> named(const std::string &name);

    explicit Token(const store::Path &file);

    // The token as it is on the disk now; cheap while it hasn't changed. Throws
    // Refused(SAR_DEVICE_REMOVED) when its file has gone.
    Snapshot current();
    // The token as this process has last seen it, without a look at the disk.
    Snapshot lastSeen();

    ProcessLock &lock() { return m_lock; }
    Logins &logins() { return m_logins; }

    // Writes a new token; throws Refused(SAR_FILE_ALREADY_EXIST) when there is one of that name.
    void create(const Image &image);
    void remove();

private:
    friend class Change;
    void save(Image &image);

    const store::Path m_file;
    ProcessLock m_lock;
    Logins m_logins;
    std::mutex m_changing; // one change at a time in this process
    std::mutex m_imageMutex;
    Snapshot m_image;   // null: none seen yet, or gone
    std::string m_head; // the beginning of the file that image_ was read from
};

// A change in the making. It holds the token against other processes and other changes of this one,
// and works on a copy of the image: what isn't committed never was.
class Change {
public:
    explicit Change(Token &token); // waits for as long as it takes
    Change(const Change &) = delete;
    Change &operator=(const Change &) = delete;
    ~Change();

    Image &image() { return m_image; }

    // Makes the image lasting. May be called again after further changes. Throws
    // Refused(SAR_NO_ROOM) when the change needs more space than the token has.
    void commit();

private:
    Token &m_token;
    const std::lock_guard<std::mutex> m_guard;
    Image m_image;
    std::uint64_t m_usedBefore = 0;
};

} // namespace tembra::token::model
