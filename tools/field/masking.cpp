// Tokens are drawn from a keyed hash of the secret (SipHash-2-4), one hash for every few characters.
#include "tools/field/masking.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

namespace field {

namespace {

constexpr char letters[] = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::uint64_t letter_num = sizeof letters - 1;
constexpr std::size_t letters_of_a_hash = 8; // far fewer than 64 bits could give: no letter is likelier
constexpr char without_key = 'x';

std::uint64_t rotated(std::uint64_t value, unsigned bits) {
    return (value << bits) | (value >> (64 - bits));
}

// The first bytes of a text as a number, whatever the machine's order.
std::uint64_t load(const std::uint8_t *bytes, std::size_t num) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < num; ++i) {
        value |= std::uint64_t{bytes[i]} << (8 * i);
    }
    return value;
}

class sip_hash {
  public:
    sip_hash(std::uint64_t key0, std::uint64_t key1)
        : v0_(key0 ^ 0x736f6d6570736575), v1_(key1 ^ 0x646f72616e646f6d), v2_(key0 ^ 0x6c7967656e657261),
          v3_(key1 ^ 0x7465646279746573) {}

    void add(std::uint64_t word) {
        constexpr int rounds = 2;
        v3_ ^= word;
        mix(rounds);
        v0_ ^= word;
    }

    std::uint64_t end() {
        constexpr int rounds = 4;
        v2_ ^= 0xFF;
        mix(rounds);
        return v0_ ^ v1_ ^ v2_ ^ v3_;
    }

  private:
    void mix(int rounds) {
        for (; rounds > 0; --rounds) {
            v0_ += v1_;
            v2_ += v3_;
            v1_ = rotated(v1_, 13) ^ v0_;
            v3_ = rotated(v3_, 16) ^ v2_;
            v0_ = rotated(v0_, 32);
            v2_ += v1_;
            v0_ += v3_;
            v1_ = rotated(v1_, 17) ^ v2_;
            v3_ = rotated(v3_, 21) ^ v0_;
            v2_ = rotated(v2_, 32);
        }
    }

    std::uint64_t v0_, v1_, v2_, v3_;
};

std::uint64_t hash(const std::array<std::uint64_t, 2> &key, std::uint64_t part, const std::uint8_t *text,
                   std::size_t length) {
    sip_hash hash(key[0] ^ part, key[1]);
    std::size_t done = 0;
    for (; length - done >= 8; done += 8) {
        hash.add(load(text + done, 8));
    }
    hash.add(load(text + done, length - done) | (std::uint64_t{length & 0xFF} << 56));
    return hash.end();
}

bool draw(void *bytes, std::size_t size) {
    const int file = ::open("/dev/urandom", O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return false;
    }
    const bool is_whole = ::read(file, bytes, size) == static_cast<ssize_t>(size);
    ::close(file);
    return is_whole;
}

} // namespace

masking::masking() : has_key_(draw(key_.data(), sizeof key_)) {}

void masking::mask(void *bytes, std::size_t size) const {
    auto *const text = static_cast<std::uint8_t *>(bytes);
    for (std::size_t from = 0; from < size;) {
        if (text[from] == 0) {
            ++from;
            continue;
        }
        const void *const end = std::memchr(text + from, 0, size - from);
        const std::size_t to =
            end == nullptr ? size : static_cast<std::size_t>(static_cast<const std::uint8_t *>(end) - text);
        mask_text(text + from, to - from);
        from = to;
    }
}

// The secret is hashed once, and the letters are drawn from hashes of that number and of their place.
void masking::mask_text(std::uint8_t *text, std::size_t length) const {
    if (!has_key_) {
        std::memset(text, without_key, length);
        return;
    }
    const std::uint64_t seed = hash(key_, 0, text, length);
    for (std::size_t i = 0; i < length; i += letters_of_a_hash) {
        const std::uint64_t words[] = {seed, i};
        std::array<std::uint8_t, sizeof words> bytes{};
        for (std::size_t b = 0; b < bytes.size(); ++b) {
            bytes[b] = static_cast<std::uint8_t>(words[b / 8] >> (8 * (b % 8)));
        }
        std::uint64_t drawn = hash(key_, 1, bytes.data(), bytes.size());
        for (std::size_t l = i; l < length && l < i + letters_of_a_hash; ++l, drawn /= letter_num) {
            text[l] = static_cast<std::uint8_t>(letters[drawn % letter_num]);
        }
    }
}

} // namespace field
