# Reads the CSV of a Google Benchmark program with repetitions and prints the medians, each peer with the
# ratio of our time to its own. Ours are the names with "ours" (or "zorvan") in them; a peer has the same name but for
# that word: unionOf<Ours> beside unionOf<BoostIcl>, ours/hull beside peer/hull.
function bare(name) { gsub(/"/, "", name); sub(/_median$/, "", name); return name }
function shown(ns) {
    return ns >= 1e9 ? sprintf("%.3g s", ns / 1e9) : ns >= 1e6 ? sprintf("%.3g ms", ns / 1e6) : \
           ns >= 1e3 ? sprintf("%.3g us", ns / 1e3) : sprintf("%.3g ns", ns)
}
BEGIN { FS = ","; split("ns 1 us 1e3 ms 1e6 s 1e9", units, " "); for (i = 1; i < 8; i += 2) scale[units[i]] = units[i + 1] }
match($0, /^"([^"]*)"/) {
    # A name may hold commas of its own.
    name = bare(substr($0, 1, RLENGTH)); rest = substr($0, RLENGTH + 2); split(rest, field, ",")
    if ($0 !~ /_median"/) next
    order[++count] = name; time[name] = field[2] * scale[field[4]]
    if (match(tolower(name), /ours|zorvan/)) {
        mine[++own] = name
        head[own] = substr(name, 1, RSTART - 1)
        tail[own] = substr(name, RSTART + RLENGTH)
    }
}
END {
    for (i = 1; i <= count; i++) {
        name = order[i]; line = sprintf("%-56s %10s", name, shown(time[name]))
        for (j = 1; j <= own; j++) {
            h = head[j]; t = tail[j]
            if (name != mine[j] && length(name) >= length(h) + length(t) && substr(name, 1, length(h)) == h && \
                substr(name, length(name) - length(t) + 1) == t)
                line = line sprintf("   ours takes %.2f of it", time[mine[j]] / time[name])
        }
        print line
    }
}
