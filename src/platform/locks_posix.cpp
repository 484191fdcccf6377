#include "platform/locks.h"

#include <pthread.h>

namespace tembra::platform {

namespace {
pthread_mutex_t innermostLock = PTHREAD_MUTEX_INITIALIZER;

pthread_mutex_t *mutexIn(unsigned char *storage) {
    return reinterpret_cast<pthread_mutex_t *>(storage);
}
} // namespace

void CriticalSection::create() {
    static_assert(sizeof(pthread_mutex_t) <= sizeof(m_storage));
    if (m_made)
        return;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    m_made = pthread_mutex_init(mutexIn(m_storage), &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
}

void CriticalSection::remove() {
    if (!m_made)
        return;
    pthread_mutex_destroy(mutexIn(m_storage));
    m_made = false;
}

void CriticalSection::enter() {
    if (m_made)
        pthread_mutex_lock(mutexIn(m_storage));
}

void CriticalSection::leave() {
    if (m_made)
        pthread_mutex_unlock(mutexIn(m_storage));
}

void enterInnermostLock() {
    pthread_mutex_lock(&innermostLock);
}

void leaveInnermostLock() {
    pthread_mutex_unlock(&innermostLock);
}

} // namespace tembra::platform
