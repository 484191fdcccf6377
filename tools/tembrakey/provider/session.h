// The provider in use, and handles that free themselves.
#pragma once

#include <string>
#include <utility>

#include "tembrakey/provider/private_trace.h"
#include "tembrakey/provider/provider.h"

namespace tembra::tool {

// From DeviceInit to DeviceEnd; all handles must be freed before its end.
class Session {
public:
    // path as ProviderLibrary takes it. Throws Failure.
    explicit Session(const std::string &path);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    const Provider *operator->() const { return &m_library.entryPoints(); }

private:
    PrivateTrace m_trace;
    ProviderLibrary m_library;
};

// A handle that is freed by its DeviceFree... entry point.
template <typename H, int (*Provider::*Free)(H)>
class Owned {
public:
    Owned(const Session &session, H handle) : m_session(&session), m_handle(handle) {}
    Owned(Owned &&other) noexcept
        : m_session(other.m_session), m_handle(std::exchange(other.m_handle, nullptr)) {}
    Owned &operator=(Owned &&other) noexcept {
        std::swap(m_session, other.m_session);
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Owned() {
        if (m_handle != nullptr)
            ((*m_session).operator->()->*Free)(m_handle);
    }

    H get() const { return m_handle; }
    explicit operator bool() const { return m_handle != nullptr; }
    const Session &session() const { return *m_session; }

private:
    const Session *m_session;
    H m_handle;
};

using DeviceSet = Owned<SPI_DEVICESET_HANDLE, &Provider::DeviceFreeDevices>;
using Device = Owned<SPI_DEVICE_HANDLE, &Provider::DeviceFreeDevice>;
using KeyPair = Owned<SPI_KEYPAIR_HANDLE, &Provider::DeviceFreeKeypair>;
using PublicKeyHandle = Owned<SPI_PUBLICKEY_HANDLE, &Provider::DeviceFreePublicKey>;
using Hash = Owned<SPI_HASH_HANDLE, &Provider::DeviceFreeHash>;
using Cipher = Owned<SPI_CIPHER_HANDLE, &Provider::DeviceFreeCipher>;

} // namespace tembra::tool
