#!/usr/bin/env bash
# The shell at a terminal as it greets and lays answers out: which device is open, settings of one's own, results wider
# than the terminal, answers sent to a file.
#
# usage: first_screen.sh COMMAND... (the shell's full path)
set -euo pipefail
qrysh=("$@")
# shellcheck source=tests/query/at_terminal.sh
. "$(dirname "${BASH_SOURCE[0]}")/at_terminal.sh"

# The lines as the terminal has them, broken ones apart.
rows() { terminal capture-pane -p -t shell; }

# The first screen names the device and its records, and where help is.
device=()
start
expect '^qrysh [0-9.]+; \.help lists the commands$'
expect '^a device in memory: no records in use; \.open --sample opens one with records$'
type_line '.open --sample'
expect '^the sample device: 118 records in use$'
keys C-d
device=(--sample)
start
expect '^the sample device: 118 records in use$'
keys C-d
device=(--new "$scratch/new.img")
start
expect '/new\.img: no records in use$'
type_line "INSERT INTO PSN_TBL (PSN_ID, PSN_NAME) VALUES (1, 'Sato')"
expect '^1 record added$'
keys C-d
expect '^left with 0$'
device=(--roomy)
start
expect '^qrysh-roomy [0-9.]+; \.help lists the commands$'
type_line '.db usrac_db'
type_line '.tables'
expect '^│ ACCOUNT_TBL +│ +8 │ +100 │ +0 │$'
keys C-d
device=("$scratch/new.img")
start
expect '/new\.img: 1 record in use$'
keys C-d

# A device that cannot be opened is said to be so, and the shell goes on.
device=()
start QRYLIB_IMAGE="$scratch"
expect '^error: .*: is a folder$'
type_line '.open --sample'
expect '^the sample device: 118 records in use$'
keys C-d

# Settings of one's own hold where lines are typed, and nowhere else; the command line goes before them.
printf -- '-- mine\n.mode csv\n.prompt "mine> "\n.nonsense\n' >"$HOME/.qryshrc"
device=(--sample)
prompt='^mine>'
start
expect '^error: .*/\.qryshrc:4: there is no command \.nonsense'
type_line 'SELECT COUNT(*) FROM PSN_TBL'
expect '^10$'
keys C-d
prompt='^qrysh>' start QRYSH_SETTINGS=
keys C-d
prompt='^qrysh>' start QRYSH_SETTINGS="$HOME"
expect '^error: .*: Is a directory$'
keys C-d
device=(--sample --mode list)
start
type_line '.show'
expect '^mode\|list$'
keys C-d
if [[ $("${qrysh[@]}" --sample 'SELECT COUNT(*) FROM PSN_TBL') != *--------* ]]; then
    echo "a script obeys the settings of who types"
    exit 1
fi
rm "$HOME/.qryshrc"
prompt='^qrysh>'

# A table that fits stays one; on a narrower terminal it becomes lines, and no line is broken at the margin.
columns=60
device=(--sample --db department_db)
start
type_line 'SELECT ID, NAME FROM DEPT_TBL WHERE ID = 1'
expect '^│  1 │ '
keys C-l
type_line 'SELECT ID, NAME, FURIGANA, TOTAL_M, TOTAL_CM, COLOR_PM FROM DEPT_TBL WHERE ID < 3'
expect '^ +ID = 2$'
expect '^FURIGANA = '
expect '^\(2 rows\)$'
if rows | grep '[│─]' >/dev/null; then
    echo "a table stands where lines should"
    rows
    exit 1
fi
keys C-l
type_line "UPDATE DEPT_TBL SET NAME = '$(printf 'abcdefghij%.0s' {1..9})' WHERE ID = 1"
expect '^1 record changed$'
keys C-l
type_line 'SELECT NAME FROM DEPT_TBL WHERE ID = 1'
expect '^NAME = (abcdefghij){5}abc$'
expect '^       defghij(abcdefghij){3}$'

# A file gets the table, however wide.
keys C-l
type_line '.once ~/wide.txt'
type_line 'SELECT ID, NAME FROM DEPT_TBL WHERE ID = 1'
type_line 'SELECT COUNT(*) FROM DEPT_TBL'
expect '^│ +101 │$'
if ! grep -qE "^│  1 │ (abcdefghij){9} │" "$HOME/wide.txt"; then
    cat "$HOME/wide.txt"
    exit 1
fi
keys C-d
expect '^left with 0$'
