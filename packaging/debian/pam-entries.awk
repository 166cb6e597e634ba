# Reads PAM files as libpam does: a backslash continues a line, a comment ends it, square brackets make one word of what
# they enclose, keywords are of either case. The files are the arguments; what is printed depends on "task":
#   naming    the files in which an entry names "name", alone or at the end of a path
#   removing  the first file without the entries of the module "name". One that a jump in any of the files may lead over
#             is replaced by one that counts and decides nothing, so that the jump ends where it did.
# It fails when a file can't be read that is there.

function is_file(path) {
    gsub(/'/, "'\\''", path)
    return system("test -f '" path "'") == 0
}

# Takes a file's entries in, each with its words, its own lines, and the comments before it. Says whether there is such
# a file.
function read_file(path,    status, line, code, is_commented, is_continued, entry, i) {
    if (path in count)
        return count[path] >= 0
    count[path] = -1
    if (!is_file(path))
        return 0
    i = 1
    while ((status = getline line < path) > 0) {
        code = line
        is_commented = sub(/#.*/, "", code)
        sub(/[ \t]+$/, "", code)
        if (code == "" && !is_continued) {
            comments[path, i] = comments[path, i] line "\n"
            continue
        }
        lines[path, i] = lines[path, i] line "\n"
        if (code == "")
            continue
        is_continued = !is_commented && sub(/\\$/, "", code)
        entry = entry code " "
        if (!is_continued) {
            split_words(entry, path, i++)
            entry = ""
        }
    }
    close(path)
    if (status < 0)
        exit 1
    if (lines[path, i] != "")
        split_words(entry, path, i++)
    count[path] = i - 1
    return 1
}

function split_words(entry, path, i,    word) {
    for (sub(/^[ \t]+/, "", entry); entry != ""; sub(/^[ \t]+/, "", entry)) {
        if (match(entry, /^\[([^]\\]|\\\]|\\)*/)) {
            word = substr(entry, 2, RLENGTH - 1)
            gsub(/\\\]/, "]", word)
            entry = substr(entry, RLENGTH + 2)
        } else {
            match(entry, /^[^ \t]+/)
            word = substr(entry, 1, RLENGTH)
            entry = substr(entry, RLENGTH + 1)
        }
        sub(/\r$/, "", word)
        words_of[path, i, ++words[path, i]] = word
    }
}

function keyword(path, i, j,    word) {
    word = tolower(words_of[path, i, j])
    if (j == 1)
        sub(/^-/, "", word)
    return word
}

function is_named(path, i, j) {
    return words_of[path, i, j] == name ||
        substr(words_of[path, i, j], length(words_of[path, i, j]) - length(name)) == "/" name
}

function is_include(path, i) {
    return keyword(path, i, 1) == "@include" || keyword(path, i, 2) ~ /^(include|substack)$/
}

function is_module_entry(path, i) {
    return words[path, i] >= 3 && !is_include(path, i) && is_named(path, i, 3)
}

# How many modules an entry may lead over, whatever they answer.
function jump(control,    longest, number) {
    while (match(control, /=[^0-9A-Za-z=]*[0-9]+/)) {
        number = substr(control, RSTART, RLENGTH)
        gsub(/[^0-9]/, "", number)
        if (number + 0 > longest)
            longest = number + 0
        control = substr(control, RSTART + RLENGTH)
    }
    return longest + 0
}

function walk_included(included, type, depth,    path) {
    if (depth >= 16 || ++includes_walked > 10000) {
        is_cut_short = 1
        return
    }
    path = root (included ~ /^\// ? "" : "/etc/pam.d/") included
    if (!read_file(path))
        path = root "/usr/lib/pam.d/" included
    if (read_file(path))
        walk(path, type, depth + 1)
}

# Goes through the stack of a type, and notes the module's entries that a jump may lead over: "reach" tells over how many
# of the coming modules the jumps so far may lead. What libpam might not count does not make it less.
function walk(path, type, depth,    i, word, leap, outer) {
    for (i = 1; i <= count[path]; i++) {
        word = keyword(path, i, 1)
        if (word == "@include") {
            walk_included(words_of[path, i, 2], type, depth)
            continue
        }
        # An entry of no type that libpam knows stands in each stack.
        if (reach > 0 && is_module_entry(path, i) && (word == type || word !~ known_type))
            spanned[i, lines[path, i]] = 1
        if (word != type)
            continue
        word = keyword(path, i, 2)
        if (word == "include") {
            walk_included(words_of[path, i, 3], type, depth)
            continue
        }
        leap = 0
        if (word == "substack") {
            # One step for a jump over it; a jump within it ends there.
            outer = reach
            reach = 0
            walk_included(words_of[path, i, 3], type, depth)
            reach = outer
        } else if (!is_module_entry(path, i)) {
            leap = jump(words_of[path, i, 2])
        }
        if (reach > 0)
            reach--
        if (leap > reach)
            reach = leap
    }
}

# An entry is known by its text, for a file may have several names.
function print_without(path,    i) {
    for (i = 1; i <= count[path]; i++) {
        printf "%s", comments[path, i]
        if (!is_module_entry(path, i))
            printf "%s", lines[path, i]
        else if (is_cut_short || (i, lines[path, i]) in spanned)
            print words_of[path, i, 1] "\t[default=ignore]\tpam_permit.so"
    }
    printf "%s", comments[path, i]
}

function names(path,    i, j) {
    for (i = 1; i <= count[path]; i++)
        for (j = 2; j <= words[path, i]; j++)
            if (is_named(path, i, j))
                return 1
    return 0
}

BEGIN {
    root = ENVIRON["root"]
    known_type = "^(auth|account|password|session)$"
    split("auth account password session", types)
    for (file = 1; file < ARGC; file++) {
        if (!read_file(ARGV[file]))
            continue
        if (task == "naming" && names(ARGV[file]))
            print ARGV[file]
        for (t = 1; task == "removing" && t <= 4; t++) {
            reach = 0
            walk(ARGV[file], types[t], 0)
        }
    }
    if (task == "removing") {
        if (count[ARGV[1]] < 0)
            exit 1
        print_without(ARGV[1])
    }
}
