// What the check found, in plain words.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace platform_check {

// Something that the platform does not do, or does in another way than the library relies on.
struct finding {
    std::string function;
    std::string sentence;
};

// A subject of the contract ("memory partition") and what was found in it.
struct chapter {
    std::string subject;
    std::vector<finding> findings;
    std::vector<std::string> notes; // what only a person can see
    std::uint32_t left_out = 0;     // further findings of functions that had their share
};

class report {
  public:
    void begin(const std::string &subject) { chapters_.push_back({subject, {}, {}, 0}); }

    // A function that is wrong in one place is mostly wrong in many: only its first findings are kept.
    void wrong(const std::string &function, const std::string &sentence);

    // Records a finding unless `holds`. Hands `holds` back.
    bool expect(bool holds, const std::string &function, const std::string &sentence);

    // Records a finding when `code` is not 0, the answer to an attempt at `doing`. True for 0.
    bool succeeds(std::uint32_t code, const std::string &function, const std::string &doing);

    void note(const std::string &sentence) { chapters_.back().notes.push_back(sentence); }

    const std::vector<chapter> &chapters() const { return chapters_; }
    std::uint32_t finding_num() const;
    bool mentions(const std::string &function) const;
    std::string text() const;

  private:
    std::vector<chapter> chapters_;
};

// "0x05090400"
std::string hex(std::uint32_t number);

} // namespace platform_check
