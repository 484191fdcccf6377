#include "token.h"

#include <cstdio>
#include <map>
#include <set>

#include "error.h"
#include "token/store/directory.h"
#include "token/store/token_json.h"

namespace tembra::token::model {

namespace {

// Holds the lock of a token within a block, or beyond it with keep().
class Hold {
public:
    explicit Hold(ProcessLock &lock) : m_lock(&lock) { lock.acquire(ProcessLock::FOREVER); }
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    ~Hold() {
        if (m_lock != nullptr)
            m_lock->release();
    }
    void keep() { m_lock = nullptr; }
    void removeFile() {
        m_lock->releaseAndRemove();
        m_lock = nullptr;
    }

private:
    ProcessLock *m_lock;
};

// Writes the message once for each file.
void reportOldFormat(const store::Path &file) {
    static std::mutex mutex;
    static std::set<store::Path> reported;
    const std::lock_guard guard(mutex);
    if (reported.insert(file).second)
        std::fprintf(
            stderr,
            "token file %s has an older format and cannot be read; remove the token with "
            "\"tembrakey token remove\" and create it again with \"tembrakey token create\"\n",
            file.string().c_str());
}

} // namespace

std::shared_ptr<Token> Token::named(const std::string &name) {
    static std::mutex &mutex =
        *new std::mutex; // never destroyed: calls may come while the process exits
    static auto &tokens = *new std::map<store::Path, std::weak_ptr<Token>>;
    const store::Path file = store::tokenFile(name);
    const std::lock_guard guard(mutex);
    std::erase_if(tokens, [](const auto &entry) { return entry.second.expired(); });
    std::weak_ptr<Token> &known = tokens[file];
    std::shared_ptr<Token> token = known.lock();
    if (!token) {
        token = std::make_shared<Token>(file);
        known = token;
    }
    return token;
}

std::shared_ptr<Token> Token::fromArgument(const char *name) {
    require(name != nullptr, SAR_INVALIDPARAMERR);
    require(store::isTokenName(name), SAR_DEVICE_REMOVED);
    return named(name);
}

Token::Token(const store::Path &file) : m_file(file), m_lock(store::lockFile(file)) {}

Snapshot Token::current() {
    const std::lock_guard guard(m_imageMutex);
    auto text = store::readFile(m_file);
    if (!text) {
        m_image.reset();
        throw Error{SAR_DEVICE_REMOVED};
    }
    if (!m_image || *text != m_text) {
        if (store::isOldFormat(*text))
            reportOldFormat(m_file);
        m_image = std::make_shared<const Image>(store::decodeImage(*text));
        m_text = std::move(*text);
    }
    return m_image;
}

void Token::save(const Image &image) {
    std::string text = store::encodeImage(image);
    store::replaceFile(m_file, text);
    const std::lock_guard guard(m_imageMutex);
    m_image = std::make_shared<const Image>(image);
    m_text = std::move(text);
}

void Token::create(const Image &image) {
    const std::lock_guard guard(m_changing);
    store::makePrivateDirectory(m_file.parent_path());
    const Hold hold(m_lock);
    require(!store::readFile(m_file).has_value(), SAR_FILE_ALREADY_EXIST);
    save(image);
}

void Token::remove() {
    require(store::readFile(m_file).has_value(), SAR_DEVICE_REMOVED); // of any format
    const std::lock_guard guard(m_changing);
    Hold hold(m_lock);
    store::removeFile(m_file);
    hold.removeFile();
    const std::lock_guard imageGuard(m_imageMutex);
    m_image.reset();
}

Change::Change(Token &token) : m_token(token), m_guard(token.m_changing) {
    (void)token.current(); // create no lock file for a missing token
    Hold hold(token.lock());
    m_image = *token.current();
    m_usedBefore = usedSpace(m_image);
    hold.keep();
}

Change::~Change() {
    m_token.lock().release();
}

void Change::commit() {
    const std::uint64_t used = usedSpace(m_image);
    require(used <= m_image.totalSpace || used <= m_usedBefore, SAR_NO_ROOM);
    m_token.save(m_image);
    m_usedBefore = used;
}

} // namespace tembra::token::model
