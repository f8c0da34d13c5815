// The lists that a thread opens in one category before it moves in them: they show one moment.
#include <atomic>
#include <thread>

#include "unit/host/child.h"
#include "unit/host/host_test.h"

namespace {

using namespace test;

class list_moment : public host_test {
  protected:
    ~list_moment() override {
        for (tbctListTable &list : lists) {
            EXPECT_EQ(tbctSTCDeleteListTable(&list, 0), 0u);
        }
    }

    static void set_both(std::uint16_t number) {
        value_buffer name = empty_buffer();
        name[0] = static_cast<std::uint8_t>(number);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_id, &number), 0u);
        EXPECT_EQ(tbctSTCSetTable(requester, departments, 1, department_name, name.data()), 0u);
    }

    void open_id(std::size_t list) {
        ASSERT_EQ(tbctSTCCreateListTable(departments, department_id, 101, &lists[list]), 0u);
    }
    void open_name(std::size_t list) {
        ASSERT_EQ(tbctSTCCreateListTable(departments, department_name, 101, &lists[list]), 0u);
    }

    std::uint32_t id_in(std::size_t list) {
        std::uint16_t id = 0;
        EXPECT_EQ(tbctSTCListTableGetVal(&lists[list], &id), 0u);
        return id;
    }
    std::uint32_t name_in(std::size_t list) {
        value_buffer name = empty_buffer();
        EXPECT_EQ(tbctSTCListTableGetVal(&lists[list], name.data()), 0u);
        return name[0];
    }

    tbctListTable lists[4] = {};
};

TEST_F(list_moment, is_that_of_the_list_that_was_opened_last) {
    set_both(1);
    open_id(0);
    set_both(2);
    open_name(1);
    open_id(2);
    EXPECT_EQ(id_in(0), 2u);
    EXPECT_EQ(name_in(1), 2u);
    EXPECT_EQ(id_in(2), 2u);
}

TEST_F(list_moment, ends_with_the_first_move) {
    set_both(1);
    open_id(0);
    ASSERT_EQ(tbctSTCListTableSetPos(&lists[0], 0), 0u);
    set_both(2);
    open_name(1);
    EXPECT_EQ(id_in(0), 1u);
    EXPECT_EQ(name_in(1), 2u);
}

TEST_F(list_moment, ends_with_the_first_read) {
    set_both(1);
    open_id(0);
    EXPECT_EQ(id_in(0), 1u);
    set_both(2);
    open_name(1);
    EXPECT_EQ(id_in(0), 1u);
}

TEST_F(list_moment, is_that_of_one_category) {
    set_both(1);
    open_id(0);
    set_both(2);
    ASSERT_EQ(tbctSTCCreateListTable(persons, person_name, 10, &lists[1]), 0u);
    open_name(2);
    EXPECT_EQ(id_in(0), 1u);
    EXPECT_EQ(name_in(2), 2u);
}

TEST_F(list_moment, does_without_lists_that_are_closed) {
    set_both(1);
    open_id(0);
    open_id(1);
    open_id(2);
    for (const std::size_t closed : {1, 0, 2}) {
        EXPECT_EQ(tbctSTCDeleteListTable(&lists[closed], 0), 0u);
        set_both(static_cast<std::uint16_t>(closed + 5));
        open_name(3);
        EXPECT_EQ(name_in(3), closed + 5);
        EXPECT_EQ(tbctSTCDeleteListTable(&lists[3], 0), 0u);
        open_id(closed);
    }
}

TEST_F(list_moment, outlives_the_thread_that_opened_it) {
    set_both(3);
    std::thread([this] { open_id(0); }).join();
    EXPECT_EQ(id_in(0), 3u);
}

// Another thread closes a list while the one that opened it may still copy it again.
TEST_F(list_moment, does_without_lists_that_another_thread_closed) {
    set_both(1);
    open_id(0);
    open_id(1);
    std::thread([this] { EXPECT_EQ(tbctSTCDeleteListTable(&lists[0], 0), 0u); }).join();
    set_both(2);
    open_name(2);
    EXPECT_EQ(id_in(1), 2u);
    EXPECT_EQ(name_in(2), 2u);
    std::thread([this] { EXPECT_EQ(tbctSTCDeleteListTable(&lists[1], 0), 0u); }).join();
}

// A writer changes both elements of a record, one after the other: the second is never ahead of the first.
TEST_F(list_moment, is_one_beside_a_writer) {
    std::atomic<bool> done{false};
    std::thread writer([&done] {
        for (std::uint16_t i = 1; !done; i = static_cast<std::uint16_t>(i % 250 + 1)) {
            set_both(i);
        }
    });
    int wrong = 0;
    for (int i = 0; i < 20000; ++i) {
        open_id(0);
        open_name(1);
        const std::uint32_t name = name_in(1);
        const std::uint32_t id = id_in(0);
        wrong += name == id || id == name % 250 + 1 || name == 0 ? 0 : 1;
        EXPECT_EQ(tbctSTCDeleteListTable(&lists[0], 0), 0u);
        EXPECT_EQ(tbctSTCDeleteListTable(&lists[1], 0), 0u);
    }
    done = true;
    writer.join();
    EXPECT_EQ(wrong, 0);
}

} // namespace
