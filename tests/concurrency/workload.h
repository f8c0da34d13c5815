// What several threads or processes do to one store at once, and what must hold in every answer:
//
//  - a name is "AAA|AAA": one letter, repeated as often as the letter says, twice; so a mixture of two shows;
//  - persons have one writer, which takes one away at a time and puts it back: no two have the same number;
//  - counters have one writer each and only grow, as every reader sees them.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <string>

namespace test {

constexpr std::uint32_t workload_departments = 20;
constexpr std::uint32_t workload_persons = 8;
constexpr std::uint32_t workload_writers = 4;

// Fills the store that is open.
void prepare_workload();

// The name that belongs to a letter, 0 to 25; and whether a text is one of them.
std::string paired_name(std::uint32_t letter);
bool is_paired_name(const std::string &text);

// Each step is one statement, and a test failure when it is refused.
class workload_writer {
  public:
    // `number` from 0 to workload_writers - 1; no two at once with the same number.
    workload_writer(std::uint32_t number, std::uint32_t seed);

    void step();

  private:
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(engine_()) % bound; }
    void rename_department();
    void replace_person();
    void count_up();
    void count_edit();

    std::uint32_t number_;
    std::mt19937 engine_;
    std::uint32_t counter_;
    std::uint32_t edits_;
};

class workload_reader {
  public:
    explicit workload_reader(std::uint32_t seed) : engine_(seed) {}

    void step();

  private:
    void read_departments();
    void read_persons();
    void read_counters();
    void read_linked();
    void read_count();

    std::mt19937 engine_;
    std::array<std::uint32_t, workload_writers> counters_{};
    std::uint32_t edits_ = 0;
};

// Every invariant once, and every lock that the workload takes.
void check_workload();

} // namespace test
