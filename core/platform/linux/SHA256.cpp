#include "platform/SHA256.h"

#include <openssl/evp.h>

#include <cstdio>
#include <cstdlib>

namespace vostrel {

namespace {

/// A library that cannot digest says nothing true about any file.
void require(bool works) {
    if (works) return;
    std::fputs("Vostrel stopped: the system's SHA-256 does not work.\n", stderr);
    std::abort();
}

}  // namespace

struct SHA256::State {
    State() : context(EVP_MD_CTX_new()) { begin(); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { EVP_MD_CTX_free(context); }

    void begin() const { require(context != nullptr && EVP_DigestInit_ex(context, EVP_sha256(), nullptr) == 1); }

    EVP_MD_CTX* context;
};

SHA256::SHA256() : state(std::make_unique<State>()) {}

SHA256::~SHA256() = default;

void SHA256::update(std::span<const std::byte> bytes) {
    require(EVP_DigestUpdate(state->context, bytes.data(), bytes.size()) == 1);
}

SHA256Digest SHA256::finish() {
    SHA256Digest digest;
    unsigned length = 0;
    require(EVP_DigestFinal_ex(state->context, digest.bytes.data(), &length) == 1 && length == digest.bytes.size());
    state->begin();
    return digest;
}

}  // namespace vostrel
