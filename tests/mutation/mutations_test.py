"""Keeps the mutation driver alive: what it changes in a small text, what it leaves alone, and that a seed always draws
the same."""
import unittest

import mutate
from mutations import draw, find_mutations

SOURCE = '''\
// A comment with 1 < 2 && true.
#include <cstring>
#define LIMIT 17
static_assert(sizeof(int) == 4, "four bytes");
struct pair {
    int values[3];
    int first = 7;
    bool operator<(const pair &other) const { return first < other.first; }
};
constexpr row rows[] = {{0x10, "a 5"}, {9, "b"}};
int declared(int left, int right);
namespace {
int walk(const char *text, int &count) {
    std::size_t length = strlen(text);
    char buffer[NAME_MAX + 1];
    count = 0;
    names.reserve(size + 2);
    if (int code = open(); code != 0) {
        trace_return("walk", 1063, 'x');
        return code;
    }
    for (int i = 0; i < 5; ++i) {
        if (text[i] == '=' && !is_blank(i)) continue;
        close(i,
              length + 1);
    }
    while (count > 2)
        --count;
    switch (count) {
    case 1:
        done = true;
        break;
    default:
        break;
    }
    return count;
}
} // namespace
'''


def changes(source):
    """(line, kind, the changed line without its outer blanks) of every mutation."""
    return {(m.line, m.kind, m.apply(source).split('\n')[m.line - 1].strip()) for m in find_mutations(source)}


class Mutations(unittest.TestCase):
    def test_each_kind_is_found(self):
        for expected in (
                (7, 'constant', 'int first = 8;'),
                (8, 'compare', 'bool operator<(const pair &other) const { return first <= other.first; }'),
                (10, 'constant', 'constexpr row rows[] = {{0xF, "a 5"}, {9, "b"}};'),
                (10, 'constant', 'constexpr row rows[] = {{0x10, "a 5"}, {10, "b"}};'),
                (16, 'drop', ';'),
                (18, 'negate', 'if (int code = open(); !(code != 0)) {'),
                (18, 'compare', 'if (int code = open(); code == 0) {'),
                (19, 'drop', ';'),
                (19, 'constant', '''trace_return("walk", 1062, 'x');'''),
                (22, 'negate', 'for (int i = 0; !(i < 5); ++i) {'),
                (22, 'compare', 'for (int i = 0; i <= 5; ++i) {'),
                (22, 'operator', 'for (int i = 0; i < 5; --i) {'),
                (23, 'operator', "if (text[i] == '=' || !is_blank(i)) continue;"),
                (23, 'negate', "if (text[i] == '=' && is_blank(i)) continue;"),
                (23, 'negate', "if (!(text[i] == '=' && !is_blank(i))) continue;"),
                (23, 'drop', "if (text[i] == '=' && !is_blank(i)) ;"),
                (25, 'operator', 'length - 1);'),
                (27, 'negate', 'while (!(count > 2))'),
                (28, 'drop', ';'),
                (31, 'negate', 'done = false;'),
                (32, 'drop', ';')):
            self.assertIn(expected, changes(SOURCE))

    def test_what_is_no_behaviour_stays(self):
        lines = {line for line, _, _ in changes(SOURCE)}
        for kept in (1, 2, 3, 4, 6, 11, 15, 17, 34, 36):
            self.assertNotIn(kept, lines)
        for _, _, changed in changes(SOURCE):
            self.assertNotIn("'y'", changed)
            self.assertNotIn('"a 6"', changed)
        self.assertNotIn((14, 'drop', ';'), changes(SOURCE))

    def test_a_change_moves_no_later_line(self):
        for mutation in find_mutations(SOURCE):
            self.assertEqual(mutation.apply(SOURCE).count('\n'), SOURCE.count('\n'))
            self.assertNotEqual(mutation.apply(SOURCE), SOURCE)

    def test_a_seed_draws_the_same_each_time_and_another_seed_others(self):
        sources = {'a.cpp': SOURCE, 'b.cpp': SOURCE.replace('walk', 'run')}
        self.assertEqual(draw(sources, 1), draw(dict(reversed(sources.items())), 1))
        self.assertNotEqual(draw(sources, 1), draw(sources, 2))

    def test_a_draw_changes_each_line_at_most_once(self):
        drawn = draw({'a.cpp': SOURCE}, 1)
        lines = [mutation.line for _, mutation in drawn]
        self.assertEqual(sorted(lines), sorted({line for line, _, _ in changes(SOURCE)}))


class Driver(unittest.TestCase):
    def test_a_seed_reaches_every_folder_of_the_library(self):
        drawn = draw(mutate.read_sources(), 1)
        folders = {path.split('/')[1] for path, _ in drawn[:500]}
        self.assertEqual(folders, {'api', 'exec', 'link', 'parser', 'util'})

    def test_a_command_is_judged_by_its_status_and_its_time(self):
        self.assertEqual(mutate.run(['true'], '/', 60), 0)
        self.assertEqual(mutate.run(['false'], '/', 60), 1)
        self.assertIsNone(mutate.run(['sleep', '60'], '/', 0.1))

    def test_the_summary_counts_what_was_noticed_and_shows_the_rest(self):
        sources = {'a.cpp': SOURCE}
        drawn = draw(sources, 1)
        results = [mutate.Result(path, mutation, 'noticed', 'unit_tests') for path, mutation in drawn[:3]]
        results.append(mutate.Result(*drawn[3], 'survived'))
        results.append(mutate.Result(*drawn[4], 'refused'))
        text = mutate.summary(1, results, sources)
        self.assertIn('seed 1: 3 of 4 mutations noticed, 1 more did not compile', text)
        self.assertIn('by unit_tests: 3', text)
        self.assertEqual(text.count('survived:'), 1)
        self.assertIn(f'survived: a.cpp:{drawn[3][1].line} ', text)


if __name__ == '__main__':
    unittest.main()
