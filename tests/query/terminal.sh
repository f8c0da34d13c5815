#!/usr/bin/env bash
# The shell at a terminal: editing, history between runs, completion, paging, Ctrl-C, Ctrl-D, .watch. tmux is the
# terminal; what it shows is compared.
#
# usage: terminal.sh COMMAND... (the shell's full path)
set -euo pipefail
qrysh=("$@")
# shellcheck source=tests/query/at_terminal.sh
. "$(dirname "${BASH_SOURCE[0]}")/at_terminal.sh"

# A box is the default, and Japanese text stands in columns of the right width.
start
type_line 'SELECT PSN_ID, PSN_NAME FROM PSN_TBL WHERE PSN_ID < 3'
expect '^│      2 │ 鈴木 花子  │$'
expect '^\(2 rows\)$'

# A line can be edited before it is sent.
terminal send-keys -t shell -l 'ELECT COUNT(*) FROM PSN_TBL'
keys C-a
terminal send-keys -t shell -l S
keys Enter
expect '^│       10 │$'

# Completion: a table, a column of the table named, a command; several candidates are listed.
terminal send-keys -t shell -l 'SELECT psn_k'
keys Tab
expect 'SELECT PSN_KANA $'
terminal send-keys -t shell -l 'FROM PSN_T'
keys Tab
expect 'SELECT PSN_KANA FROM PSN_TBL $'
keys C-u
terminal send-keys -t shell -l '.data'
keys Tab
expect '^qrysh> .databases'
keys C-u
terminal send-keys -t shell -l '.e'
keys Tab
expect '^\.echo +\.exit +\.explain +\.export'

keys C-u
# A statement over several lines has a prompt of its own; a column is completed of the table that a line before named.
keys C-l
type_line 'SELECT COUNT(*)'
expect '^  \.\.\.>'
type_line 'FROM PSN_TBL'
expect '^  \.\.\.> FROM PSN_TBL$'
terminal send-keys -t shell -l 'WHERE psn_k'
keys Tab
expect '^  \.\.\.> WHERE PSN_KANA $'
type_line "LIKE 'サ%';"
expect '^│        2 │$'

# Ctrl-C in the middle drops the whole statement, Ctrl-D too; the next line begins another.
for key in C-c C-d; do
    keys C-l
    type_line 'DELETE FROM'
    expect '^  \.\.\.>'
    keys $key
    expect '^qrysh>'
    type_line 'SELECT COUNT(*) FROM PSN_TBL'
    expect '^│       10 │$'
done

# Ctrl-C drops the line, and what is typed then is read alone.
terminal send-keys -t shell -l 'DELETE FROM'
keys C-c
expect '^qrysh> DELETE FROM'
type_line '.help .quit'
expect '^\.quit  leave the shell$'

# Ctrl-C ends .watch, and not the shell.
type_line '.watch 0.1 SELECT COUNT(*) FROM GRP_TBL'
expect '^-- 3, every 0.1 s'
keys C-c
sleep 0.3
keys C-l
type_line '.help .watch'
expect '^\.watch SECONDS SQL  repeat'

# Ctrl-D leaves.
keys C-d
expect '^left with 0$'

# The lines of the run before are there.
start
keys Up
expect '^qrysh> \.help \.watch *$'
keys Up
keys Up
expect '^qrysh> \.help \.quit *$'
keys C-u
type_line '.quit'
expect '^left with 0$'

# The history has whole statements, and its file can be read.
start
type_line 'SELECT COUNT(*)'
type_line '  FROM PSN_TBL'
type_line ';'
expect '^│       10 │$'
keys C-d
expect '^left with 0$'
grep -qx 'SELECT COUNT(\*) FROM PSN_TBL ;' "$scratch/history"
start
keys Up
expect '^qrysh> SELECT COUNT\(\*\) FROM PSN_TBL ; *$'
keys Enter
expect '^│       10 │$'

# A file of an earlier version is read, and written anew.
printf '_HiStOrY_V2_\n.help\\040.tables\n' >"$scratch/earlier"
start QRYSH_HISTORY="$scratch/earlier"
keys Up
expect '^qrysh> \.help \.tables *$'
grep -qx '.help .tables' "$scratch/earlier"

# Completion knows the words of commands, and what may stand where.
start
terminal send-keys -t shell -l '.timer o'
keys Tab
expect '^off  on$'
keys C-u
terminal send-keys -t shell -l ".read $root/examples/dem"
keys Tab
expect "^qrysh> \.read .*/examples/demo\.sql *$"
keys C-u
terminal send-keys -t shell -l 'SELECT PSN_ID FROM PSN_TBL '
keys Tab
expect '^ORDER  WHERE$'
keys C-u

# What is pasted is text: a tab lists nothing, a DELETE goes on with its WHERE, and a last line can be edited.
keys C-l
terminal set-buffer -b pasted $'DELETE FROM PSN_TBL\nWHERE PSN_ID = 2\n\tSELECT COUNT(*)\n\tFROM PSN_TBL;\nSELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = '
terminal paste-buffer -p -b pasted -t shell
expect '^1 record deleted$'
expect '^│        9 │$'
expect '^qrysh> SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID = *$'
type_line '3'
expect '^│ Anna Becker │$'
terminal set-buffer -b pasted 'SELECT COUNT(*) FROM GRP_TBL'
terminal paste-buffer -p -b pasted -t shell
keys Enter
expect '^\(1 row\)$'

# Letters are typed in UTF-8 under any locale.
start LC_ALL=C
type_line "SELECT PSN_ID FROM PSN_TBL WHERE PSN_NAME = '鈴木 花子'"
expect '2 .$'
expect '^\(1 row\)$'

# A long answer goes through the pager, a short one does not.
start "PAGER=sed -e 's/^/paged: /' -e 10q"
type_line 'SELECT COUNT(*) FROM PSN_TBL'
expect '^│       10 │$'
type_line '.help'
expect '^paged: \.databases'
type_line '.quit'
expect '^left with 0$'

# Ctrl-C while an answer is paged does not cost the next line.
start PAGER='echo paging; sleep 1; cat >/dev/null'
type_line '.help'
expect '^paging$'
keys C-c
type_line '.help .quit'
expect '^\.quit  leave the shell$'

# A pager that is not there loses no answer.
start PAGER=no-such-pager
type_line '.db department_db'
type_line 'SELECT ID FROM DEPT_TBL'
expect '^\(101 rows\)$'

# Without a folder for the history the shell still works.
start QRYSH_HISTORY=/nowhere/history
type_line '.help .quit'
expect '^\.quit  leave the shell$'

# Errors are coloured, unless nobody wants it.
start
type_line 'SELECT X FROM PSN_TBL'
expect '^error: QRY_LIB_INVALID_ARGUMENT'
terminal capture-pane -p -e -t shell >"$scratch/coloured"
grep -q $'\x1b\\[[0-9;]*31m *\\^ PSN_TBL has no column' "$scratch/coloured"
grep -q $'^error:\x1b' "$scratch/coloured"
start NO_COLOR=1
type_line 'SELECT X FROM PSN_TBL'
expect '^error: QRY_LIB_INVALID_ARGUMENT'
terminal capture-pane -p -e -t shell >"$scratch/plain"
if grep -q $'\x1b\\[[0-9;]*31m' "$scratch/plain"; then
    echo "NO_COLOR was not obeyed"
    exit 1
fi

# A change of every record asks first, and takes nothing but yes. A paste goes on with its WHERE.
start
type_line 'DELETE FROM PSN_TBL'
expect 'type yes to go on: $'
type_line 'y'
expect '^error: not run$'
type_line 'DELETE FROM PSN_TBL'
type_line 'WHERE PSN_ID = 1'
expect '1 record deleted$'
type_line 'SELECT COUNT(*) FROM PSN_TBL'
expect '^│        9 │$'
keys C-l
type_line 'DROP TABLE PSN_TBL;'
expect 'type yes to go on: $'
type_line 'yes'
expect '^9 records deleted$'
type_line 'SELECT COUNT(*) FROM PSN_TBL'
expect '^│        0 │$'
keys C-d
expect '^left with 1$'
