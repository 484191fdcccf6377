#include "token.h"

#include "refused.h"

#include "token/store/directory.h"
#include "token/store/token_json.h"

#include <limits>
#include <map>

namespace tembra::token::model {

namespace {

// Releases the lock of a change that could not begin.
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

} // namespace

std::shared_ptr<Token> Token::named(const std::string &name) {
    static std::mutex &mutex = *new std::mutex; // calls may come until the very end of the process
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

Token::Token(const store::Path &file) : m_file(file), m_lock(store::lockFile(file)) {}

Snapshot Token::current() {
    const std::lock_guard guard(m_imageMutex);
    const auto head = store::readFile(m_file, store::HEAD_SIZE);
    if (head && m_image && *head == m_head)
        return m_image;
    const auto text =
        head ? store::readFile(m_file, std::numeric_limits<std::size_t>::max()) : head;
    if (!text) {
        m_image.reset();
        throw Refused{SAR_DEVICE_REMOVED};
    }
    m_image = std::make_shared<const Image>(store::decodeImage(*text));
    m_head = text->substr(0, store::HEAD_SIZE);
    return m_image;
}

Snapshot Token::lastSeen() {
    const std::lock_guard guard(m_imageMutex);
    require(m_image != nullptr, SAR_DEVICE_REMOVED);
    return m_image;
}

void Token::save(Image &image) {
    ++image.generation;
    const std::string text = store::encodeImage(image);
    store::replaceFile(m_file, text);
    const std::lock_guard guard(m_imageMutex);
    m_image = std::make_shared<const Image>(image);
    m_head = text.substr(0, store::HEAD_SIZE);
}

void Token::create(const Image &image) {
    const std::lock_guard guard(m_changing);
    store::makePrivateDirectory(m_file.parent_path());
    const Hold hold(m_lock);
    require(!store::readFile(m_file, 1).has_value(), SAR_FILE_ALREADY_EXIST);
    Image first = image;
    save(first);
}

void Token::remove() {
    (void)current();
    const std::lock_guard guard(m_changing);
    Hold hold(m_lock);
    store::removeFile(m_file);
    hold.removeFile();
    const std::lock_guard imageGuard(m_imageMutex);
    m_image.reset();
}

Change::Change(Token &token) : m_token(token), m_guard(token.m_changing) {
    (void)token.current(); // no lock file for a token that has gone
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
