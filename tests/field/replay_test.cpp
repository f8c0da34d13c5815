// The replay's judgement: the kept recordings agree with the library, and each kind of change is noticed and
// told.
#include "tools/field/replay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "tools/files/whole_file.h"

namespace {

using field::recorded_call;
using field::recording;
using field::verdict;

constexpr std::size_t size_max = std::size_t{16} * 1024 * 1024;

std::vector<std::string> kept_files() {
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::directory_iterator(FIELD_RECORDINGS)) {
        if (entry.path().extension() == ".rec") {
            files.push_back(entry.path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

std::string file_of(const std::string &name) {
    return qryfiles::read_file(std::string(FIELD_RECORDINGS) + "/" + name, size_max);
}

class replays : public testing::Test {
  protected:
    recording recorded = field::read_recording(file_of("mix.rec"));

    // The first call of a kind that has an event of a service.
    recorded_call &call_with(field::service_number service, std::size_t &place) {
        for (recorded_call &call : recorded.calls) {
            for (place = 0; place < call.events.size(); ++place) {
                if (!call.events[place].is_trace && call.events[place].call.service == service) {
                    return call;
                }
            }
        }
        throw std::runtime_error("there is no such call");
    }
    recorded_call &query_with(const std::string &text) {
        for (recorded_call &call : recorded.calls) {
            if (field::statement_text(call).find(text) != std::string::npos) {
                return call;
            }
        }
        throw std::runtime_error("there is no such query");
    }
    field::replay_result run() const { return field::replay(recorded); }
};

TEST_F(replays, OfKeptRecordingsAgree) {
    ASSERT_GE(kept_files().size(), 3U);
    for (const std::string &file : kept_files()) {
        const field::replay_result result =
            field::replay(field::read_recording(qryfiles::read_file(file, size_max)));
        EXPECT_GT(result.sums.same, 20U) << file;
        EXPECT_EQ(result.sums.different + result.sums.masked + result.sums.incomplete, 0U) << file << "\n"
                                                                                           << result.first;
    }
}

TEST_F(replays, AreOfBothMachines) {
    const recording device = field::read_recording(file_of("device.rec"));
    EXPECT_TRUE(device.is_big_endian);
    EXPECT_EQ(device.word_size, 4U);
    EXPECT_FALSE(recorded.is_big_endian);
    EXPECT_EQ(recorded.word_size, 8U);
}

TEST_F(replays, NoticeAnotherArgument) {
    std::size_t place = 0;
    recorded_call &call = call_with(field::service_tbctSTCGetTable, place);
    ++call.events[place].call.fields[1].number;
    const field::replay_result result = run();
    EXPECT_EQ(result.sums.different, 1U);
    EXPECT_NE(result.first.find("expected: tbctSTCGetTable(category 0x"), std::string::npos) << result.first;
    EXPECT_NE(result.first.find("made:     tbctSTCGetTable(category 0x"), std::string::npos) << result.first;
}

TEST_F(replays, NoticeAnotherResult) {
    query_with("ID = 1 AND ID = 2 OR ID = 3").result = 0xDB05;
    const field::replay_result result = run();
    EXPECT_EQ(result.sums.different, 1U);
    EXPECT_NE(result.first.find("expected: result 0xDB05"), std::string::npos) << result.first;
    EXPECT_NE(result.first.find("AND and OR mixed"), std::string::npos)
        << result.first; // the trace with its cause
}

TEST_F(replays, NoticeAnotherRow) {
    recorded_call &call = query_with("PSN_ID > 2");
    call.rows.at(1).at(1).text += "x";
    EXPECT_NE(run().first.find("row 1, column 1"), std::string::npos);
    call.rows.pop_back();
    EXPECT_NE(run().first.find(" rows"), std::string::npos);
}

TEST_F(replays, NoticeACallTooManyOrTooFew) {
    recorded_call &call = query_with("PSN_ID > 2");
    const field::event last = call.events.back();
    call.events.pop_back();
    EXPECT_NE(run().first.find("called more often than recorded"), std::string::npos) << run().first;
    call.events.push_back(last);
    call.events.push_back(last);
    EXPECT_NE(run().first.find("made:     nothing more"), std::string::npos) << run().first;
}

TEST_F(replays, SayMaskedWhereAMaskMayBeTheReason) {
    recorded_call &call = query_with("PSN_ID > 2");
    call.is_masked = true;
    call.rows.pop_back();
    const field::replay_result result = run();
    EXPECT_EQ(result.sums.masked, 1U);
    EXPECT_EQ(result.sums.different, 0U);
    EXPECT_NE(result.first.find("masked: "), std::string::npos);
}

TEST_F(replays, SayIncompleteWhereTheRecordingEnds) {
    recorded_call &call = query_with("PSN_ID > 2");
    call.has_result = false;
    call.events.resize(call.events.size() / 2);
    const field::replay_result result = run();
    EXPECT_EQ(result.sums.different, 0U) << result.first;
    EXPECT_GE(result.sums.incomplete, 1U);
}

TEST_F(replays, NameTheOtherThread) {
    std::size_t place = 0;
    recorded_call &call = call_with(field::service_tbctSTCGetTable, place);
    recorded_call other = call;
    other.thread = 99;
    other.number = 1000;
    other.order = UINT32_MAX;
    other.has_result = false;
    other.events = {call.events[place]};
    other.events[0].call.fields[3] = {0, "", true};
    other.events[0].call.fields[3].bytes = "";
    recorded.calls.push_back(other);
    call.events.erase(call.events.begin() + static_cast<std::ptrdiff_t>(place));
    const field::replay_result result = run();
    EXPECT_NE(result.first.find("thread 99 made this call"), std::string::npos) << result.first;
}

TEST_F(replays, ListTheValuesThatWereSeen) {
    const std::string values = field::values_before(recorded, query_with("COUNT(*)").number);
    EXPECT_NE(values.find("adbk_db.PSN_TBL record 0: PSN_ID=1\n"), std::string::npos) << values;
    EXPECT_EQ(field::values_before(recorded, 1), "");
    EXPECT_NE(field::call_table(recorded, field::listing::failed).find("0xDB00"), std::string::npos);
}

// Whatever stands in a file: it is refused with a sentence, or read and replayed without harm.
TEST_F(replays, SurviveEveryDamagedByte) {
    const std::string whole = file_of("mix.rec");
    const std::size_t end = field::header_size + field::load32(whole.data() + field::place_head);
    std::size_t refused = 0;
    std::size_t read = 0;
    for (std::size_t place = 0; place < end; place += place < 160 ? 1 : 211) {
        std::string damaged = whole;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x55);
        try {
            const recording part = field::read_recording(damaged);
            EXPECT_TRUE(place < field::header_size || part.unreadable > 0) << place;
            ++read;
        } catch (const std::runtime_error &error) {
            EXPECT_STRNE(error.what(), "");
            ++refused;
        }
    }
    EXPECT_GT(refused, 50U);
    EXPECT_GT(read, 50U);
}

TEST_F(replays, RefuseAnotherSchemaAndAnotherVersion) {
    std::string file = file_of("mix.rec");
    const auto mend = [&] {
        field::store32(
            file.data() + field::place_checksum,
            field::checksum(reinterpret_cast<const std::uint8_t *>(file.data()), field::place_checksum, 0));
    };
    file[field::place_schema] = static_cast<char>(file[field::place_schema] + 1);
    mend();
    EXPECT_THROW(field::read_recording(file), std::runtime_error);
    file[field::place_version] = 9;
    EXPECT_THROW(field::read_recording(file), std::runtime_error);
    EXPECT_THROW(field::read_recording(""), std::runtime_error);
}

} // namespace
