#include "tembrakey/commands/cipher.h"

#include "tembrakey/io/files.h"
#include "tembrakey/io/stream.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

// The cipher handle between two files. What does not fill a block waits for the end; so does the
// last decrypted block when it ends in padding.
class CipherJob {
public:
    CipherJob(const Device &device, const CipherOptions &options, bool encrypt, OutputFile &out);

    void take(crypto::ByteView piece);
    void finish();
    std::uint64_t written() const { return m_written; }

private:
    void transform(crypto::ByteView blocks);
    void write(crypto::ByteView bytes);
    void removePadding();

    const Session &m_session;
    bool m_encrypt;
    bool m_padded;
    OutputFile &m_out;
    Cipher m_cipher;
    crypto::SecretBytes m_tail; // an unfinished block of input
    crypto::SecretBytes m_held; // the last block of output, when decrypting with padding
    std::uint64_t m_written = 0;
};

[[noreturn]] void refuseLength() {
    throw Failure(ExitCode::usage, tr("the length of the input is not a multiple of 16 bytes (use "
                                      "--pad with encrypt and decrypt)"));
}

SPI_CIPHER_HANDLE newCipher(const Device &device, const CipherOptions &options, bool encrypt) {
    const crypto::SecretBytes key = options.key();
    const crypto::Bytes iv = options.iv();
    const WithoutSecrets guard;
    const SPI_CIPHER_HANDLE handle = device.session()->DeviceNewCipher(
        device.get(), encrypt ? 1 : 0, options.algorithm(), key.data(),
        static_cast<int>(key.size()), iv.empty() ? nullptr : iv.data());
    if (handle == nullptr)
        refuseNull("DeviceNewCipher", tr("the token may not have this cipher (see caps)"));
    return handle;
}

CipherJob::CipherJob(const Device &device, const CipherOptions &options, bool encrypt,
                     OutputFile &out)
    : m_session(device.session()), m_encrypt(encrypt), m_padded(options.padded()), m_out(out),
      m_cipher(m_session, newCipher(device, options, encrypt)) {}

void CipherJob::write(crypto::ByteView bytes) {
    m_out.write(bytes);
    m_written += bytes.size();
}

void CipherJob::transform(crypto::ByteView blocks) {
    if (blocks.empty())
        return;
    crypto::SecretBytes result(blocks.size());
    int length = 0;
    check("DeviceCipherUpdate", m_session->DeviceCipherUpdate(
                                    m_cipher.get(), blocks.data(), static_cast<int>(blocks.size()),
                                    result.data(), static_cast<int>(result.size()), &length));
    if (m_encrypt || !m_padded)
        return write(result);
    write(m_held);
    const auto last = result.end() - BLOCK_SIZE;
    write({result.data(), result.size() - BLOCK_SIZE});
    m_held.assign(last, result.end());
}

void CipherJob::take(crypto::ByteView piece) {
    const std::size_t whole = piece.size() - piece.size() % BLOCK_SIZE; // short only at the end
    transform(piece.first(whole));
    m_tail.assign(piece.begin() + static_cast<std::ptrdiff_t>(whole), piece.end());
}

void CipherJob::removePadding() {
    const std::size_t count = m_held.empty() ? 0 : m_held.back();
    bool good = count >= 1 && count <= BLOCK_SIZE;
    for (std::size_t i = 0; good && i < count; ++i)
        good = m_held[BLOCK_SIZE - 1 - i] == count;
    if (!good)
        throw Failure(ExitCode::usage, tr("the padding is wrong: another key, IV or mode?"));
    write({m_held.data(), BLOCK_SIZE - count});
}

void CipherJob::finish() {
    if (m_encrypt && m_padded) {
        const auto count = static_cast<std::uint8_t>(BLOCK_SIZE - m_tail.size());
        m_tail.insert(m_tail.end(), count, count);
        transform(m_tail);
        return;
    }
    if (!m_tail.empty())
        refuseLength();
    if (m_padded)
        removePadding();
}

} // namespace

std::uint64_t runCipher(const Device &device, const CipherOptions &options, bool encrypt,
                        const std::string &input, const std::string &output) {
    const bool whole = !encrypt || !options.padded(); // blocks only
    if (whole && InputFile(input).size().value_or(0) % BLOCK_SIZE != 0)
        refuseLength();
    OutputFile file(output, encrypt ? Access::usual : Access::owner);
    CipherJob job(device, options, encrypt, file);
    forEachPiece(input, encrypt ? tr("Encrypting") : tr("Decrypting"),
                 [&](crypto::ByteView piece) { job.take(piece); });
    job.finish();
    file.commit();
    return job.written();
}

} // namespace tembra::tool
