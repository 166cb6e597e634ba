# Prints a PAM service without the login add-on's entries. Cuts the text into entries as libpam does: a backslash
# continues a line, a comment ends it, a control in square brackets is one word. An entry that a jump of the file may
# lead over is replaced by one that counts and decides nothing, so that the jump ends where it did.

function finish_entry(    words) {
    if (entry ~ module_entry) {
        if (jump_seen) {
            split(entry, words)
            print words[1] "\t[default=ignore]\tpam_permit.so"
        }
    } else {
        printf "%s", lines
        if (entry ~ /\[[^]]*=[ \t]*[0-9]/)
            jump_seen = 1
    }
    entry = lines = ""
    continued = 0
}

BEGIN {
    type = "^[ \t]*[^ \t]+[ \t]+"
    control = "([[]([^]\\\\]|\\\\.)*[]]|[^[ \t][^ \t]*)[ \t]+"
    module_entry = type control "([^ \t]*/)?pam_vantro_standalone[.]so([ \t\r]|$)"
}

{
    lines = lines $0 "\n"
    code = $0
    commented = sub(/#.*/, "", code)
    sub(/[ \t]+$/, "", code)
    if (code == "") {
        if (!continued) {
            printf "%s", lines
            lines = ""
        }
        next
    }
    continued = !commented && sub(/\\$/, "", code)
    entry = entry code " "
    if (!continued)
        finish_entry()
}

END {
    if (lines != "")
        finish_entry()
}
