// A token as this process sees it, and atomic changes to it.
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
    // The one object of this process for the token of this name in the current directory.
    static std::shared_ptr<Token> named(const std::string &name);

    // As named(), for the argument of a control function. Error(SAR_INVALIDPARAMERR) if it is null,
    // Error(SAR_DEVICE_REMOVED) if it is not the name of a token.
    static std::shared_ptr<Token> fromArgument(const char *name);

    explicit Token(const store::Path &file);

    // The token as stored now. Error(SAR_DEVICE_REMOVED) if its file is missing.
    Snapshot current();

    ProcessLock &lock() { return m_lock; }
    Logins &logins() { return m_logins; }

    // Stores a new token; Error(SAR_FILE_ALREADY_EXIST) if there is one of that name.
    void create(const Image &image);
    void remove();

private:
    friend class Change;
    void save(const Image &image);

    const store::Path m_file;
    ProcessLock m_lock;
    Logins m_logins;
    std::mutex m_changing; // one change at a time in this process
    std::mutex m_imageMutex;
    Snapshot m_image;   // null: not read yet, or removed
    std::string m_text; // the file that m_image was read from
};

// A change to a token, made on a copy of its image. It excludes other changes, also of other
// processes, for as long as it exists.
class Change {
public:
    explicit Change(Token &token); // waits for the token without a time limit
    Change(const Change &) = delete;
    Change &operator=(const Change &) = delete;
    ~Change();

    Image &image() { return m_image; }

    // Stores the image; may be called again after further changes. Error(SAR_NO_ROOM) if the
    // token has too little space.
    void commit();

private:
    Token &m_token;
    const std::lock_guard<std::mutex> m_guard;
    Image m_image;
    std::uint64_t m_usedBefore = 0;
};

} // namespace tembra::token::model
