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
    explicit Hold(ProcessLock &lock) : lock_(&lock) { lock.acquire(ProcessLock::forever); }
    Hold(const Hold &) = delete;
    Hold &operator=(const Hold &) = delete;
    ~Hold() {
        if (lock_ != nullptr) {
            lock_->release();
        }
    }
    void keep() { lock_ = nullptr; }
    void removeFile() {
        lock_->releaseAndRemove();
        lock_ = nullptr;
    }

private:
    ProcessLock *lock_;
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

Token::Token(const store::Path &file) : file_(file), lock_(store::lockFile(file)) {}

Snapshot Token::current() {
    const std::lock_guard guard(imageMutex_);
    const auto head = store::readFile(file_, store::headSize);
    if (head && image_ && *head == head_) {
        return image_;
    }
    const auto text = head ? store::readFile(file_, std::numeric_limits<std::size_t>::max()) : head;
    if (!text) {
        image_.reset();
        throw Refused{SAR_DEVICE_REMOVED};
    }
    image_ = std::make_shared<const Image>(store::decodeImage(*text));
    head_ = text->substr(0, store::headSize);
    return image_;
}

Snapshot Token::lastSeen() {
    const std::lock_guard guard(imageMutex_);
    require(image_ != nullptr, SAR_DEVICE_REMOVED);
    return image_;
}

void Token::save(Image &image) {
    ++image.generation;
    const std::string text = store::encodeImage(image);
    store::replaceFile(file_, text);
    const std::lock_guard guard(imageMutex_);
    image_ = std::make_shared<const Image>(image);
    head_ = text.substr(0, store::headSize);
}

void Token::create(const Image &image) {
    const std::lock_guard guard(changing_);
    store::makePrivateDirectory(file_.parent_path());
    const Hold hold(lock_);
    require(!store::readFile(file_, 1).has_value(), SAR_FILE_ALREADY_EXIST);
    Image first = image;
    save(first);
}

void Token::remove() {
    (void)current();
    const std::lock_guard guard(changing_);
    Hold hold(lock_);
    store::removeFile(file_);
    hold.removeFile();
    const std::lock_guard imageGuard(imageMutex_);
    image_.reset();
}

Change::Change(Token &token) : token_(token), guard_(token.changing_) {
    (void)token.current(); // no lock file for a token that has gone
    Hold hold(token.lock());
    image_ = *token.current();
    usedBefore_ = usedSpace(image_);
    hold.keep();
}

Change::~Change() {
    token_.lock().release();
}

void Change::commit() {
    const std::uint64_t used = usedSpace(image_);
    require(used <= image_.totalSpace || used <= usedBefore_, SAR_NO_ROOM);
    token_.save(image_);
    usedBefore_ = used;
}

} // namespace tembra::token::model
