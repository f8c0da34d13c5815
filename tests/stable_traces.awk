# Shows "*" for the number of a trace line that carries a source line, which any edit moves. Numbers that are in
# the table of trace points stay. First file: that table; second file: what was printed.
BEGIN { FS = "\t" }
NR == FNR { fixed[$1 "():" $2]; next }
match($0, /^ *[A-Za-z_0-9]+\(\):\[(Enter|Return)\]:\([0-9]+\)/) {
    point = substr($0, 1, RLENGTH)
    function_name = substr(point, 1, index(point, ":[") - 1)
    sub(/^ */, "", function_name)
    line = point
    sub(/.*\(/, "", line)
    sub(/\)/, "", line)
    if (!((function_name ":" line) in fixed)) {
        sub(/\([0-9]+\)$/, "(*)", point)
        $0 = point substr($0, RLENGTH + 1)
    }
}
# Nor the line of a script, which any edit moves too; pages show what is typed.
{ sub(/^error: stdin:[0-9]+: /, "error: "); print }
