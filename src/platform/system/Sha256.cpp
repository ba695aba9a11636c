#include "platform/system/Sha256.h"

#include <array>
#include <new>
#include <openssl/evp.h>

namespace thntfs {

struct Sha256::State {
    // Fetched once: the library looks an algorithm up by its name.
    std::unique_ptr<EVP_MD, void (*)(EVP_MD*)> Kind{EVP_MD_fetch(nullptr, "SHA256", nullptr), EVP_MD_free};
    std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> Context{EVP_MD_CTX_new(), EVP_MD_CTX_free};

    void Begin() const {
        if (EVP_DigestInit_ex2(Context.get(), Kind.get(), nullptr) != 1) {
            throw std::bad_alloc();
        }
    }
};

Sha256::Sha256()
    : state_(std::make_unique<State>()) {
    state_->Begin();
}

Sha256::~Sha256() = default;

void Sha256::Add(ConstBytes bytes) { EVP_DigestUpdate(state_->Context.get(), bytes.data(), bytes.size()); }

std::string Sha256::Take() {
    std::array<std::uint8_t, 32> digest{};
    EVP_DigestFinal_ex(state_->Context.get(), digest.data(), nullptr);
    state_->Begin();
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : digest) {
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 15U];
    }
    return text;
}

} // namespace thntfs
