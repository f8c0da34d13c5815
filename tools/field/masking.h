// Masks: what stands for a secret in a file that leaves the device.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace field {

// Turns a secret into a token of the same length, lower-case letters and digits, under a key that is drawn
// for each object and kept nowhere else. The same secret gives the same token under one key, so that keys
// still join; without the key a token tells nothing but the length.
class masking {
  public:
    // Draws the key from the system.
    masking();

    // False where the system gave no random bytes: then every token is made of one character.
    bool has_key() const { return has_key_; }

    // Masks bytes in place. A zero byte stays: what ends a text for the library goes on ending it.
    void mask(void *bytes, std::size_t size) const;

  private:
    void mask_text(std::uint8_t *text, std::size_t length) const;

    std::array<std::uint64_t, 2> key_{};
    bool has_key_ = false;
};

} // namespace field
